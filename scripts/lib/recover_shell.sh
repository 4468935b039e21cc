# Sourced by scripts that need the sqlite3 shell with its .recover, which Debian's own build leaves
# out. Needs common.sh.
# shellcheck shell=bash disable=SC2154  # build is set in common.sh

recover_shell=$build/recover-shell/sqlite3

# Builds it from Debian's source package of the same shell; apt checks what it fetches. The lists of
# source packages are kept apart, so that the machine's own settings stay as they are.
make_recover_shell() {
  local target=$build/recover-shell
  local needed="building the sqlite3 shell needs the packages gcc make tcl zlib1g-dev"
  [ ! -x "$recover_shell" ] || return 0
  local tool
  for tool in gcc make tclsh; do
    command -v "$tool" >/dev/null || die "$needed"
  done
  [ -e /usr/include/zlib.h ] || die "$needed"
  echo "Building the sqlite3 shell with .recover"
  rm -rf "$target"
  mkdir -p "$target/download/lists/partial" "$target/download/cache/archives/partial" "$target/source"
  (
    cd "$target/download"
    # shellcheck disable=SC2016  # apt-get replaces them
    apt-get indextargets --format 'deb-src $(SITE) $(RELEASE) $(COMPONENT)' \
      'Created-By: Packages' 'Origin: Debian' 'Component: main' | sort -u >sources.list
    options=(-o "Dir::Etc::SourceList=$PWD/sources.list" -o Dir::Etc::SourceParts=/dev/null
      -o "Dir::State::Lists=$PWD/lists" -o "Dir::Cache=$PWD/cache" -o APT::Sandbox::User=root)
    apt-get "${options[@]}" update
    apt-get "${options[@]}" source --download-only --only-source sqlite3
    tar -xJf sqlite3_*.orig.tar.xz -C "$target/source" --strip-components=1
    cd "$target/source"
    ./configure --disable-tcl --disable-readline --disable-shared
    make sqlite3 CFLAGS='-O1 -w -DSQLITE_ENABLE_DBPAGE_VTAB'
    cp sqlite3 "$recover_shell"
  ) >"$build/recover-shell.log" 2>&1 || die "building the sqlite3 shell failed, see build/recover-shell.log"
  rm -rf "$target/download" "$target/source"
}
