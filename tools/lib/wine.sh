# Shell functions: a Wine that runs 32-bit programs. The machine's own if it has one; else Debian's, unpacked into the
# user's cache. Console programs need nothing of Wine beyond its own packages and the 32-bit C library, so neither
# root, nor a second architecture in the package manager, nor a chroot is needed.

wine_cache=${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/ulkch/wine

export WINEPREFIX=$wine_cache/prefix
export WINEARCH=win32
export WINEDEBUG=${WINEDEBUG:--all}
# Without a browser and .NET the prefix is made without asking to download them.
export WINEDLLOVERRIDES='mscoree,mshtml='
# No window is wanted, also where there is a display.
unset DISPLAY WAYLAND_DISPLAY

# Prints the command; fails if there is none.
find_wine() {
  if [ -x "$wine_cache/tree/usr/lib/wine/wine" ]; then
    echo "$wine_cache/tree/usr/lib/wine/wine"
  else
    command -v wine
  fi
}

# Downloads Debian's packages for i386 with a package database of our own and unpacks them.
fetch_wine() {
  command -v apt-get >/dev/null && command -v dpkg-deb >/dev/null || return 1
  work=$wine_cache/work
  rm -rf "$work" "$wine_cache/tree" "$wine_cache/proven"
  mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/tree" || return 1
  : >"$work/status"
  mirror=$(apt-get indextargets --format '$(SITE)' 'Codename: bookworm' 'Label: Debian' | head -n 1)
  keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  echo "deb [signed-by=$keyring] ${mirror:-http://deb.debian.org/debian} bookworm main" >"$work/sources.list"
  cat >"$work/apt.conf" <<EOF
Dir::State "$work/state";
Dir::State::status "$work/status";
Dir::Cache "$work/cache";
Dir::Etc::sourcelist "$work/sources.list";
Dir::Etc::sourceparts "-";
APT::Architecture "i386";
APT::Architectures "i386";
APT::Sandbox::User "";
Acquire::Languages "none";
Acquire::Retries "3";
EOF
  (
    cd "$work" || exit 1
    export APT_CONFIG=$work/apt.conf
    apt-get -q update && apt-get -q download wine32 libwine libz-mingw-w64
  ) || return 1
  for package in "$work"/*.deb; do
    dpkg-deb -x "$package" "$work/tree" || return 1
  done
  # Most of the size is debugging information, which the prefix would hold a second copy of.
  i686-w64-mingw32-strip --strip-debug "$work"/tree/usr/lib/i386-linux-gnu/wine/i386-windows/*.dll 2>/dev/null || true
  # Debian's wineserver is a script that looks in /usr.
  ln -sf wineserver32 "$work/tree/usr/lib/wine/wineserver" || return 1
  # Wine's user32 needs zlib, which is no part of Wine and so has to be in the prefix.
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX/drive_c/windows/system32" &&
    cp "$work/tree/usr/i686-w64-mingw32/lib/zlib1.dll" "$WINEPREFIX/drive_c/windows/system32/" &&
    mv "$work/tree" "$wine_cache/tree" && rm -rf "$work"
}

# Runs a program that does nothing; the first time it makes the prefix. A Wine that has once worked is not asked again.
wine_works() {
  wine=$(find_wine) || return 1
  proven=$wine_cache/proven
  [ "$(cat "$proven" 2>/dev/null)" = "$wine" ] && return
  mkdir -p "$wine_cache" && timeout 120 "$wine" cmd /c exit 0 </dev/null >/dev/null 2>&1 && echo "$wine" >"$proven"
}

# Makes 32-bit Wine usable if it is not yet.
set_up_wine() {
  wine_works && return
  tell "fetching Wine for 32-bit programs into $wine_cache"
  fetch_wine && wine_works
}
