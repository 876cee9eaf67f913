# Helpers for running the editor on a virtual X display; sourced by run.sh and screenshots.sh.

# True when a window system is reachable: a Wayland session, or an X display that answers.
display_reachable() {
  [ -n "${WAYLAND_DISPLAY:-}" ] && return 0
  [ -n "${DISPLAY:-}" ] && xdotool getdisplaygeometry >/dev/null 2>&1
}

# Starts Xvfb on a free display and exports DISPLAY; stop_xvfb ends it.
start_xvfb() {
  local fifo
  fifo=$(mktemp -u)
  mkfifo "$fifo"
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$fifo" >/dev/null 2>&1 &
  xvfb_pid=$!
  local number
  read -r number <"$fifo"
  rm -f "$fifo"
  export DISPLAY=":$number"
  unset WAYLAND_DISPLAY
  # libdbus leaks and waits without a session bus; the editor needs none.
  export DBUS_SESSION_BUS_ADDRESS=disabled:
  export QT_QPA_PLATFORM=xcb
  if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    XDG_RUNTIME_DIR=$(mktemp -d)
    export XDG_RUNTIME_DIR
    own_runtime_dir=$XDG_RUNTIME_DIR
  fi
}

stop_xvfb() {
  [ -n "${xvfb_pid:-}" ] && kill "$xvfb_pid" 2>/dev/null && wait "$xvfb_pid" 2>/dev/null
  xvfb_pid=""
  [ -n "${own_runtime_dir:-}" ] && rm -rf "$own_runtime_dir"
  own_runtime_dir=""
}

# Waits up to 20 seconds for a window whose title is exactly $1 and prints its id.
wait_window() {
  local id=""
  for _ in $(seq 200); do
    id=$(xdotool search --name "^$1\$" 2>/dev/null | head -n 1) && [ -n "$id" ] && break
    sleep 0.1
  done
  [ -n "$id" ] || { echo "no window \"$1\" appeared" >&2; return 1; }
  echo "$id"
}

# Saves a picture of window $1 as $2, once it has painted.
screenshot() {
  sleep 0.5
  import -window "$1" "$2"
}

# Gives window $1 the keyboard and presses the keys that follow.
press_keys() {
  local id=$1
  shift
  xdotool windowfocus --sync "$id" key --delay 50 "$@"
}
