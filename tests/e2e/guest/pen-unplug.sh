#!/bin/bash
# Guest side of e2e_pen_unplug: the pen moves on tab1 and the tablet is
# unplugged mid-stream (pen_probe.py); afterwards the driver must still run,
# answer on its event loop, and end on SIGTERM.
#   pen-unplug.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_launch "$1" "$2" || exit 1

status=0
if pen_wait_ready "$E2E_WAIT_S"; then
    pen_probe unplug "$PEN_NODE" "$E2E_OUT/pen-unplug.events" || status=1
    if kill -0 "$SCRIBORA_PID" 2>/dev/null; then
        echo "PASS: scribora still runs after the unplug"
    else
        echo "FAIL: scribora ended after the unplug"
        status=1
    fi
    pen_probe ping-app 10 || status=1
else
    status=1
fi
scribora_stop || status=1
exit "$status"
