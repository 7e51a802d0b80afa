#!/bin/sh
# readme_test.sh README SOURCE: the README's first C code block is the given file, word for word.
sed -n '/^```c$/,/^```$/p' "$1" | sed '1d;/^```$/,$d' | diff - "$2"
