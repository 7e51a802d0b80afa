#!/bin/sh
# pkg_config_test.sh PACKAGE LIBDIR SOURCE DIRECTORY COMPILER...: builds the program with the flags that pkg-config gives
# for the unpacked package, with the shared library and with the static one, and runs both, started by the words of $RUN.
set -eu
package=$1 source=$3 directory=$4
export PKG_CONFIG_LIBDIR="$1/$2"/pkgconfig LD_LIBRARY_PATH="$1/$2"
shift 4

check() {
  printf '%s: ' "$1"
  ${RUN-} "$directory/$1" | tr -d '\r' | grep '^2: example.com$'
}

rm -rf "$directory"
mkdir "$directory"
[ "$(pkg-config --modversion ulkch)" = 6.1 ]
# shellcheck disable=SC2046
"$@" "$source" -o "$directory/shared.exe" $(pkg-config --cflags --libs ulkch)
# shellcheck disable=SC2046
"$@" -static "$source" -o "$directory/static.exe" $(pkg-config --static --cflags --libs ulkch)
cp "$package"/bin/*.dll "$directory" 2>/dev/null || true
check shared.exe
unset LD_LIBRARY_PATH
rm -f "$directory"/*.dll
check static.exe
