#!/bin/sh
# ulkgrep_test.sh COMMAND...: runs ulkgrep, started by the given words, over the rows below.
#
# A row is the expected exit status, the expected standard output and the arguments; $input is what standard input
# holds. Input and output are written as for printf '%b'.
set -u
export LC_ALL=C
manual=$(cd "$(dirname "$0")/../../ulkgrep" && pwd)/ulkgrep.1
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
  export LC_ALL=C.UTF-8  # in which Wine hands on arguments
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
row 0 'two\n' '(?x) t w # and o'
input=''
row 1 '' ''
input='\n\na'
row 0 '1:\n2:\n' -n '^$'
input='a\0b\nc\0\0d\n'
row 0 'a\0b\n' -a 'a.b$'
row 0 'ulkgrep: (standard input): binary file matches\n' 'a.b$'
row 0 '1\n' -c 'a.b$'
input='-v\n'
row 0 '-v\n' -e -v
input='one\ntwo\nTHREE three'
row 0 'one\nTHREE three\n' -v tw
row 0 '2\n' --invert-match --count tw
row 1 '' -v .
row 0 'one\n' -m 1 o
row 0 '' -q three
# A pattern's last literal ends no line for its other alternatives, nor for lookahead.
input='a warning\nfix colour\nof them\n'
row 0 'a warning\nfix colour\n' 'warning|colou?r'
row 0 'warning\ncolour\n' -o 'warning|colou?r'
row 0 'a <warning>\nfix <colour>\n' --replace '<$&>' -g 'warning|colou?r'
row 0 'of them\n' -v 'warning|colou?r'
row 0 'a warning\n' 'warning|x*y'
row 0 'a warning\n' -e 'warning|x*y' -e zz
row 0 'a warning\n' -w 'warning|x*y'
row 0 'a warning\nof them\n' '(?x)warn|th+em|x+y #'
row 0 'a warning\n' 'warn|\Qx*\Ey+z'
row 1 '' '^(?!.*the).*of'
row 0 'of them\n' 'IX|(?i)THEM'  # nor do options last
input='word\nwords\na word_ word\n\nwo.rd\n'
row 0 'word\na word_ word\n' -w word
row 0 'word\n' -x 'wor.|wo'
row 0 'wo.rd\n' -F o.r
row 0 'wo.rd\n' -Fx wo.rd
row 0 '1:word\n2:words\n' -nx -e 'words?'
input='1\n2\n3\n4\n5\n6\n7\n8\n'
row 0 '2-2\n3:3\n4-4\n--\n7-7\n8:8\n' -n -B1 -A1 -e 3 -e 8
row 0 '3\n4\n5\n6\n7\n' -C 1 '[46]'
row 0 '7\n8\n' -B1 8
row 0 '1\n2\n' -A 1 -m 1 .
row 0 '1-1\n2:2\n3-3\n' -n --context=1 2
input='end\r\nmid end\r\nendless\r\n'
row 0 'end\r\nmid end\r\n' --crlf 'end$'
row 0 'end\r\n' --crlf -x end
row 0 '<>\r\nmid <>\r\n' --crlf --replace '<>' 'end$'
row 1 '' -U 'end$'

# --- every match of a line
input='abbab a\n'
row 0 'abb\nab\na\n' -o 'ab*'
row 0 '1:abb\n1:ab\n1:a\n' -no 'ab*'
input='foofoo foo\n'
row 0 'foo\nfoo\n' -o '\bfoo'
row 0 'foo\nfoo\n' -o '\b(foo)'
row 0 'foo\n' -o '^(f)oo'
row 0 'foofoo\nfoo\n' -o '^foofoo|foo'
row 0 'foofoo foo\n' -ox 'foo|.*'
row 0 'foo\nfoo\nfoo\n' -o '^*foo'
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
row 0 'a.b\nacb\na.b\n' -o '(?x)(a).b # dots'
input='\0303\0251a\0303\0251\0303\n'
row 0 '\0303\0251\n\0303\0251\n' -o '\x{e9}'
row 0 '\0303\0251\na\n\0303\0251\n\0303\n' -o '.'
row 0 '\0303\0251\na\n\0303\0251\n\0303\n' -o '(.)'

# --- several patterns
input='one\n\ntwo\n'
row 0 'one\n' -e 'e$' -e '^T'
row 0 'e$:one\n' --which -e 'e$' -e '^T'
row 0 '1:ne:one\n2:^$:\n3:(.)o:two\n' --which -n -e '^$' -e '(.)o' -e ne
row 0 'o:o\n^o:o\no:o\n' --which -o -e o -e '^o' -e x
row 0 'o:><ne\no:tw><\n' --which --replace '>$1<' -e '(n)' -e o
seq 1 300 >few
seq 1 100 >expected
run $(seq 1 100 | sed 's/.*/-e ^&$/') few
[ "$status" = 0 ] && cmp -s out expected || fail 'a hundred patterns'

