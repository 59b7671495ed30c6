#!/usr/bin/env bash
# The pictures that tools/windows/pictures.sh takes show what their names say:  pictures_test.sh x64|x86
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

expect() {
  local what=$1
  shift
  if ! (($*)); then
    echo "failed: $what ($*)"
    failures=$((failures + 1))
  fi
}

# The number of pixels in which two pictures differ; of a part of them when one is named.
difference() {
  local part=${3:-}
  convert "$folder/$1.png" "$folder/$2.png" ${part:+-gravity SouthWest -crop "$part" +repage} miff:- |
    compare -metric AE - null: 2>&1 || true
}

# White is where something can be chosen or typed.
white() { convert "$folder/$1.png" -fill black +opaque white -format '%[fx:int(mean*w*h+0.5)]' info:; }

"$root/tools/windows/pictures.sh" "$1" "$folder"

for name in page-idle page-operation page-message page-dialogue; do
  read -r kind width height colours < <(identify -format '%m %w %h %k\n' "$folder/$name.png")
  expect "$name is a PNG" "$([[ $kind == PNG ]] && echo 1 || echo 0)"
  expect "$name shows the whole window" "$width >= 600 && $height >= 560"
  expect "$name has the colours of a painted window" "$colours > 24"
done

statusLine=400x20+4+4
expect "an operation greys the controls" "$(difference page-idle page-operation) > 3000"
expect "an operation greys the lists" "$(white page-idle) - $(white page-operation) > 10000"
expect "an operation tells its step" "$(difference page-idle page-operation "$statusLine") > 100"
expect "the message names the step that the status line tells" \
  "$(difference page-operation page-message "$statusLine") == 0"
expect "a box covers a part of the page" "$(difference page-operation page-message) > 20000"
expect "the host's dialogue covers a part of the page" "$(difference page-operation page-dialogue) > 20000"
expect "box and dialogue look different" "$(difference page-message page-dialogue) > 5000"
((failures == 0))
