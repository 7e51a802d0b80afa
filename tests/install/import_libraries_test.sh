#!/bin/sh
# import_libraries_test.sh NM LIBRARY LIBRARY: both offer the same functions, and both some.
set -eu
imports() {
  "$nm" --defined-only "$1" | sed -n 's/.* I __imp__*//p' | LC_ALL=C sort
}
nm=$1
one=$(imports "$2")
other=$(imports "$3")
[ -n "$one" ] && [ "$one" = "$other" ] && exit
echo "offered by $2:" $one
echo "offered by $3:" $other
exit 1