# The lines of a pattern are patterns, whether they come from the command line or from a file.
input='foo\nbar\n\nfoobar\n'
row 0 'foo\nbar\n' -x "$(printf 'bar\nfoo')"
row 0 'foo\nbar\nfoobar\n' -F "$(printf 'r\nfoo')"
row 0 'foo\nbar\nbar\nfoo\n' -oP "$(printf 'bar\nfoo')"
row 0 '4\n' -cE "$(printf 'r\n\nx')"
printf '^f\nr$' >patterns
row 0 '^f:foo\nr$:bar\n^f:foobar\n' --which -f patterns
printf 'q\n' >patterns
row 0 'bar\n' -xy -f patterns -e BAR
printf 'q\r\n' >patterns
row 1 '' --crlf --file=patterns
: >patterns
row 1 '0\n' -cf patterns
row 0 '4\n' -vcf patterns
printf 'a\0b\n' >patterns
error 2 '' 'ulkgrep: patterns: *zero byte' -f patterns
error 2 '' 'ulkgrep: absent: *' -f absent

# --- replacement
input='abcbd\nx\n'
row 0 'a[b]c[b]d\n' --replace '[$&]' -g b
row 0 'acd\n' --replace '' -g b
row 0 '2:(x)\n' -n --replace '($1)' '(x)'
row 0 'acbd\n' --replace '$2$10$1' '(.)b'
row 0 'a-c-d\n-\n' --replace - -g '\bx|(?<=a|c)b'
row 0 'abcbd-\nx-\n' --replace - -g '$'
row 0 '2\n' -c --replace - -g .
input='axxb\n'
row 0 '[]axxb\n' --replace '[$&]' 'x*'
row 0 '[]a[xx][]b[]\n' --replace '[$&]' -g 'x*'
row 0 '<xxx>\n' --replace '<$1$2>' '.(?=(x+))(x|)xb'
input='b\nab\n\nb\n'
error 2 'b\n<a>\nb\n' 'ulkgrep: (standard input):1: the line is left as it is: ?*' --replace '<$1>' -g '(a)?b'
row 0 '<>\n<a>\n<>\n' --replace '<$1>' -g '(a|)b'
input='a\0303'
row 0 '[a][\0303]\n' --replace '[$&]' -g .
for template in '$' 'a$b' '$0' '$00' '$$1'; do
  error 2 '' "ulkgrep: the template '$template': ulkErrRegExpBackRef (?*" --replace "$template" b
done

# Lines that become much longer than they were, and longer than the one before.
input='a\nab\nabcdefgh\n'
sixteen='$1$1$1$1$1$1$1$1$1$1$1$1$1$1$1$1'
run --replace "$sixteen" -g '(.+)'
[ "$(awk '{printf "%d ", length()}' out)" = '16 32 128 ' ] || fail 'a longer line'
head -c 3000 /dev/zero | tr '\0' a >wide
run --replace "$sixteen$sixteen" -g '(a)(?!a{2990})' wide
[ "$status" = 0 ] && [ "$(head -c 100000 out | wc -c)" = 95691 ] || fail 'many matches'
run --replace "$sixteen" '(a{100})$' wide
[ "$status" = 0 ] && [ "$(wc -c <out)" = 4501 ] || fail 'a late match'

# --- colours
input='a xb\n'
row 0 'a \033[01;31mxb\033[m\n' --color '(x)b|c'
row 0 '1:\033[01;31ma\033[m xb\n' --color=always -n a
row 0 '\033[01;31ma\033[m\n' --color=always -o a
row 0 'a xb\n' --color=always ''
row 0 'a xb\n' a
row 0 'a xb\n' --color --color=never a
row 0 'b:a x\033[01;31mb\033[m\n' --which --color -e c -e b

# --- files
printf 'one\ntwo\n' >first
printf 'two' >second
input='two in\n'
row 0 'first:two\nsecond:two\n' w first second
row 0 'first:2:two\n(standard input):1:two in\n' -n w first -
row 0 'first:1\nsecond:0\n' -c one first second
row 0 '1\n0\n' -hc one first second
row 0 'first:one\n' -H one first
row 0 'first\n' -l one first second
row 0 'second\n' -L one first second
row 0 '' -L t first second
row 1 'first\nsecond\n' -L x first second
row 0 'first\n' -lc one first second
row 0 'second\n' -L -c one first second
row 0 '' -qlc one first second
row 0 'first\0second\0' -lZ t first second
row 0 'first\00001\nsecond\00000\n' --null -c one first second
row 0 'first\00002:two\n' -nHZ w first
row 0 'one\n' -h --exclude='s*' . first second -m1
row 0 'second:two\n' --exclude='*' --include='s*' . ./first second
row 1 '' --include=x . first
error 0 '' '*absent*' -q one absent first second
error 2 '' '' -s one absent
mkdir -p tree/sub
printf 'a two\n' >tree/b.txt
printf 'two\n' >tree/sub/a.c
printf 'three\n' >tree/sub/z.txt
row 0 'tree/b.txt:a two\ntree/sub/a.c:two\n' -r two tree
row 0 'tree/sub/a.c:two\n' -r --include='*.c' --include='?.h' two tree
row 0 'tree/sub/a.c\n' -rl '^two' tree
row 0 'tree/b.txt\n' -rl --exclude-dir='s?b' two tree
row 0 'tree/b.txt\n' -rl --exclude='*.c' two tree
if ln -s .. tree/sub/up && ln -s b.txt tree/link && [ $emulated = 0 ]; then
  row 0 'tree/b.txt\ntree/sub/a.c\n' -rl two tree
  error 2 'tree/b.txt\ntree/link\ntree/sub/a.c\n' 'ulkgrep: tree/sub/up: leads back *' -Rl two tree
