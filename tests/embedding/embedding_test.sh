#!/usr/bin/env bash
# Another project uses the add-in's logic as a part of itself, and as it was installed from a build:
#   embedding_test.sh BUILD
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

try() {
  local name=$1
  shift
  cmake -S "$here" -B "$scratch/$name" -G Ninja "$@"
  cmake --build "$scratch/$name"
  [[ $("$scratch/$name/embedding") == "a-b 30" ]]
}

try part "-DZOLVANE_FOLDER=${here%/tests/embedding}"
cmake --install "$build" --prefix "$scratch/installed"
"$scratch/installed/bin/zolvane-bench" --version
try installed "-DCMAKE_PREFIX_PATH=$scratch/installed"
