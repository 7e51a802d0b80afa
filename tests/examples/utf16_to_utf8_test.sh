#!/bin/sh
# utf16_to_utf8_test.sh COMMAND...: runs the example, started by the given words, over the rows below: options, input and
# expected output, written as for printf '%b'. Then over a text of many buffers, cut at every place of its period.
set -u
directory=$(mktemp -d) || exit 1
trap 'rm -rf "$directory"' EXIT
failures=0

# converts STATUS OPTIONS: $directory/in to $directory/expected.
converts() {
  status=0
  $command $2 <"$directory/in" >"$directory/out" 2>"$directory/err" || status=$?
  [ "$status" = "$1" ] && cmp -s "$directory/out" "$directory/expected" && return
  failures=$((failures + 1))
  echo "FAILED: options '$2', exit status $status"
  od -c "$directory/in" | head -5
  od -c "$directory/out" | head -5
}

row() {
  printf '%b' "$3" >"$directory/in"
  printf '%b' "$4" >"$directory/expected"
  converts "$1" "$2"
}

# stream OPTIONS PERIOD EXPECTED: the period 4096 times, after each number of other units that shifts it in the buffers.
stream() {
  printf '%b' "$2" >"$directory/period"
  printf '%b' "$3" >"$directory/period8"
  for doubling in 1 2 3 4 5 6 7 8 9 10 11 12; do
    for file in period period8; do
      cat "$directory/$file" "$directory/$file" >"$directory/twice"
      mv "$directory/twice" "$directory/$file"
    done
  done
  for shift in '' 1 11 111 1111; do
    printf '%s' "$shift" | sed "s/1/$4/g" | tr '@' '\0' | cat - "$directory/period" >"$directory/in"
    printf '%s' "$shift" | cat - "$directory/period8" >"$directory/expected"
    converts 0 "$1"
  done
}

command=$*
row 0 '' '' ''
row 0 '' 'A\0b\0' 'Ab'
row 0 -b '\0A\0b' 'Ab'
row 0 '' '\0376\0377\0A\0b' 'Ab'
row 0 '' '\0377\0376\0254 =\0330\0000\0336' '\0342\0202\0254\0360\0237\0230\0200'
row 0 -b ' \0254\0330=\0336\0000' '\0342\0202\0254\0360\0237\0230\0200'
row 0 '' '=\0330' '\0355\0240\0275'
row 0 '' '\0377\0376' ''
row 1 '' 'A\0b' 'A'
row 1 '' 'A' ''
row 2 -x '' ''

stream -l 'A\0\0351\0\0254 =\0330\0000\0336' 'A\0303\0251\0342\0202\0254\0360\0237\0230\0200' '1@'
stream -b '\0A\0\0351 \0254\0330=\0336\0000' 'A\0303\0251\0342\0202\0254\0360\0237\0230\0200' '@1'

[ $failures = 0 ] || exit 1
echo "all conversions are right"
