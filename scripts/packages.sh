# Sourced by the other scripts: installs what is missing of Debian's packages.

# Everything that building the program itself takes.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libpng-dev
  libjpeg62-turbo-dev pkg-config qt6-base-dev libxcb1-dev libxcb-composite0-dev libxcb-damage0-dev
  libxcb-randr0-dev libxcb-render0-dev libxcb-shape0-dev libxcb-shm0-dev libxcb-xfixes0-dev x11-utils)

# A virtual display with a window manager and software graphics.
display_packages=(xvfb openbox x11-xserver-utils libgl1 libgl1-mesa-dri)

# install_packages NAME...: does nothing, and asks for no rights, where all are there.
install_packages() {
  local missing=() name as_root=()
  for name in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] ||
      missing+=("$name")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "Installing ${missing[*]}"
  mkdir -p build
  "${as_root[@]}" apt-get update -qq >build/packages.log 2>&1 &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
      --no-install-recommends "${missing[@]}" >>build/packages.log 2>&1 ||
    { tail -n 20 build/packages.log; echo "The packages could not be installed."; return 1; }
}

# build PRESET [TARGET...]: configures and builds; its output is shown only where it fails.
build() {
  local preset=$1 log=build/$1.log
  shift
  mkdir -p build
  echo "Building $preset"
  { cmake --preset "$preset" &&
    cmake --build --preset "$preset" ${1+--target "$@"}; } >"$log" 2>&1 ||
    { tail -n 40 "$log"; echo "The $preset build failed; all of its output is in $log."; return 1; }
}
