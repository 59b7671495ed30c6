# shellcheck shell=bash
# Sourced by bash:  source tools/windows/wine_env.sh x64|x86 [null|x11|desktop]
#
# Chooses the 64-bit or the 32-bit Wine and a prefix by setting the variables that Wine reads, and offers
#   wine_start   makes the prefix unless it is there, and has its server running
#   wine_stop    ends the server and with it every program in the prefix
# after which programs start with "$WINELOADER" PROGRAM ARGUMENTS...; wine.sh does all of it in one call.
#
# null draws in memory only and is what tests want. x11 draws on an Xvfb of its own, whose DISPLAY wine_start sets: for
# pictures of the whole screen, real key strokes and clicks. desktop draws on the user's own display, DISPLAY as it is,
# with the frames of its windows. Wine chooses the driver once per prefix and session, hence a prefix for each.
#
# ZOLVANE_WINE_FOLDER names the folder of the prefixes (default build/wine), ZOLVANE_WINE32 the folder that wine32.sh
# filled (default build/wine32).

wine_arch=${1:-}
wine_driver=${2:-null}
wine_tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
wine_build=${wine_tools%/tools/windows}/build
wine_folder=$(realpath -m "${ZOLVANE_WINE_FOLDER:-$wine_build/wine}")

case $wine_arch in
  x64)
    wine_root=''
    wine_libraries=/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
    export WINEARCH=win64 WINELOADER=/usr/lib/wine/wine64 WINESERVER=/usr/lib/wine/wineserver64
    ;;
  x86)
    wine_root=$(realpath -m "${ZOLVANE_WINE32:-$wine_build/wine32}")
    wine_libraries=$wine_root/usr/lib/i386-linux-gnu/wine/i386-windows
    export WINEARCH=win32 WINELOADER=$wine_root/usr/lib/wine/wine WINESERVER=$wine_root/usr/lib/wine/wineserver32
    # The system's own programs pass over these libraries, which are not of their kind.
    export LD_LIBRARY_PATH=$wine_root/usr/lib/i386-linux-gnu:$wine_root/lib/i386-linux-gnu
    ;;
  *)
    echo "wine_env.sh: say x64 or x86, not '$wine_arch'" >&2
    return 2
    ;;
esac
case $wine_driver in
  null) export WINEPREFIX=$wine_folder/$wine_arch ;;
  x11 | desktop) export WINEPREFIX=$wine_folder/$wine_arch-$wine_driver ;;
  *)
    echo "wine_env.sh: say null, x11 or desktop, not '$wine_driver'" >&2
    return 2
    ;;
esac
if [[ ! -x $WINELOADER ]]; then
  echo "wine_env.sh: no $WINELOADER; run tools/windows/install_packages.sh (x64) or tools/windows/wine32.sh (x86)" >&2
  return 2
fi

export WINEDEBUG=${WINEDEBUG:--all}
# No .NET, no browser engine, no entries in the developer's desktop menus. No debugger either: when it looks at a
# crashed program, that now and then ends with 0 instead of 5, and a crash would pass for success.
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe,winedbg.exe=d'
# Wine takes the language of its boxes from the locale and any font that the machine offers: both are fixed, so that
# texts read the same and are equally wide everywhere.
export LC_ALL=C.UTF-8 FONTCONFIG_FILE=$wine_folder/fonts.conf
if [[ $wine_driver != desktop ]]; then unset DISPLAY; fi

# Managed: a window that no window manager looks after costs two seconds to hide, and an Xvfb has none.
# ShowCrashDialog: nobody is there to close it, and the program would hang.
wine_settings() {
  local graphics=$wine_driver managed=N
  if [[ $wine_driver == desktop ]]; then graphics=x11 managed=Y; fi
  cat <<REG
REGEDIT4

[HKEY_CURRENT_USER\\Software\\Wine\\Drivers]
"Graphics"="$graphics"

[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]
"Managed"="$managed"

[HKEY_CURRENT_USER\\Software\\Wine\\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]
"Arial"="Liberation Sans"
"Courier New"="Liberation Mono"
"Times New Roman"="Liberation Serif"
REG
}

