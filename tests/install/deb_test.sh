#!/bin/sh
# deb_test.sh DIRECTORY READELF: the Debian package there is for the architecture of its files, names the shared library to
# others, and depends on the packages of all libraries that its files need, in versions with the symbols which they use.
set -eu
export LC_ALL=C
deb=$(echo "$1"/ulkch_6.1_*.deb) readelf=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
failures=0
dpkg-deb --raw-extract "$deb" "$directory"

# expect WHAT WANTED FOUND
expect() {
  [ "$2" = "$3" ] && return
  echo "$1: '$3', not '$2'"
  failures=$((failures + 1))
}

case $("$readelf" --file-header "$directory/usr/lib/libulkch.so.6") in
  *X86-64*) architecture=amd64 ;;
  *80386*) architecture=i386 ;;
esac
expect architecture $architecture "$(dpkg-deb --field "$deb" Architecture)"
expect shlibs 'libulkch 6 ulkch (>= 6.1)' "$(cat "$directory/DEBIAN/shlibs")"

# The oldest packages that will do. Those of the C library are numbered like its symbols.
for file in "$directory"/usr/bin/* "$directory"/usr/lib/libulkch.so.6; do
  "$readelf" --dynamic --version-info --wide "$file"
done >"$directory/elf"
newest() {
  sed -n "s/.*Name: $1_\([0-9.]*\).*/\1/p" "$directory/elf" | sort -V | tail -n 1
}
wanted=
for library in $(sed -n 's/.*Shared library: \[\(.*\)\]/\1/p' "$directory/elf" | sort -u); do
  case $library in
    libulkch.so.6) ;;
    libc.so.6) wanted="$wanted, libc6 (>= $(newest GLIBC))" ;;
    libgomp.so.1)
      expect 'newest symbol of libgomp' 4.0 "$(newest GOMP)"
      wanted="$wanted, libgomp1 (>= 4.9)"
      ;;
    *) expect library none "$library" ;;
  esac
done
expect depends "${wanted#, }" "$(dpkg-deb --field "$deb" Depends)"
exit $failures
