#!/usr/bin/env bash
# What ./package made is installed into a computer that has never seen it, and works:  package_test.sh x64|x86
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
architecture=${1:?package_test.sh x64|x86}
archives=("$root"/build/package/HZOCalibrateDevice-*-"$architecture".zip)
ZOLVANE_WINE_FOLDER=$(mktemp -d)
export ZOLVANE_WINE_FOLDER
wine() { "$root/tools/windows/wine.sh" "$architecture" "$@"; }
finish() {
  wine stop || true
  rm -rf "$ZOLVANE_WINE_FOLDER"
}
trap finish EXIT

fail() {
  echo "failed: $*"
  exit 1
}

[[ ${#archives[@]} == 1 && -f ${archives[0]} ]] || fail "there is one package for $architecture"
wine start

# The host's folder, and a place of the user's own.
installed="$ZOLVANE_WINE_FOLDER/$architecture/drive_c/Program Files/Hestrion"
elsewhere=$ZOLVANE_WINE_FOLDER/elsewhere
mkdir -p "$installed" "$elsewhere"
unzip -q "${archives[0]}" -d "$elsewhere"
mv "$elsewhere"/*/* "$installed/"

expected='CHANGELOG.md HZOCalibrateDevice.dll HestrionBench.exe LICENSE README.txt Zolvane.ini docs host.manifest
main-job.txt register.cmd unregister.cmd zolvane-bench.exe zolvane-sim.exe'
[[ $(cd "$installed" && LC_ALL=C ls | xargs) == "$(xargs <<<"$expected")" ]] || fail "the package holds what it should"
for link in $(grep -ohE '\]\(([a-z-]+\.md|pictures/[a-z-]+\.png)' "$installed"/docs/*.md | sed 's/](//' | sort -u); do
  [[ -f $installed/docs/$link || $link == architecture.md ]] || fail "docs/$link is there"
done

# Beside this copy of the host there is no add-in, so it only works with the registered one.
cp "$installed/HestrionBench.exe" "$elsewhere/"
echo upload >"$elsewhere/job.txt"
upload() {
  (cd "$elsewhere" && rm -f trace.jsonl &&
    wine ./HestrionBench.exe --play job.txt --yes --trace trace.jsonl --trace-reads --quit)
}

if upload >/dev/null 2>&1; then fail "there is no add-in before it is registered"; fi
(cd "$installed" && wine cmd /c register.cmd) || fail "register.cmd ends well"
upload || fail "an upload with the registered add-in ends well"
sent=$(grep -c '"event":"send","command":"SET_CALIBRATION .*"ok":true' "$elsewhere/trace.jsonl")
((sent == 178)) || fail "an upload of the sample sends 178 lines, not $sent"
tail -n 30 "$elsewhere/trace.jsonl" | grep -q '"command":"SET_CALIBRATION SAVE","ok":true' || fail "the last is SAVE"
grep -q '"event":"read".*Program Files\\\\Hestrion\\\\Zolvane.ini' "$elsewhere/trace.jsonl" ||
  fail "the configuration is the one beside the add-in"
(cd "$installed" && wine ./zolvane-bench.exe --yes --quiet run main-job.txt) || fail "the bench does the main job"
[[ -f $installed/backup.bak ]] || fail "the main job leaves a backup"
(cd "$installed" && wine cmd /c unregister.cmd) || fail "unregister.cmd ends well"
if upload >/dev/null 2>&1; then fail "there is no add-in when its registration is taken back"; fi
