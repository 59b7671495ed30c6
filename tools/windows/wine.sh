#!/usr/bin/env bash
# Runs a Windows program:
#   wine.sh x64|x86 [WHERE] PROGRAM [ARGUMENTS...]   ends with the program's exit status
#   wine.sh x64|x86 [WHERE] start                    makes prefix and session beforehand (each run does so when needed)
#   wine.sh x64|x86 [WHERE] stop                     ends the session and all programs in it
# WHERE is --x11 to draw on an Xvfb, or --desktop for the user's own display, instead of in memory. See wine_env.sh for
# where things are kept.
# 125: the program was not run.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

refuse() {
  echo "wine.sh: $*" >&2
  exit 125
}

architecture=${1:-}
shift || true
driver=null
if [[ ${1:-} == --@(x11|desktop) ]]; then
  driver=${1#--}
  shift
fi
(($#)) || refuse "usage: wine.sh x64|x86 [--x11|--desktop] start|stop|PROGRAM [ARGUMENTS...]"
# shellcheck source=tools/windows/wine_env.sh
source "$here/wine_env.sh" "$architecture" "$driver" || exit 125

# The machine field of an image's header, 0 for anything else.
machine_of() {
  local header
  [[ $(head -c 2 "$1" | tr -d '\0') == MZ ]] || return 0
  header=$(od -An -tu4 -j60 -N4 "$1")
  od -An -tx2 -j$((header + 4)) -N2 "$1" | tr -d ' '
}

# Given an image of the other kind, Wine may do nothing at all and still end with 0.
refuse_other_images() {
  local file wanted=8664
  if [[ $architecture == x86 ]]; then wanted=014c; fi
  for file in "$@"; do
    if [[ $file == *.@(exe|dll|EXE|DLL) && -f $file && $(machine_of "$file") != "$wanted" ]]; then
      refuse "$file is no $architecture image"
    fi
  done
}

# Wine's desktop process takes over the standard error of the first program that opens a window and outlives it by a
# second. A caller that reads a pipe to its end is spared that second by a file between, which has no name any more
# when the program starts and so is never left behind.
run() {
  local errors program status=0
  if [[ ! -p /dev/stderr ]]; then exec "$WINELOADER" "$@"; fi
  errors=$(mktemp)
  exec 3>"$errors"
  exec 4<"$errors"
  rm "$errors"
  "$WINELOADER" "$@" <&0 2>&3 3>&- 4<&- &
  program=$!
  trap 'kill "$program" 2>/dev/null || true' TERM INT HUP
  wait "$program" || status=$?
  cat <&4 >&2
  exit "$status"
}

case $1 in
  start) wine_start || exit 125 ;;
  stop) wine_stop ;;
  *)
    if [[ $1 == */* && ! -f $1 ]]; then refuse "there is no $1"; fi
    refuse_other_images "$@"
    wine_start || exit 125
    run "$@"
    ;;
esac
