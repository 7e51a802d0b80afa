# Do all commands answer --help from wherever they are called, and refuse what they do not know before they do anything?
tools=$(cd "$(dirname "$0")/.." && pwd)
directory=$(mktemp -d) || exit 1
trap 'rm -rf "$directory"' EXIT
cd "$directory" || exit 1
failures=0

# expect STATUS SPEAKING SILENT LIKE NAME ARGUMENT...: what the command answers, on `out` and `err`, in either order.
expect() {
  wanted=$1 speaking=$2 silent=$3 like=$4 name=$5
  shift 5
  status=0
  timeout 20 "$tools/$name" "$@" >out 2>err </dev/null || status=$?
  if [ $status != "$wanted" ] || [ -s "$silent" ] || ! grep -qi "^usage: $like" "$speaking"; then
    echo "FAILED: tools/$name $*: exit status $status"
    cat out err
    failures=$((failures + 1))
  fi
}

for file in "$tools"/*; do
  [ -f "$file" ] || continue
  name=${file##*/}
  for help in --help -h; do expect 0 out err "tools/$name" "$name" $help; done
  expect 2 err out "tools/$name" "$name" --no-such-option
done
while read -r name arguments; do
  expect 2 err out "tools/$name" "$name" $arguments
done <<'END'
bench no_such_argument
bench --lane no_such_lane
coverage no_such_argument
demo no_such_argument
docs no_such_argument
fuzz
fuzz soon
fuzz 1 no_such_family
fuzz 1 --help-me
make_unicode_tables.py
run-windows
set-up no_such_purpose
test checks no_such_part
END
exit $failures
