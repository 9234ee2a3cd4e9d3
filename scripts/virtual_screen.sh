# Sourced by the scripts that open the program on a virtual screen.

# Packages: a virtual display with a window manager and software graphics, and windows to look at.
screen_packages=("${display_packages[@]}" imagemagick xterm fonts-dejavu-core)

processes=()
in_background() {
  "$@" >>"$scene/log" 2>&1 &
  processes+=($!)
}

# Waits until the window NAME is on the screen.
wait_for() {
  for _ in $(seq 600); do
    xwininfo -name "$1" 2>/dev/null | grep -q IsViewable && return 0
    sleep 0.1
  done
  echo "The window \"$1\" did not appear; see $scene/log." >&2
  return 1
}

# new_scene FOLDER: empties the folder and makes it the home of all programs started from here.
# Programs in the background end with the script.
new_scene() {
  scene=$PWD/$1
  rm -rf "$scene"
  mkdir -p "$scene/tintora"
  export XDG_CONFIG_HOME=$scene HOME=$scene XDG_RUNTIME_DIR=$scene
  chmod 700 "$scene"
  trap 'kill "${processes[@]}" 2>/dev/null || true; wait' EXIT
}

# open_screen SIZE [ARGUMENT...]: starts a display, and a window manager with these arguments.
open_screen() {
  in_background Xvfb -displayfd 3 -screen 0 "$1x24" -noreset -nolisten tcp 3>"$scene/number"
  until [ -s "$scene/number" ]; do sleep 0.1; done
  DISPLAY=:$(cat "$scene/number")
  export DISPLAY
  # openbox does not manage windows that appear while it starts.
  in_background openbox "${@:2}" --startup "touch $scene/managed"
  for _ in $(seq 100); do [ -e "$scene/managed" ] || sleep 0.1; done
}
