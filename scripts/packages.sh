# shellcheck shell=bash
# The Debian packages that Kestro needs, and the function that installs them. Sourced by ./run and ./test.

# To build and to run.
build_packages=(
    g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools qt6-svg-dev nlohmann-json3-dev libglib2.0-dev
    libcurl4-openssl-dev libcanberra-dev
    libxcb1-dev libxcb-xfixes0-dev libxcb-shape0-dev libxcb-xinput-dev libxcb-randr0-dev libxcb-ewmh-dev
    libxcb-icccm4-dev libxcb-screensaver0-dev libxcb-dpms0-dev libxcb-xkb-dev
    libxcb-res0-dev libxcb-xtest0-dev
    # Glyphs and letters.
    bootstrap-icons fonts-inter
    # QtQuick imports QtQml, which imports the other two: a view fails to load without any one of them.
    qml6-module-qtquick qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
    # The agents' hooks speak to the socket through nc -U, which only this netcat knows; favicons need the authorities.
    netcat-openbsd ca-certificates
)

# A desktop of our own, where there is none.
desktop_packages=(
    xvfb xauth openbox picom hsetroot x11-utils imagemagick dbus-daemon dbus-bin dbus-session-bus-common
)

# To look at that desktop.
viewer_packages=(x11vnc)

# To test.
test_packages=(
    "${desktop_packages[@]}"
    xfwm4 at-spi2-core gir1.2-atspi-2.0 python3-gi python3-xlib python3-dbus python3-dbusmock
    xdotool xclip strace busybox tmux xterm rxvt-unicode x11-xserver-utils x11-xkb-utils openssl
    libgtest-dev libgmock-dev libxcb-damage0-dev
    clang-16 clang-tidy-16 clang-format-16 libclang-rt-16-dev shellcheck
)

# missing_packages NAME...: those that are not installed, one a line.
missing_packages() {
    local installed
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p') || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(sort -u <<<"$installed")
}

# need_packages NAME...: installs what is missing, or says in one line what to type.
need_packages() {
    local missing as_root=()
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" != 0 ]; then
        if ! sudo -n true 2>/dev/null; then
            echo "Kestro needs more packages: type  sudo apt-get install --no-install-recommends ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo -n)
    fi
    echo "Installing: ${missing[*]}"
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600)
    local log
    log=$(mktemp)
    # The lists of a long-lived machine name versions that the mirror has dropped; those of a bare one are empty.
    if "${apt[@]}" update >"$log" 2>&1 &&
        "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >>"$log" 2>&1; then
        rm -f "$log"
        return 0
    fi
    tail -n 15 "$log" >&2
    rm -f "$log"
    echo "Kestro could not install its packages (${missing[*]})." >&2
    return 1
}
