#!/usr/bin/env bash
# Looks through the Windows sources with clang-tidy; without SOURCE through all of them:
#   tidy.sh [SOURCE...]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=${here%/tools/windows}
target=x86_64-w64-mingw32
build=$root/build/tidy
cd "$root"

# In a folder of its own: clang cannot read the precompiled headers of another compiler.
cmake --preset windows-x64 -B "$build" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
cmake --build "$build" --target zolvane_type_libraries >/dev/null

# clang finds the headers of Windows by itself, but not those of the other compiler's library.
library=$(realpath "$(dirname "$("$target-g++-posix" -print-libgcc-file-name)")/include/c++")
options=("--target=$target" "-isystem$library" "-isystem$library/$target")
# clang 14 has coroutines, but still says so by an older name.
options+=(-D__cpp_impl_coroutine=201902L -DASIO_HAS_CO_AWAIT)

sources=("$@")
if ((!${#sources[@]})); then
  mapfile -t sources < <(find src tests -name '*.cpp' \( -path '*/win32/*' -o -path '*/windows/*' -o -name '*_windows.cpp' \))
fi
printf '%s\0' "${sources[@]}" |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet --header-filter='/(win32|windows)/' -p "$build" \
    "${options[@]/#/--extra-arg=}"
