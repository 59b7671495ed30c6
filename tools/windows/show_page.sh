#!/usr/bin/env bash
# Builds the 64-bit Windows programs and opens the page in its host on the user's desktop, on a copy of the sample and
# with the built-in instrument. Without a display it takes a picture instead, and says where.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=${here%/tools/windows}
# shellcheck source=tools/packages.sh
source "$root/tools/packages.sh"

install_packages "${build_packages[@]}"
"$here/install_packages.sh"
build_preset "$root" windows-x64 --target HestrionBench

folder=$root/build/page
host=$root/build/windows-x64/bin/HestrionBench.exe
rm -rf "$folder"
mkdir -p "$folder"
cp "$root/samples/Zolvane.ini" "$folder/"

# Wine draws on X only; desktops of the other kind offer an X display as well.
if [[ -n ${DISPLAY:-} ]] && xdotool getdisplaygeometry >/dev/null 2>&1; then
  exec "$here/wine.sh" x64 --desktop "$host" --folder "$folder" --page
fi
"$here/wine.sh" x64 "$host" --folder "$folder" --screenshot "$folder/page.png" --quit
echo "No display: a picture of the page is in $folder/page.png"
