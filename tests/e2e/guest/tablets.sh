#!/bin/bash
# Guest side of e2e_like_tablets and e2e_six_tablets: the driver starts with
# the emulated tablets plugged in; tablets_probe.py plays the scenario. The
# driver must keep running and answer on its event loop throughout.
#   tablets.sh like|slots SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

mode="$1"
bin="$2"
build="$3"

tablets_probe() { /usr/bin/python3 "$E2E_GUEST_DIR/tablets_probe.py" "$@"; }

scribora_install_conf "$build" || exit 1
if [ "$mode" = like ]; then
    # the right half of the tablet, saved for the model of both tablets
    scribora_set_work_area QTB0610 515 0 515 582 || exit 1
fi
scribora_start "$bin" || exit 1

status=0
if PEN_NODE="$(pen_probe node "NORVA Pen" "$E2E_WAIT_S")"; then
    # The hot-plug listener starts right after the virtual devices exist.
    sleep 2
    args=("$PEN_NODE" "$E2E_OUT/$mode.events")
    [ "$mode" = slots ] && args+=("$E2E_OUT/slots.names")
    tablets_probe "$mode" "${args[@]}" || status=1
    scribora_alive "at the end" || status=1
    pen_probe ping-app 10 || status=1
else
    guest_log "no \"NORVA Pen\" input device"
    status=1
fi
scribora_stop || status=1
exit "$status"
