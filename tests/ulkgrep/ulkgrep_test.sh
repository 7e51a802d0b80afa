#!/bin/sh
# ulkgrep_test.sh COMMAND...: runs ulkgrep, started by the given words, over the rows below.
#
# A row is the expected exit status, the expected standard output and the arguments; $input is what standard input
# holds. Input and output are written as for printf '%b'.
set -u
export LC_ALL=C
directory=$(mktemp -d) || exit 1
trap 'rm -rf "$directory"' EXIT
for word in "$@"; do
  case $word in */*) word=$(realpath "$word") ;; esac
  command="${command-} $word"
done
cd "$directory" || exit 1
rows=0
failures=0

run() {
  status=0
  printf '%b' "$input" | $command "$@" >out 2>raw || status=$?
  tr -d '\r' <raw >err  # standard error is a text on Windows
  rows=$((rows + 1))
}

# Wine may speak on standard error when it starts: let it do so now.
emulated=$(($# > 1))
if [ $emulated = 1 ]; then
  input=''
  run --help
fi

# fail WHAT ARGUMENT...
fail() {
  failures=$((failures + 1))
  echo "FAILED: $*: exit status $status"
  sed 's/^/  out: /' out | od -c | head -20
  sed 's/^/  err: /' err
}

row() {
  wanted=$1
  printf '%b' "$2" >expected
  shift 2
  run "$@"
  [ "$status" = "$wanted" ] && cmp -s out expected && [ ! -s err ] || fail "$@"
}

# error STATUS OUTPUT ERRORS ARGUMENT...: ERRORS is a pattern (of case) that standard error must be like.
error() {
  wanted=$1 pattern=$3
  printf '%b' "$2" >expected
  shift 3
  run "$@"
  [ "$status" = "$wanted" ] && cmp -s out expected || fail "$@"
  case $(cat err) in
    $pattern) ;;
    *) fail "$@" ;;
  esac
}

# caret PATTERN NAME OFFSET CARET-LINE OPTION...: the pattern fails to compile with the status of that name.
caret() {
  pattern=$1 name=$2 offset=$3
  { printf '%s\n' "$pattern" | sed -n '$s/^/  /p'; printf '%b\n' "$4"; } >expected
  shift 4
  run "$@" -e "$pattern"
  sed 1d err >out
  [ "$status" = 2 ] && cmp -s out expected || fail "$pattern"
  case $(sed -n 1p err) in
    "ulkgrep: byte $offset of the pattern: $name ("?*) ;;
    *) fail "$pattern" ;;
  esac
}

# --- which lines match
input='one\ntwo\nTHREE three'
row 0 'two\n' tw
row 0 'THREE three\n' 't.r.e$'
row 0 '2\n' -c 'e$'
row 1 '0\n' -c four
row 0 'one\nTHREE three\n' e -
row 0 'THREE three\n' -i '^three T'
row 0 'two\n' -x ' t w # and o'
input=''
row 1 '' ''
input='\n\na'
row 0 '1:\n2:\n' -n '^$'
input='a\0b\nc\0\0d\n'
row 0 'a\0b\n' 'a.b$'
input='-v\n'
row 0 '-v\n' -e -v

# --- every match of a line
input='abbab a\n'
row 0 'abb\nab\na\n' -o 'ab*'
row 0 '1:abb\n1:ab\n1:a\n' -no 'ab*'
input='foofoo foo\n'
row 0 'foo\nfoo\n' -o '\bfoo'
row 0 'foo\nfoo\n' -o '\b(foo)'
row 0 'foo\n' -o '^(f)oo'
input='abbab\n'
row 0 'b\nb\n' -o '(?<=a)b'
row 0 'b\nb\n' -o '(?<=a)(b)'
row 0 'b\n' -o '(?<!a)(b)'
input='aabbc1cc\n'
row 0 'aa\nbb\ncc\n' -o '(.)\1'
row 0 'aabb\ncc\n' -o '((.)\2)+'
input='axxb\n'
row 0 'xx\n' -o 'x*'
row 0 '' -o 'y*'
row 0 '' -o '(a)$|'
row 0 'b\n' -o '(?:|b)$'
input='a.b acb a.b\n'
row 0 'a.b\na.b\n' -o '\Qa.b'
row 0 'a.b\nacb\na.b\n' -ox '(a).b # dots'
input='\0303\0251a\0303\0251\0303\n'
row 0 '\0303\0251\n\0303\0251\n' -o '\x{e9}'
row 0 '\0303\0251\na\n\0303\0251\n\0303\n' -o '.'
row 0 '\0303\0251\na\n\0303\0251\n\0303\n' -o '(.)'

# --- several patterns
input='one\n\ntwo\n'
row 0 'e$:one\n' -e 'e$' -e '^T'
row 0 '1:ne:one\n2:^$:\n3:(.)o:two\n' -n -e '^$' -e '(.)o' -e ne
row 0 'o:o\n^o:o\no:o\n' -o -e o -e '^o' -e x
row 0 'o:><ne\no:tw><\n' -r '>$1<' -e '(n)' -e o
seq 1 300 >few
seq 1 100 | sed 's/.*/^&$:&/' >expected
run $(seq 1 100 | sed 's/.*/-e ^&$/') few
[ "$status" = 0 ] && cmp -s out expected || fail 'a hundred patterns'

