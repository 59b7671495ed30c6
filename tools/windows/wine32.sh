#!/usr/bin/env bash
# Fetches a 32-bit Wine into a folder (default: build/wine32), which runs 32-bit programs beside the 64-bit Wine of the
# system and is of the same release of Debian:  wine32.sh [FOLDER]
#
# The system's package manager is left alone: 32-bit packages as a foreign architecture drag dozens of installed
# packages along, and fail altogether while the two architectures of a mirror differ. So apt works here on a state of
# its own that knows of no installed package, and what it fetches is only unpacked. No root is needed.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(realpath -m "${1:-$here/../../build/wine32}")
stamp="$folder/complete"
state="$folder/apt"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
mirror=${ZOLVANE_DEBIAN_MIRROR:-http://deb.debian.org/debian}
# shellcheck source=/dev/null
release=$(source /etc/os-release && echo "$VERSION_CODENAME")

# The same X client libraries and fonts as the 64-bit Wine uses, so that both draw the same picture.
packages=(wine32 libwine fonts-wine fonts-liberation
  libxcomposite1 libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxrender1)

# The interpreter's path is written into the programs: a folder that was moved has to be made anew.
wanted="$folder $release $(cksum <"${BASH_SOURCE[0]}")"

is_complete() { [[ -f $stamp && $(<"$stamp") == "$wanted" ]]; }

private_apt() {
  apt-get -qq \
    -o APT::Architecture=i386 -o APT::Architectures::=i386 -o APT::Install-Recommends=false \
    -o APT::Sandbox::User="$(id -un)" -o Acquire::Languages=none -o Acquire::Retries=3 -o Acquire::http::Timeout=60 \
    -o APT::Update::Error-Mode=any \
    -o Dir::State="$state" -o Dir::State::status="$state/status" -o Dir::Cache="$state/cache" \
    -o Dir::Etc::SourceList="$state/sources.list" -o Dir::Etc::SourceParts=/dev/null \
    -o Dir::Etc::Preferences=/dev/null -o Dir::Etc::PreferencesParts=/dev/null "$@"
}

# Each attempt goes on with what the one before has fetched.
with_retries() {
  local pause
  for pause in 5 20 60; do
    if "$@"; then return; fi
    echo "wine32.sh: fetching failed, trying again in $pause s" >&2
    sleep "$pause"
  done
  "$@"
}

fetch() {
  mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
  : >"$state/status"
  # Only the release itself: the security archive's two architectures are not always in step.
  echo "deb [signed-by=$keyring] $mirror $release main" >"$state/sources.list"
  with_retries private_apt update
  with_retries private_apt --download-only -y install "${packages[@]}" >"$state/log"
}

unpack() {
  local archive
  for archive in "$state"/cache/archives/*.deb; do
    dpkg-deb --extract "$archive" "$folder"
  done
}

# Debian 12 packs it below lib, Debian 13 below usr/lib.
use_own_interpreter() {
  local interpreter
  interpreter=$(find "$folder" -maxdepth 3 -path '*/lib/ld-linux.so.2')
  patchelf --set-interpreter "${interpreter:?wine32.sh: no ld-linux.so.2 unpacked}" \
    "$folder/usr/lib/wine/wine" "$folder/usr/lib/wine/wineserver32"
}

# The packed one is a script that prefers the system's 64-bit server, whatever that one's version.
use_own_server() {
  ln -sf wineserver32 "$folder/usr/lib/wine/wineserver"
}

# Installing the package would make this copy: Wine loads a library of its own only when it carries Wine's mark.
add_zlib() {
  local source="$folder/usr/i686-w64-mingw32/lib/zlib1.dll"
  {
    head -c 64 "$source"
    printf 'Wine builtin DLL'
    head -c 16 /dev/zero
    tail -c +97 "$source"
  } >"$folder/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"
}

start_empty() {
  if [[ -d $folder && ! -d $state && -n $(ls -A "$folder") ]]; then
    echo "wine32.sh: $folder holds something else; name another folder" >&2
    exit 1
  fi
  mkdir -p "$state"
  find "$folder" -mindepth 1 -maxdepth 1 ! -path "$state" -exec rm -rf {} +
}

main() {
  if is_complete; then return; fi
  mkdir -p "$(dirname "$folder")"
  exec 9>"$folder.lock"
  flock 9
  if is_complete; then return; fi
  start_empty
  fetch
  unpack
  use_own_interpreter
  use_own_server
  add_zlib
  find "$state" -mindepth 1 -delete
  echo "$wanted" >"$stamp"
}

main
