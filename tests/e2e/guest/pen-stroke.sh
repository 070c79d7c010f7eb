#!/bin/bash
# Guest side of e2e_pen_stroke: the driver with tab1 plugged in; a stroke
# played on tab1 must come out of "NORVA Pen" frame by frame with the values
# of the mapping (pen_probe.py), and libinput must see a tablet tool draw it.
#   pen-stroke.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_launch "$1" "$2" || exit 1

status=0
if pen_wait_ready "$E2E_WAIT_S"; then
    libinput_log="$E2E_OUT/libinput.log"
    stdbuf -oL -eL libinput debug-events --device "$PEN_NODE" > "$libinput_log" 2>&1 &
    libinput_pid=$!
    for _ in $(seq $((E2E_WAIT_S * 10))); do
        grep -q DEVICE_ADDED "$libinput_log" && break
        kill -0 "$libinput_pid" 2>/dev/null || break
        sleep 0.1
    done
    pen_probe stroke "$PEN_NODE" "$E2E_OUT/pen-stroke.events" || status=1
    # libinput prints proximity-out when it reads the last frame; give it a moment
    sleep 1
    kill -INT "$libinput_pid" 2>/dev/null
    wait "$libinput_pid" 2>/dev/null
    pen_probe libinput "$libinput_log" || { status=1; sed 's/^/  libinput: /' "$libinput_log"; }
else
    status=1
fi
scribora_stop || status=1
exit "$status"
