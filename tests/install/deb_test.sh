#!/bin/sh
# deb_test.sh DIRECTORY READELF PYTHON: the Debian packages there are for the architecture of their files, may stand beside those
# for another one, name the shared library to others, and depend on the packages of all libraries that their files need,
# in versions with the symbols which they use. The links of their documents lead somewhere. Lintian, where there is one, finds no error.
set -eu
export LC_ALL=C
packages=$1 readelf=$2 python=$3
links=$(cd "$(dirname "$0")/../docs" && pwd)/links.py
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
failures=0
for deb in "$packages"/*.deb; do
  file=$(basename "$deb")
  dpkg-deb --raw-extract "$deb" "$directory/${file%%_*}"
done

# expect WHAT WANTED FOUND
expect() {
  [ "$2" = "$3" ] && return
  echo "$1: '$3', not '$2'"
  failures=$((failures + 1))
}

library=$(echo "$directory"/libulkch6/usr/lib/*/libulkch.so.6)
case $("$readelf" --file-header "$library") in
  *X86-64*) architecture=amd64 triplet=x86_64-linux-gnu ;;
  *80386*) architecture=i386 triplet=i386-linux-gnu ;;
esac
expect library "$directory/libulkch6/usr/lib/$triplet/libulkch.so.6" "$library"
expect shlibs 'libulkch 6 libulkch6 (>= 6.1)' "$(cat "$directory/libulkch6/DEBIAN/shlibs")"

# The oldest packages that will do. Those of the C library are numbered like its symbols.
for file in "$directory/ulkgrep/usr/bin/ulkgrep" "$library"; do
  "$readelf" --dynamic --version-info --wide "$file"
done >"$directory/elf"
newest() {
  sed -n "s/.*Name: $1_\([0-9.]*\).*/\1/p" "$directory/elf" | sort -V | tail -n 1
}
wanted=
for needed in $(sed -n 's/.*Shared library: \[\(.*\)\]/\1/p' "$directory/elf" | sort -u); do
  case $needed in
    libulkch.so.6) ;;
    libc.so.6) wanted="$wanted, libc6 (>= $(newest GLIBC))" ;;
    libgomp.so.1)
      expect 'newest symbol of libgomp' 4.0 "$(newest GOMP)"
      wanted="$wanted, libgomp1 (>= 4.9)"
      ;;
    *) expect library none "$needed" ;;
  esac
done

"$readelf" --dyn-syms --dynamic --wide "$library" >"$directory/hardened"
for mark in BIND_NOW __stack_chk_fail; do
  grep -q "$mark" "$directory/hardened" || expect "$library" $mark none
done

while read -r package multi_arch depends; do
  control=$directory/$package/DEBIAN/control
  field() { sed -n "s/^$1: //p" "$control"; }
  expect "$package: architecture" $architecture "$(field Architecture)"
  expect "$package: Multi-Arch" "$multi_arch" "$(field Multi-Arch)"
  expect "$package: depends" "$depends" "$(field Depends)"
done <<END
libulkch6 same ${wanted#, }
libulkch-dev same libulkch6 (= 6.1-1)
ulkgrep foreign libulkch6 (>= 6.1)$wanted
END

"$python" -B "$links" "$directory/libulkch-dev/usr/share/doc/libulkch-dev" || failures=$((failures + 1))

if command -v lintian >/dev/null; then
  lintian --allow-root --fail-on error "$packages"/*.deb || failures=$((failures + 1))
fi
exit $failures
