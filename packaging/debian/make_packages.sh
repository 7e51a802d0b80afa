#!/bin/sh
# make_packages.sh CMAKE BUILD TRIPLET VERSION OPENMP DIRECTORY: makes the Debian packages of a build, one of each
# component that ../../cmake/ulkch_install.cmake names, in DIRECTORY. cpack runs it.
set -eu
cmake=$1 build=$2 triplet=$3 version=$4 openmp=$5 directory=$6
sources=$(cd "$(dirname "$0")/../.." && pwd)
maintainer='The ulkch maintainers <maintainers@ulkch.invalid>'
umask 022
case $triplet in
  i386-*) architecture=i386 ;;
  *) architecture=amd64 ;;
esac
work=$build/debian
rm -rf "$work"
mkdir -p "$directory"

# What was built on a 64-bit machine for 32-bit programs is not what dpkg-shlibdeps would look at, so the dependencies are
# spelt out. ulkgrep needs this version of the C library, the shared library an older one.
needs='libc6 (>= 2.34)'
case $openmp in ON | 1 | TRUE | YES) needs="$needs, libgomp1 (>= 4.9)" ;; esac

# pack PACKAGE SECTION MULTI-ARCH DEPENDS SUMMARY: the long description is the standard input.
pack() {
  root=$work/$1
  DESTDIR=$root "$cmake" --install "$build" --prefix /usr --component "$1" --strip >/dev/null
  documents=$root/usr/share/doc/$1
  mkdir -p "$documents" "$root/DEBIAN"
  {
    printf 'Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\nUpstream-Name: ulkch\n\n'
    sed -n 's/^Copyright (c) /Files: *\nCopyright: /p' "$sources/LICENSE"
    printf 'License: Expat\n'
    sed '1,/^Copyright/d; /./!s/^/./; s/^/ /' "$sources/LICENSE" | sed 1d
  } >"$documents/copyright"
  {
    printf 'ulkch (%s-1) unstable; urgency=medium\n\n  * %s\n\n' "$version" 'See CHANGELOG.md in libulkch-dev.'
    printf ' -- %s  Thu, 01 Jan 2026 00:00:00 +0000\n' "$maintainer"
  } | gzip -9n >"$documents/changelog.Debian.gz"
  if [ "$1" = ulkgrep ]; then
    strip "$root/usr/bin/ulkgrep"
    gzip -9n "$root/usr/share/man/man1/ulkgrep.1"
  fi
  {
    printf 'Package: %s\nSource: ulkch\nVersion: %s-1\nArchitecture: %s\n' "$1" "$version" "$architecture"
    printf 'Multi-Arch: %s\nSection: %s\nPriority: optional\nMaintainer: %s\n' "$3" "$2" "$maintainer"
    printf 'Depends: %s\nInstalled-Size: %s\n' "$4" "$(du -k --apparent-size -s "$root/usr" | cut -f1)"
    printf 'Description: %s\n' "$5"
    sed 's/^/ /'
  } >"$root/DEBIAN/control"
  (cd "$root" && find usr -type f -exec md5sum {} + | LC_ALL=C sort -k2) >"$root/DEBIAN/md5sums"
  if [ "$1" = libulkch6 ]; then
    # Programs that are packaged against the library learn from this what to depend on, and ldconfig that it came.
    printf 'libulkch 6 libulkch6 (>= %s)\n' "$version" >"$root/DEBIAN/shlibs"
    printf 'activate-noawait ldconfig\n' >"$root/DEBIAN/triggers"
  fi
  find "$root" -type d -exec chmod 755 {} +
  find "$root" -type f -exec chmod u=rwX,go=rX {} +
  dpkg-deb --root-owner-group --build "$root" "$directory/${1}_$version-1_$architecture.deb"
}

pack libulkch6 libs same "$needs" 'string primitives and regular expressions for x86' <<'END'
Functions over strings of 8-bit and 16-bit units, and a backtracking engine for
expressions over bytes and UTF-8, with a limit on the work of every search.
.
This package holds the shared library.
END
pack libulkch-dev libdevel same "libulkch6 (= $version-1)" 'string primitives and regular expressions - development' <<'END'
Functions over strings of 8-bit and 16-bit units, and a backtracking engine for
expressions over bytes and UTF-8, with a limit on the work of every search.
.
This package holds the headers for C and C++, the static libraries, the
documents and examples.
END
[ ! -e "$build/ulkgrep/ulkgrep" ] || pack ulkgrep utils foreign "libulkch6 (>= $version), $needs" \
  'grep with expressions of ulkch, and replacement' <<'END'
Prints the lines of files that match an expression, or that text with the
matches replaced. Its options are mostly those of grep.
END