# --- replacement
input='abcbd\nx\n'
row 0 'a[b]c[b]d\n' -r '[$&]' -g b
row 0 'acd\n' -r '' -g b
row 0 '2:(x)\n' -n -r '($1)' '(x)'
row 0 'acbd\n' -r '$2$10$1' '(.)b'
row 0 'a-c-d\n-\n' -r - -g '\bx|(?<=a|c)b'
row 0 'abcbd-\nx-\n' -r - -g '$'
row 0 '2\n' -c -r - -g .
input='axxb\n'
row 0 '[]axxb\n' -r '[$&]' 'x*'
row 0 '[]a[xx][]b[]\n' -r '[$&]' -g 'x*'
row 0 '<xxx>\n' -r '<$1$2>' '.(?=(x+))(x|)xb'
input='b\nab\n\nb\n'
error 2 'b\n<a>\nb\n' 'ulkgrep: (standard input):1: the line is left as it is: ?*' -r '<$1>' -g '(a)?b'
row 0 '<>\n<a>\n<>\n' -r '<$1>' -g '(a|)b'
input='a\0303'
row 0 '[a][\0303]\n' -r '[$&]' -g .
for template in '$' 'a$b' '$0' '$00' '$$1'; do
  error 2 '' "ulkgrep: the template '$template': ulkErrRegExpBackRef (?*" -r "$template" b
done

# Lines that become much longer than they were, and longer than the one before.
input='a\nab\nabcdefgh\n'
sixteen='$1$1$1$1$1$1$1$1$1$1$1$1$1$1$1$1'
run -r "$sixteen" -g '(.+)'
[ "$(awk '{printf "%d ", length()}' out)" = '16 32 128 ' ] || fail 'a longer line'
head -c 3000 /dev/zero | tr '\0' a >wide
run -r "$sixteen$sixteen" -g '(a)(?!a{2990})' wide
[ "$status" = 0 ] && [ "$(head -c 100000 out | wc -c)" = 95691 ] || fail 'many matches'
run -r "$sixteen" '(a{100})$' wide
[ "$status" = 0 ] && [ "$(wc -c <out)" = 4501 ] || fail 'a late match'

# --- colours
input='a xb\n'
row 0 'a \033[01;31mxb\033[m\n' --color '(x)b|c'
row 0 '1:\033[01;31ma\033[m xb\n' --color=always -n a
row 0 '\033[01;31ma\033[m\n' --color=always -o a
row 0 'a xb\n' --color=always ''
row 0 'a xb\n' a
row 0 'a xb\n' --color --color=never a
row 0 'b:a x\033[01;31mb\033[m\n' --color -e c -e b

# --- files
printf 'one\ntwo\n' >first
printf 'two' >second
input='two in\n'
row 0 'first:two\nsecond:two\n' w first second
row 0 'first:2:two\n(standard input):1:two in\n' -n w first -
row 0 'first:1\nsecond:0\n' -c one first second
error 2 'first:two\n' 'ulkgrep: absent: ?*' w first absent
error 2 '' 'ulkgrep: .: ?*' w .

# --- long lines, and lines across the reader's buffer
input=''
seq 1 60000 >numbers
run '' numbers
cmp -s out numbers || fail numbers
{ head -c 300000 /dev/zero | tr '\0' a; printf 'b\nab\nc'; } >long
row 0 '1:ab\n2:ab\n' -no 'ab' long
head -c 200 /dev/zero | tr '\0' a >many
run -o '(a)' many
[ "$(wc -l <out)" = 200 ] || fail many

# --- the match limit
input='aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaac\nab\n'
error 2 'ab\n' 'ulkgrep: (standard input):1: the line may match: ulkErrMatchLimit (?*' --limit 1000 '(?:a|aa)*b|(a|aa)*d|ab'
error 2 'ab:ab\n' '*:1: the line may match: ulkErrMatchLimit *' --limit 1000 -e ab -e '(?:a|aa)*b|(a|aa)*d'
input='a................................................................................................\n'
error 2 'a\n' 'ulkgrep: (standard input):1: only the first match is shown: ulkErrMatchLimit (?*' --limit 10 -o a
error 2 "$input" 'ulkgrep: (standard input):1: the line is left as it is: ulkErrMatchLimit (?*' --limit 10 -r b -g a
row 0 'a\n' --limit 2147483647 -o '(a)'

# --- the command line and the pattern
input='a\n'
error 2 '' 'usage: ulkgrep *'
error 2 '' '*usage: ulkgrep *' -q a
error 2 '' '*-o and -r *' -o -r a a
error 2 '' '*--limit takes *' --limit 2147483648 a
error 2 '' '*--color takes *' --color=red a
run --help
[ "$status" = 0 ] && grep -q '^usage: ulkgrep ' out || fail --help

caret 'a(b' ulkErrRegExpGroup 3 '     ^'
caret 'ab**' ulkErrRegExpQuantifier 3 '     ^'
caret '(a)\2' ulkErrRegExpBackRef 4 '      ^'
# Wine hands on arguments in the code page of the C locale, which has no such letters.
[ $emulated = 1 ] || caret "$(printf 'e\303\251\303\251[b-a]')" ulkErrRegExpClass 8 '        ^'
caret "$(printf '\ta**')" ulkErrRegExpQuantifier 3 '  \t  ^'
caret "$(printf 'a # b\nc+*')" ulkErrRegExpQuantifier 8 '    ^' -x
error 2 '' '*lone backslash*' 'a\'
row 0 'a\n' -e 'a|\\'

[ "$failures" = 0 ] && echo "$rows rows passed"
