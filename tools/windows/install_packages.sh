#!/usr/bin/env bash
# Installs what building and testing the Windows component needs. Says nothing and takes no time when all is there.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tools/packages.sh
source "$here/../packages.sh"
export DEBIAN_FRONTEND=noninteractive

compilers=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools googletest)
wine=(wine wine64 libwine fonts-wine fonts-liberation patchelf)
pictures=(xvfb xdotool imagemagick)
packing=(zip unzip)

# A slow mirror or another apt at work is over at the second or third attempt.
for pause in 10 30 0; do
  if install_packages "${compilers[@]}" "${wine[@]}" "${pictures[@]}" "${packing[@]}"; then
    exit 0
  fi
  sleep "$pause"
done
exit 1
