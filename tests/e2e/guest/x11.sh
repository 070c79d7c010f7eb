# shellcheck shell=bash disable=SC2034  # SCRIBORA_QPA is read by lib.sh
# The real window on an X server in the guest (Xvfb on :1), driven with xdotool as a user
# would. Points are relative to the main window (src/ui/mainwindow.ui). Sourced by lib.sh.
X11_FB=/tmp/x11-fb
X11_WINDOW=""

# wait_for SECONDS COMMAND...: COMMAND until it succeeds, for at most SECONDS
wait_for() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.1
    done
}

# x11_start: Xvfb on :1, 1920x1080x24; scribora_start then shows the driver there
x11_start() {
    mkdir -p "$X11_FB" "$E2E_OUT"
    # -fbdir: the server keeps its screen as an XWD file, so screenshots need no client
    Xvfb :1 -screen 0 1920x1080x24 -fbdir "$X11_FB" -nolisten tcp > "$E2E_OUT/xvfb.log" 2>&1 &
    export DISPLAY=:1
    SCRIBORA_QPA=xcb
    wait_for 30 xdotool getdisplaygeometry > /dev/null 2>&1 || { guest_log "Xvfb does not answer on :1"; return 1; }
}

# x11_windows: the mapped windows called "Scribora" (the main window, the settings pop-up)
x11_windows() { xdotool search --onlyvisible --name '^Scribora$' 2> /dev/null; }

# x11_mapped N: exactly N of them are mapped (wait_for 30 x11_mapped 2: the pop-up is open)
x11_mapped() { [ "$(x11_windows | wc -l)" = "$1" ]; }

# x11_window_id: waits for the main window to be mapped; sets X11_WINDOW
x11_window_id() {
    [ -n "$X11_WINDOW" ] && return 0
    X11_WINDOW="$(wait_for "$E2E_WAIT_S" x11_windows | head -n 1)"
    [ -n "$X11_WINDOW" ] || { guest_log "no \"Scribora\" window mapped"; return 1; }
}

# x11_click X Y: a left click at X,Y of the main window
x11_click() { x11_window_id && xdotool mousemove --window "$X11_WINDOW" "$1" "$2" click 1; }

# x11_keys KEY... ("Return", "ctrl+a"), x11_type TEXT: to the window that has the focus
x11_keys() { xdotool key --delay 50 "$@"; }
x11_type() { xdotool type --delay 50 "$1"; }

# x11_screenshot NAME: the screen as NAME.png in the run dir
x11_screenshot() { xwdtopnm -quiet "$X11_FB/Xvfb_screen0" | pnmtopng -quiet > "${E2E_OUT%/*}/$1.png"; }

# x11_driver_up BINARY BUILD_DIR: the driver on Xvfb with tab1 opened and its window mapped;
# config.xml is dated back, so that x11_ok_saves can tell a save
x11_driver_up() {
    scribora_install_conf "$2" && x11_start && scribora_start "$1" || return 1
    local reply
    reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || { guest_log "no start packet on tab1: $reply"; return 1; }
    # The event loop answers, so the window shows the tablet it opened.
    probe ping-app 10 && x11_window_id || return 1
    touch -d @946684800 "$SCRIBORA_CONF_DIR/config.xml" /tmp/before-ok
}

# x11_ok_saves: nothing saved so far; pushButton_ok saves config.xml, copied to the run dir
x11_ok_saves() {
    local config="$SCRIBORA_CONF_DIR/config.xml"
    expect "nothing is saved before OK" test ! "$config" -nt /tmp/before-ok
    x11_click 778 573 # pushButton_ok
    expect "OK saves config.xml" wait_for 30 test "$config" -nt /tmp/before-ok
    cp "$config" "$E2E_OUT/config.xml"
}
