# shellcheck shell=bash
# A private desktop, piece by piece: X server, monitors, buses, window manager, compositor. Sourced by ./run and
# Tests/Desktop/desk. Every piece is a child of the calling shell: it is ended by desktop_close, and by the kernel
# (the parent-death signal) when the shell itself is killed.

desktop_folder=
desktop_pids=()

# await SECONDS COMMAND...: repeats COMMAND until it succeeds.
await() {
    local limit=$1 start=$EPOCHREALTIME
    shift
    until "$@" >/dev/null 2>&1; do
        if awk "BEGIN { exit !($EPOCHREALTIME - $start > $limit) }"; then
            echo "Not up after $limit s: $*" >&2
            return 1
        fi
        sleep 0.01
    done
}

# begin NAME COMMAND...: starts a piece, its output in NAME.log.
begin() {
    local name=$1
    shift
    detached "$@" >"$desktop_folder/$name.log" 2>&1 </dev/null &
    desktop_pids+=($!)
}

# In a session of its own, or Ctrl-C would end the X server before what draws on it. And a shell without job control
# starts what it leaves behind deaf to Ctrl-C, which would be inherited.
detached() { exec setsid env --default-signal=INT,QUIT setpriv --pdeathsig TERM "$@"; }

# desktop_open: the folder, and a home and session folders of its own inside it.
desktop_open() {
    desktop_folder=$(mktemp -d "${TMPDIR:-/tmp}/kestro-desktop.XXXXXX")
    mkdir -m 700 "$desktop_folder/run"
    export XDG_RUNTIME_DIR=$desktop_folder/run
    unset DISPLAY WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER DESKTOP_STARTUP_ID
}

# desktop_home: a home folder that holds nothing yet.
desktop_home() {
    export HOME=$desktop_folder/home
    export XDG_CONFIG_HOME=$HOME/.config XDG_DATA_HOME=$HOME/.local/share XDG_STATE_HOME=$HOME/.local/state
    export XDG_CACHE_HOME=$HOME/.cache
    mkdir -m 700 "$HOME"
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_STATE_HOME" "$XDG_CACHE_HOME"
    cd "$HOME" || return 1
}

# desktop_server WIDTHxHEIGHT[xDEPTH] (the depth is 24): an X server on a free display.
desktop_server() {
    local number=$desktop_folder/display
    : >"$number"
    begin xserver bash -c 'exec 9>"$0"; exec Xvfb -displayfd 9 "$@"' "$number" \
        -screen 0 "$(cut -d x -f 1,2 <<<"$1")x24" -nolisten tcp -noreset -ac -dpi 96
    DESKTOP_SERVER_PID=${desktop_pids[-1]}
    export DESKTOP_SERVER_PID
    await 20 grep -q . "$number"
    DISPLAY=:$(<"$number")
    export DISPLAY
}

# desktop_monitors NAME:WxH+X+Y...: cuts the one output into monitors, the first of them primary.
desktop_monitors() {
    local monitor output=screen
    for monitor in "$@"; do
        local name=${monitor%%:*} width height place
        IFS='x+' read -r width height place <<<"${monitor#*:}"
        xrandr --setmonitor "$name" "$width/$((width * 254 / 960))x$height/$((height * 254 / 960))+$place" "$output" >/dev/null
        output=none
    done
}

# desktop_bus NAME: a message bus at its own address.
desktop_bus() {
    begin "$1-bus" dbus-daemon --session --nofork --nopidfile --address="unix:path=$desktop_folder/$1.bus"
    await 10 test -S "$desktop_folder/$1.bus"
}

desktop_session_bus() {
    desktop_bus session
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$desktop_folder/session.bus
}

managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x; }

desktop_window_manager() {
    case $1 in
    openbox) begin wm openbox --sm-disable ;;
    xfwm4) begin wm xfwm4 --compositor=off ;;
    none) return 0 ;;
    *) echo "No such window manager here: $1" >&2 && return 1 ;;
    esac
    await 10 managed
}

composited() {
    /usr/bin/python3 -c 'from Xlib import display
d = display.Display()
raise SystemExit(not d.get_selection_owner(d.get_atom("_NET_WM_CM_S0")))'
}

# desktop_compositor: picom is not ready when it has started, only when it owns the selection.
desktop_compositor() {
    begin compositor picom --backend xrender --config /dev/null
    if /usr/bin/python3 -c 'import Xlib' 2>/dev/null; then
        await 10 composited
    fi
}

# desktop_close: ends the pieces, last first.
desktop_close() {
    local i
    for ((i = ${#desktop_pids[@]} - 1; i >= 0; i--)); do
        kill "${desktop_pids[i]}" 2>/dev/null || true
        wait "${desktop_pids[i]}" 2>/dev/null || true
    done
    desktop_pids=()
}

# desktop_remove: the folder too. Services that the buses started may still write there for a moment.
desktop_remove() {
    [ -n "$desktop_folder" ] || return 0
    cd / || return 1
    await 5 rm -rf "$desktop_folder" || true
    desktop_folder=
}
