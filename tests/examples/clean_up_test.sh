#!/bin/sh
# clean_up_test.sh COMMAND...: runs the example, started by the given words, over the rows below: expected exit status,
# options, input and expected output, both written as for printf '%b', and a pattern (of case) that standard error is like.
set -u
directory=$(mktemp -d) || exit 1
trap 'rm -rf "$directory"' EXIT
failures=0
command=$*

# Wine may speak on standard error when it starts: let it do so now.
$command </dev/null >/dev/null 2>&1

row() {
  printf '%b' "$3" >"$directory/in"
  printf '%b' "$4" >"$directory/expected"
  status=0
  $command $2 <"$directory/in" >"$directory/raw" 2>"$directory/err" || status=$?
  tr -d '\r' <"$directory/raw" >"$directory/out"
  case $(cat "$directory/err") in
    $5) [ "$status" = "$1" ] && cmp -s "$directory/out" "$directory/expected" && return ;;
  esac
  failures=$((failures + 1))
  echo "FAILED: options '$2', input '$3', exit status $status"
  cat "$directory/out" "$directory/err"
}

row 0 '' 'a;b' 'a,b\n' ''
row 0 '' ' Name ;"City"; Sum \r\n"O\0047Neill";\tNew York\t;1,50\n' "Name,City,Sum\nO'Neill,New York,1 50\n" ''
row 0 '' 'two\twords; "; " ;end\n' 'two words,,,end\n' ''
row 0 '' ';;\n\n;x\n' ',,\n\n,x\n' ''
row 0 '-f , -t ;' 'a , b;c ,\n' 'a;b c;\n' ''

many=$(printf '%063d' 0 | sed 's/0/;/g')
row 0 '' "$many" "$(echo "$many" | tr ';' ',')\n" ''
row 1 '' "a;b\n$many;\nc\n" 'a,b\n' '*line 2:*more substrings*'
row 1 '' "$many;x\n" '' '*line 1:*more substrings*'
wide=$(printf '%0512d' 7)
row 0 '' "a;$wide;b" "a,$wide,b\n" ''
row 1 '' "a;$wide$wide;b" '' '*line 1:*was cut*'
row 1 '' "$wide$wide$wide$wide$wide$wide$wide$wide\n" '' '*line 1: too long*'
row 1 '' 'a\0000b\n' '' '*line 1: too long, or not text*'
row 1 "$directory/absent" '' '' '*absent*'
row 2 '-f ab' '' '' 'usage: *'

[ $failures = 0 ] || exit 1
echo "all rows passed"
