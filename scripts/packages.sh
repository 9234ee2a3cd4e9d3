# Sourced by the other scripts: installs the Debian packages that are missing, and builds.

# What every build needs, and what each program needs besides.
compiler_packages=(g++ cmake ninja-build)
tool_packages=(libcli11-dev nlohmann-json3-dev libpng-dev libjpeg62-turbo-dev
  liblcms2-dev)
desktop_packages=(pkg-config qt6-base-dev libxcb1-dev libxcb-composite0-dev libxcb-damage0-dev
  libxcb-randr0-dev libxcb-render0-dev libxcb-shape0-dev libxcb-shm0-dev libxcb-xfixes0-dev
  libpipewire-0.3-dev x11-utils)

# What building both programs needs.
build_packages=("${compiler_packages[@]}" "${tool_packages[@]}" "${desktop_packages[@]}")

# What the quick tests need besides.
quick_test_packages=(libgtest-dev)

# clang-tidy, what its plugin is built with, and what the benchmarks include.
lint_packages=(clang-tidy libclang-14-dev llvm-14-dev libbenchmark-dev)

# What all tests need besides: clang for formatting, lint and fuzzing; the cross-compiler and Wine
# for the Windows program, and languages to run it in; another processor's compiler and emulator;
# compositing and window managers; a browser for the pages that the tool writes; shells and readers
# of manual pages; checks of packaging and of the guide's pictures.
test_packages=(python3 clang clang-format libclang-rt-14-dev "${lint_packages[@]}"
  g++-mingw-w64-x86-64-posix wine wine64 fonts-wine libxcomposite1 locales
  g++-aarch64-linux-gnu qemu-user googletest
  pipewire pipewire-bin libpipewire-0.3-modules wireplumber mutter xwayland foot
  picom xcompmgr dbus-daemon fluxbox i3-wm icewm twm xfwm4
  libice-dev libsm-dev libxcb-res0-dev libxcb-xtest0-dev chromium
  fish groff-base mandoc zsh appstream desktop-file-utils imagemagick xdotool fonts-dejavu-core)

# A virtual display with a window manager and software graphics.
display_packages=(xvfb openbox x11-xserver-utils libgl1 libgl1-mesa-dri)

# install_packages NAME...: installs those that are missing. Needs no rights if none is missing.
install_packages() {
  local missing=() name states as_root=()
  states=$(dpkg-query -W -f=' ${Package}=${db:Status-Status} ' "$@" 2>/dev/null || true)
  for name in "$@"; do
    [[ $states = *" $name=installed "* ]] || missing+=("$name")
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

# logged LOG COMMAND...: shows the output of a command only if it fails.
logged() {
  local log=build/$1.log
  shift
  mkdir -p build
  "$@" >"$log" 2>&1 ||
    { tail -n 40 "$log"; echo "$* failed; its whole output is in $log."; return 1; }
}

# configure PRESET
configure() {
  logged "$1-configure" cmake --preset "$1"
}

# By default Ninja compiles more at a time than there are processors. They compete for the caches, and
# the build takes longer.
export CMAKE_BUILD_PARALLEL_LEVEL=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}

# build PRESET [TARGET...]: configures and builds.
build() {
  configure "$1"
  compile "$@"
}

# compile PRESET [TARGET...]: builds what is configured.
compile() {
  local preset=$1
  shift
  echo "Building $preset"
  logged "$preset" cmake --build --preset "$preset" ${1+--target "$@"}
}
