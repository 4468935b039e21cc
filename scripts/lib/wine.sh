# Sourced by the scripts that run Windows programs. Needs common.sh.
#
# Every run has a Wine prefix of its own below build/wine, cloned from one base prefix that
# scripts/setup makes. The user's own prefix is never touched.
# shellcheck shell=bash disable=SC2154  # root and build are set in common.sh

wine_base=$build/wine/base

# Settings that every Windows program is run with. TZ is removed because the C runtime obeys it
# while the zone functions of Windows do not.
wine_environment() {
  export WINEPREFIX=$1
  export WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
  unset TZ DISPLAY
}

wine_server() { "$(command -v wineserver || echo /usr/lib/wine/wineserver64)" "$@"; }

# Whether a server of the prefix runs.
wine_runs() { wine_server -k0 2>/dev/null; }

# Makes build/wine/NAME a fresh copy of the base prefix, which .base in it tells. Files are shared by hard
# links but for the registry, which the server rewrites in place.
wine_fresh_prefix() {
  local prefix=$build/wine/$1
  rm -rf "$prefix"
  cp -al "$wine_base" "$prefix"
  rm -rf "$prefix"/*.reg "$prefix/wineserver" "$prefix/.ready"
  cp "$wine_base"/*.reg "$prefix"
  cp "$wine_base/.ready" "$prefix/.base"
  wine_environment "$prefix"
}

# Starts a server that outlives single programs and warms it up, so that no program inherits the
# streams of the first one. The umask decides which access rights files have before ours are added.
# wine_start [SECONDS]: so long it stays when nothing uses it; for good unless told. It outlives its caller,
# and inherits none of the locks of lanes.sh.
wine_start() {
  (umask 077 && wine_server "-p${1:-}" </dev/null >/dev/null 2>&1) || true # it runs already
  (umask 077 && "$root/scripts/wine" wineboot </dev/null >/dev/null 2>&1)
} 8>&- 9>&-

wine_stop() {
  wine_server -k 2>/dev/null || true
  wine_server -w 2>/dev/null || true
}
