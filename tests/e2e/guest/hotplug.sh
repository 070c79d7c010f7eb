#!/bin/bash
# Guest side of e2e_hotplug: the driver starts with no tablet; tab1 is plugged
# in, drawn on and unplugged twice (hotplug_probe.py). Between the rounds the
# driver must keep running and answer on its event loop.
#   hotplug.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

hotplug_probe() { /usr/bin/python3 "$E2E_GUEST_DIR/hotplug_probe.py" "$@"; }

scribora_launch "$1" "$2" || exit 1

status=0
if PEN_NODE="$(pen_probe node "NORVA Pen" "$E2E_WAIT_S")"; then
    # The hot-plug listener starts right after the virtual devices exist.
    sleep 2
    hotplug_probe 1 "$PEN_NODE" "$E2E_OUT/hotplug-1.events" || status=1
    # the removal reaches the driver about 0.4 s after the unplug
    sleep 3
    scribora_alive "after the unplug" || status=1
    pen_probe ping-app 10 || status=1
    hotplug_probe 2 "$PEN_NODE" "$E2E_OUT/hotplug-2.events" || status=1
    sleep 3
    scribora_alive "after the second unplug" || status=1
else
    guest_log "no \"NORVA Pen\" input device"
    status=1
fi
scribora_stop || status=1
exit "$status"
