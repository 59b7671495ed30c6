# shellcheck shell=bash disable=SC2034  # the lists of packages are for those who source this
# Sourced by ./run and ./test: installs the Debian packages that are missing, and says nothing when none is.

install_packages() {
  local missing=() package
  for package in "$@"; do
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" == installed ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  echo "Installing: ${missing[*]}" >&2
  local as_root=()
  ((EUID == 0)) || as_root=(sudo)
  local log
  log=$(mktemp)
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -qq --no-install-recommends
    -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)
  if ! { "${apt[@]}" update && "${apt[@]}" install "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "Could not install ${missing[*]}. Install them by hand and try again." >&2
    return 1
  fi
  rm -f "$log"
}

build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libasio-dev libssl-dev)
# clang compiles what runs under the sanitizers in half of the time.
test_packages=(clang-19 libclang-rt-19-dev llvm-19 libgtest-dev gcovr python3 python3-jsonschema
  chromium fonts-liberation poppler-utils)
# One release of the tools on every system, so that all agree on what is clean.
check_packages=(clang-format-19 clang-tidy-19 shellcheck)
benchmark_packages=(libbenchmark-dev libsimpleini-dev libglib2.0-dev pkg-config)

# Configures and builds a preset, says so in a line, and shows what the tools said only when they failed. What follows the
# preset goes to the build: "--target NAME".
build_preset() {
  local root=$1 preset=$2
  shift 2
  mkdir -p "$root/build"
  local log="$root/build/$preset.log"
  echo "Building $preset; the log is build/$preset.log" >&2
  if ! (cd "$root" && cmake --preset "$preset" && cmake --build --preset "$preset" "$@") >"$log" 2>&1; then
    cat "$log" >&2
    echo "The build failed; the lines above are in $log." >&2
    return 1
  fi
}