fi
rm -f tree/sub/up tree/link
mkdir "$(printf 'tr\303\251e')"
printf 'deux\n' >"$(printf 'tr\303\251e/\303\251')"
row 0 'tr\0303\0251e/\0303\0251:deux\n' -r '^' "$(printf 'tr\303\251e')"
cd tree
row 0 'b.txt:1\nsub/a.c:1\nsub/z.txt:0\n' -rc --include='*.c' --include='*.txt' two
cd ..
error 2 'first:two\n' 'ulkgrep: absent: ?*' w first absent
error 2 '' 'ulkgrep: .: is a directory; -r *' w .

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

# --- many lines at once find what line by line finds, for which a comment in the pattern is enough
seq 1 20000 | awk '{ print ($1 % 7 ? "" : "key=" $1 "; ") ($1 % 90 ? "text" : "") ($1 % 3 ? "" : " x]y-") }' >mixed
while read -r pattern; do
  for option in -c -vc -nw -x -icv; do
    run "$option" -e "$pattern" mixed
    mv out many
    run "$option" -e "(?#)$pattern" mixed
    cmp -s out many || fail "$option" "$pattern"
  done
done <<'END'
^$
$
^
x*
.
t
1$
\d\s*;
[^a-z]+$
[^]e]y
[\s\d]{3}
\D+\W$
(\w)=?(?:[12]|4)
key=.*9|x
k?e?y?=.*7
t+?e?x{1}t
a{2,3}|=
[^-]x|;\b
^key.*\bx
^*x
-+?-
text|x?7
(?:a|e|x){2}|90+y
END

# --- the match limit
input='aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaac\nab\n'
error 2 'ab\n' 'ulkgrep: (standard input):1: the line may match: ulkErrMatchLimit (?*' --limit 1000 '(?:a|aa)*b|(a|aa)*d|ab'
error 2 'ab\n' '*:1: the line may match: ulkErrMatchLimit *' --limit 1000 -e ab -e '(?:a|aa)*b|(a|aa)*d'
input='a................................................................................................\n'
error 2 'a\n' 'ulkgrep: (standard input):1: only the first match is shown: ulkErrMatchLimit (?*' --limit 10 -o a
error 2 "$input" 'ulkgrep: (standard input):1: the line is left as it is: ulkErrMatchLimit (?*' --limit 10 --replace b -g a
row 0 'a\n' --limit 2147483647 -o '(a)'

# --- the command line and the pattern
input='a\n'
error 2 '' 'usage: ulkgrep *'
error 2 '' 'ulkgrep: -k is no option*usage: ulkgrep *' -nk a
error 2 '' 'ulkgrep: --in is no option, *' --in a
error 2 '' 'ulkgrep: --count=1 is no option, *' --count=1 a
error 2 '' 'ulkgrep: -A needs an argument*' -nA
error 2 '' 'ulkgrep: --regexp needs an argument*' --regexp
error 2 '' '*-g *needs --replace*' -g a
error 2 '' '*-v and --replace *' -v --replace b a
error 2 '' '*-A takes *' -A x a
error 2 '' '*-o and --replace *' -o --replace a a
error 2 '' '*--limit takes *' --limit 2147483648 a
error 2 '' '*--color takes *' --color=red a
run --version
[ "$status" = 0 ] && grep -q '^ulkgrep of ulkch 6.1$' out || fail --version
run --help
[ "$status" = 0 ] && grep -q '^usage: ulkgrep ' out || fail --help
# The manual knows the same options.
for option in $(grep -o -e '--[a-z-]*[a-z]' out); do
  sed 's/\\//g' "$manual" | grep -q -e "^\.B .*$option" || fail "$option"
done

caret 'a(b' ulkErrRegExpGroup 3 '     ^'
caret 'ab**' ulkErrRegExpQuantifier 3 '     ^'
caret '(a)\2' ulkErrRegExpBackRef 4 '      ^'
caret "$(printf 'e\303\251\303\251[b-a]')" ulkErrRegExpClass 8 '        ^'
caret "$(printf '\ta**')" ulkErrRegExpQuantifier 3 '  \t  ^'
caret "$(printf 'ab\nc+*')" ulkErrRegExpQuantifier 2 '    ^'
error 2 '' '*within an escape*' 'a\'
error 2 '' '*within an escape*' 'a\c'
row 0 'a\n' -e 'a|\\c|\\'

[ "$failures" = 0 ] && echo "$rows rows passed"
