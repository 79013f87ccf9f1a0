#!/usr/bin/env bash
# Installs what building, testing and checking Kinsort needs (Debian 12). Does nothing, quickly, when all is there.
#   scripts/setup.sh                 for everything but the benchmarks
#   scripts/setup.sh --with bench    for them too
set -euo pipefail

# Package and what it is for. To add one: add a row; nothing else lists packages.
packages=(
  "g++                  the compiler"
  "cmake                the build"
  "ninja-build          the build"
  "pkg-config           finds libxxhash for the build"
  "git                  lists the files that are checked"
  "python3              the checks in scripts/checks"
  "libicu-dev           code pages and text mapping of the Linux backend"
  "libxxhash-dev        checksums of the journal"
  "libsqlite3-dev       the settings file of the Linux backend"
  "qt6-base-dev         the dialog"
  "libqt6svg6           icons of the desktop's theme in the dialog"
  "fonts-noto-cjk       Japanese glyphs in the pictures and the tests of texts that must not be cut"
  "xvfb                 a display for scripts/screenshots.sh and the tests of the dialog"
  "dbus-daemon          a message bus of its own for the test of the offer to undo"
  "desktop-file-utils   checks the desktop entry"
  "appstream            checks the software centre's data"
  "libcli11-dev         command line parsing"
  "nlohmann-json3-dev   --json output"
  "libgtest-dev         tests"
  "libgmock-dev         tests"
  "clang                second compiler, fuzz targets"
  "libclang-rt-14-dev   sanitizers and the fuzzer of the second compiler"
  "clang-format         scripts/check.sh"
  "clang-tidy           scripts/check.sh --tidy"
  "ccache               keeps compiled files between builds; the build works without"
)
# Only scripts/bench.sh needs these.
for_bench=(
  "python3-levenshtein  a peer of the matching benchmark"
  "zenity               a peer of the dialog benchmark"
)
case "$*" in
  "") ;;
  "--with bench") packages+=("${for_bench[@]}") ;;
  -h | --help) sed -n '2,4s/^# \?//p' "$0"; exit 0 ;;
  *) echo "setup.sh: unknown arguments $* (see --help)" >&2; exit 2 ;;
esac

missing=()
installed=$(dpkg-query -W -f='${Package} ${db:Status-Abbrev}\n' 2>/dev/null | sed -n 's/ ii *$//p')
for row in "${packages[@]}"; do
  package=${row%% *}
  grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  command -v sudo >/dev/null || {
    echo "setup: not root and no sudo here. Have an administrator install: ${missing[*]}" >&2
    exit 1
  }
  as_root=(sudo)
fi
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q)

echo "setup: installing ${missing[*]}"
"${apt[@]}" update || echo "setup: the package lists could not be refreshed; trying with the ones at hand" >&2
for package in "${missing[@]}"; do
  apt-cache show "$package" >/dev/null 2>&1 || {
    echo "setup: no package $package in the configured sources (see /etc/apt/sources.list; Debian 12 has it)" >&2
    exit 1
  }
done
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" || {
  echo "setup: apt-get could not install: ${missing[*]}. Its reason stands above." >&2
  exit 1
}
