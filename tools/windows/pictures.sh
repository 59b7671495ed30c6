#!/usr/bin/env bash
# Takes pictures of the page as a user sees it, in the host's window on a screen of its own:
#   pictures.sh x64|x86 FOLDER
# page-idle.png       the page as it opens
# page-operation.png  while the instrument is asked which hardware is fitted: the controls are disabled
# page-message.png    the message that the instrument does not answer, in front of it
# page-dialogue.png   the same message in the host's own dialogue
# The windows preset of that architecture has been built. ZOLVANE_DPI chooses a scale other than 96.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
architecture=${1:?pictures.sh x64|x86 FOLDER}
folder=$(realpath -m "${2:?pictures.sh x64|x86 FOLDER}")
root=${here%/tools/windows}
programs=$root/build/windows-$architecture/bin
dpi=${ZOLVANE_DPI:-96}
work=$(mktemp -d)
host=''
simulator=''

# shellcheck source=tools/windows/wine_env.sh
source "$here/wine_env.sh" "$architecture" x11

# Both are programs of ours, and known by their numbers.
finish() {
  local process
  for process in $host $simulator; do
    kill "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
  done
  if ((dpi != 96)); then set_scale 96; fi
  rm -rf "$work" "$WINEPREFIX/drive_c/Hestrion"
}
trap finish EXIT

fail() {
  echo "pictures.sh: $*" >&2
  exit 1
}

# Until a command succeeds, for half a minute.
eventually() {
  local attempt
  for ((attempt = 0; attempt < 300; ++attempt)); do
    if "$@"; then return; fi
    sleep 0.1
  done
  fail "waited in vain: $*"
}

# The host's title names folder and link as well.
host_title='Zolvane Setup - .* - Hestrion bench'
window() { xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | head -1; }
is_shown() { [[ -n $(window "$1") ]]; }
is_gone() { [[ -z $(window "$1") ]]; }

set_scale() {
  "$WINELOADER" reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f >/dev/null
}

open_page() {
  "$WINELOADER" "$programs/HestrionBench.exe" --folder 'C:\Hestrion' --page "$@" >"$work/host.log" 2>&1 &
  host=$!
  eventually is_shown "$host_title"
}

close_page() {
  kill "$host" 2>/dev/null || true
  wait "$host" 2>/dev/null || true
  host=''
  eventually is_gone "$host_title"
}

# The screen where the host's window is, once it is painted and no longer changes. A window's empty inside has few
# colours, smooth text has many.
take() {
  local before=none now colours attempt
  for ((attempt = 0; attempt < 100; ++attempt)); do
    eval "$(xdotool getwindowgeometry --shell "$(window "$host_title")")"
    import -window root -crop "${WIDTH}x$HEIGHT+$X+$Y" +repage -strip "$work/now.png"
    read -r now colours < <(identify -format '%# %k\n' "$work/now.png")
    if [[ $now == "$before" ]] && ((colours > 24)); then
      convert "$work/now.png" -define png:compression-level=9 "$folder/$1.png"
      return
    fi
    before=$now
    sleep 0.4
  done
  fail "the window does not come to rest for $1"
}

press_query() {
  xdotool windowfocus "$(window "$host_title")" key alt+q
}

page_idle_and_in_operation() {
  "$WINELOADER" "$programs/zolvane-sim.exe" --latency 20000 >"$work/place" 2>"$work/sim.log" &
  simulator=$!
  eventually grep -qs tcp "$work/place"
  open_page --link "$(tr -d '\r\n' <"$work/place")" --timeout 60
  take page-idle
  press_query
  sleep 1
  take page-operation
  close_page
}

message() {
  open_page --link none "${@:2}"
  press_query
  eventually is_shown 'Communication Error'
  take "$1"
  close_page
}

mkdir -p "$folder"
wine_start
# The title shows it.
program_folder=$WINEPREFIX/drive_c/Hestrion
mkdir -p "$program_folder"
cp "$root/samples/Zolvane.ini" "$program_folder/"
if ((dpi != 96)); then set_scale "$dpi"; fi
page_idle_and_in_operation
message page-message
message page-dialogue --host-dialog
