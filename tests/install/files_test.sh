#!/bin/sh
# files_test.sh CMAKE CPACK BUILD LIBDIR SYSTEM DIRECTORY: installs the build and makes its packages in a new directory,
# and compares the files of each with those that the manifest has for all systems and for this one. Leaves the archive
# unpacked as DIRECTORY/package.
set -eu
cmake=$1 cpack=$2 build=$3 libdir=$4 directory=$6
export LC_ALL=C
rm -rf "$directory"
mkdir -p "$directory/tree" "$directory/package"
sed "s|^$5 ||; / /d; s|^lib/|$libdir/|" "$(dirname "$0")/manifest.txt" | sort >"$directory/expected"
failures=0

# files_of NAME: what stands in the directory NAME is what should.
files_of() {
  echo "$1 (- missing, + not in the manifest):"
  (cd "$directory/$1" && find . ! -type d) | sed 's|^\./||' | sort >"$directory/found"
  diff -U0 "$directory/expected" "$directory/found" || failures=$((failures + 1))
}

"$cmake" --install "$build" --prefix "$directory/tree"
files_of tree

(cd "$directory" && "$cpack" --config "$build/CPackConfig.cmake" -B "$directory/packages")
cd "$directory/package"
"$cmake" -E tar xf "$directory"/packages/ulkch-6.1-*-*.[tz]*
mv ulkch-6.1-*/* .
rmdir ulkch-6.1-*
files_of package

# The Debian packages hold the same between them, elsewhere: libraries by their architecture, documents by their package.
[ "$5" = linux ] || exit $failures
for package in libulkch-dev libulkch6 ulkgrep; do
  dpkg-deb --extract "$directory"/packages/${package}_6.1-1_*.deb "$directory/deb"
  for file in changelog.Debian.gz copyright; do echo share/doc/$package/$file; done
done >"$directory/added"
mv "$directory/deb/usr" "$directory/deb.usr"
sed "/LICENSE/d; s|share/doc/ulkch/|share/doc/libulkch-dev/|; s|^$libdir/|lib/$(cd "$directory/deb.usr/lib" && echo *)/|
     s|ulkgrep\.1$|&.gz|" "$directory/expected" | sort - "$directory/added" >"$directory/expected.deb"
mv "$directory/expected.deb" "$directory/expected"
files_of deb.usr
exit $failures
