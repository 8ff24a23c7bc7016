# Sourced by ./test and ./run: installs the Debian packages the build needs, only those missing.
packages=(cmake g++ make pkg-config libyaml-dev libgtest-dev libgmock-dev libbenchmark-dev swig mono-mcs mono-runtime
  libunicorn-dev libdw-dev libelf-dev libcapstone-dev gcc-arm-none-eabi libnewlib-arm-none-eabi clang libclang-rt-14-dev)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

jobs=$(nproc 2>/dev/null || echo 2)

# configure_and_build DIR [cmake options...]: incremental build in DIR.
configure_and_build() {
  local dir=$1
  shift
  cmake -S . -B "$dir" "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
}
