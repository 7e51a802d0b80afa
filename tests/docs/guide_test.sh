#!/bin/sh
# guide_test.sh OUTPUT PROGRAM...: the program succeeds and prints what the file says.
expected=$1
shift
actual=$("$@") || exit
printf '%s\n' "$actual" | tr -d '\r' | diff - "$expected"
