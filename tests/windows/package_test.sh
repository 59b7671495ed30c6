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

# The host's folder, with a laboratory's own configuration, and a place of the user's own.
installed="$ZOLVANE_WINE_FOLDER/$architecture/drive_c/Program Files/Hestrion"
elsewhere=$ZOLVANE_WINE_FOLDER/elsewhere
unpacked=$ZOLVANE_WINE_FOLDER/unpacked
calibrated=$ZOLVANE_WINE_FOLDER/calibrated.ini
mkdir -p "$installed" "$elsewhere"
(cat "$root/samples/Zolvane.ini" && echo '; calibrated by this laboratory') >"$calibrated"
cp "$calibrated" "$installed/Zolvane.ini"
unzip -q "${archives[0]}" -d "$unpacked"

expected='CHANGELOG.md HZOCalibrateDevice.dll HestrionBench.exe LICENSE README.txt docs host.manifest register.cmd
samples unregister.cmd zolvane-bench.exe zolvane-sim.exe zolvane.exe'
[[ $(find "$unpacked"/* -mindepth 1 -maxdepth 1 -printf '%f\n' | LC_ALL=C sort | xargs) == "$(xargs <<<"$expected")" ]] ||
  fail "the package holds what it should"
cp -r "$unpacked"/*/* "$installed/"
cmp -s "$calibrated" "$installed/Zolvane.ini" || fail "a laboratory's configuration survives the unpacking"
cmp -s "$root/samples/Zolvane.ini" "$installed/samples/Zolvane.ini" || fail "the sample is in samples"

# As places on the web make them of headings.
anchors_of() {
  tr -d '\r' <"$1" | sed -nE 's/^#+ +//p' | tr '[:upper:]' '[:lower:]' | sed -E 's/[^a-z0-9 _-]//g;s/ /-/g'
}

# Each link into the package or into its own document. What it names is there, and what it names in there too.
follow_links() {
  local document=$1 link file anchor
  while IFS= read -r link; do
    if [[ $link =~ ^[a-z]+: ]]; then continue; fi
    file=$document
    if [[ $link != '#'* ]]; then file=$(dirname "$document")/${link%%#*}; fi
    [[ -e $file ]] || fail "${document#"$installed/"} links to $link, which is there"
    if [[ $link == *'#'* ]]; then
      anchor=${link#*#}
      anchors_of "$file" | grep -qxF -e "$anchor" || fail "${document#"$installed/"} links to $link, which has this heading"
    fi
    ((++links))
  done < <(grep -oE '\]\([^) ]+' "$document" | sed 's/^](//')
}
links=0
while IFS= read -r document; do follow_links "$document"; done < <(find "$installed" -name '*.md')
((links >= 5)) || fail "there are links to follow, not $links"

# Beside this copy of the host there is no add-in, so it only works with the registered one.
cp "$installed/HestrionBench.exe" "$elsewhere/"
echo upload >"$elsewhere/job.txt"
upload() {
  (cd "$elsewhere" && rm -f trace.jsonl &&
    wine ./HestrionBench.exe --play job.txt --yes --trace trace.jsonl --trace-reads --quit)
}

if upload >/dev/null 2>&1; then fail "there is no add-in before it is registered"; fi
# Whoever started the file from a folder's window sees why it failed; a script is not kept waiting.
for file in register.cmd unregister.cmd; do
  cp "$installed/$file" "$elsewhere/"
  answer=$(cd "$elsewhere" && wine cmd /c "$file" <<<'' && echo well) || true
  [[ $answer == *'could not be'*'Press any key'* && $answer != *well ]] ||
    fail "$file waits for a key after an error: $answer"
  answer=$(cd "$elsewhere" && wine cmd /c "$file" /quiet </dev/null && echo well) || true
  [[ $answer == *'could not be'* && $answer != *'any key'* && $answer != *well ]] ||
    fail "$file /quiet does not: $answer"
done
# A regsvr32 that crashes ends with a negative number.
case $architecture in x64) compiler=x86_64-w64-mingw32-gcc ;; *) compiler=i686-w64-mingw32-gcc ;; esac
crash='__attribute__((dllimport, stdcall, noreturn)) void ExitProcess(unsigned status);
__attribute__((dllexport, stdcall)) long DllRegisterServer(void) { ExitProcess(0xC0000005); }
__attribute__((dllexport, stdcall)) long DllUnregisterServer(void) { ExitProcess(0xC0000005); }'
"$compiler" -shared -Wl,--kill-at -x c -o "$elsewhere/HZOCalibrateDevice.dll" - <<<"$crash"
for file in register.cmd unregister.cmd; do
  answer=$(cd "$elsewhere" && wine cmd /c "$file" /quiet </dev/null && echo well) || true
  [[ $answer == *'could not be'* && $answer != *well ]] || fail "$file notices a crash: $answer"
done
rm "$elsewhere/HZOCalibrateDevice.dll"
(cd "$installed" && wine cmd /c register.cmd) || fail "register.cmd ends well"
upload || fail "an upload with the registered add-in ends well"
sent=$(grep -c '"event":"send","command":"SET_CALIBRATION .*"ok":true' "$elsewhere/trace.jsonl")
lines=$(grep -c '^send ' "$root/tests/golden/upload_of_the_sample.txt")
((sent == lines)) || fail "an upload of the sample sends $lines lines, not $sent"
tail -n 30 "$elsewhere/trace.jsonl" | grep -q '"command":"SET_CALIBRATION SAVE","ok":true' || fail "the last is SAVE"
grep -q '"event":"read".*Program Files\\\\Hestrion\\\\Zolvane.ini' "$elsewhere/trace.jsonl" ||
  fail "the configuration is the one beside the add-in"
(cd "$installed" && wine ./zolvane-bench.exe --yes --quiet run samples/main-job.txt) || fail "the bench does the main job"
[[ -f $installed/backup.bak ]] || fail "the main job leaves a backup"
(cd "$installed" && wine cmd /c unregister.cmd) || fail "unregister.cmd ends well"
if upload >/dev/null 2>&1; then fail "there is no add-in when its registration is taken back"; fi