wine_copy_fonts() {
  local fonts=$WINEPREFIX/drive_c/windows/Fonts
  mkdir -p "$fonts"
  cp "$wine_root"/usr/share/wine/fonts/*.{ttf,fon} "$wine_root"/usr/share/fonts/truetype/liberation/*.ttf "$fonts/"
}

# The fonts are there first: the boot writes down how high a menu is, and without a font to measure that is nonsense.
# The user's documents lie inside the prefix, not in the developer's home. Nothing is shown meanwhile.
wine_boot_prefix() {
  rm -rf "$WINEPREFIX" && mkdir -p "$WINEPREFIX/home" && wine_copy_fonts &&
    echo '<fontconfig/>' >"$FONTCONFIG_FILE" &&
    wine_settings >"$WINEPREFIX/settings.reg" &&
    DISPLAY='' HOME=$WINEPREFIX/home "$WINELOADER" wineboot --init &&
    DISPLAY='' "$WINELOADER" regedit /S "$WINEPREFIX/settings.reg" &&
    "$WINESERVER" -k
}

# A fresh prefix holds copies of all of Wine's libraries, some 600 MB. With links in their place Wine must never update
# the prefix, because it would write through them into its own files; the prefix is made anew instead.
wine_link_libraries() {
  local copy original
  echo disable >"$WINEPREFIX/.update-timestamp" || return
  while IFS= read -r -d '' copy; do
    original=$wine_libraries/${copy##*/}
    if [[ -f $original ]] && cmp -s "$copy" "$original"; then
      ln -sf "$original" "$copy" || return
    fi
  done < <(find "$WINEPREFIX/drive_c" -type f -print0)
}

# What a prefix was made from.
wine_origin() {
  echo "$WINEPREFIX"
  stat -c '%n %Y' "$wine_root/usr/share/wine/wine.inf"
  cksum <"$wine_tools/wine_env.sh"
}

wine_ensure_prefix() {
  local origin
  origin=$(wine_origin) || return
  if [[ -f $WINEPREFIX/complete && $(<"$WINEPREFIX/complete") == "$origin" ]]; then return; fi
  "$WINESERVER" -k
  wine_boot_prefix && wine_link_libraries && echo "$origin" >"$WINEPREFIX/complete"
}

wine_open_display() {
  local file=$WINEPREFIX/display xvfb
  rm -f "$file"
  setsid Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$file" &
  xvfb=$!
  until [[ -s $file ]]; do
    kill -0 "$xvfb" || return
    sleep 0.05
  done
  wine_use_display
  "$WINESERVER" -p60 || return
  # The display goes when the server goes.
  setsid bash -c "'$WINESERVER' -w; kill $xvfb" &
}

wine_use_display() {
  DISPLAY=:$(<"$WINEPREFIX/display")
  export DISPLAY
}

# A session stays on the display that it began on.
wine_has_session() {
  "$WINESERVER" -k0 || return
  case $wine_driver in
    null) ;;
    x11) [[ -S /tmp/.X11-unix/X$(<"$WINEPREFIX/display") ]] ;;
    desktop) [[ -f $WINEPREFIX/display && $(<"$WINEPREFIX/display") == "${DISPLAY:-}" ]] ;;
  esac
}

# Starting and ending a server takes half a second, so one stays for a minute after the last program. What it starts
# for itself lives as long, and would keep the caller's output open: it is started here, where that leads nowhere.
wine_ensure_session() {
  wine_ensure_prefix || return
  if wine_has_session; then return; fi
  "$WINESERVER" -k
  if [[ $wine_driver == x11 ]]; then
    wine_open_display || return
  else
    echo "${DISPLAY:-}" >"$WINEPREFIX/display"
    "$WINESERVER" -p60 || return
  fi
  "$WINELOADER" cmd /c exit
}

wine_start() {
  local log=$WINEPREFIX.log
  mkdir -p "$wine_folder"
  if ! (flock 9 && wine_ensure_session 9>&- </dev/null >"$log" 2>&1) 9>"$WINEPREFIX.lock"; then
    cat "$log" >&2
    return 1
  fi
  if [[ $wine_driver == x11 ]]; then wine_use_display; fi
}

wine_stop() {
  if [[ ! -d $WINEPREFIX ]]; then return; fi
  (flock 9 && if "$WINESERVER" -k0; then "$WINESERVER" -k; fi) 9>"$WINEPREFIX.lock"
}
