#!/bin/bash
# e2e_pen_unplug: one boot with the catalogued 0x0B40 tablet. While the pen
# moves, the tablet is unplugged: once the reports already in the guest are
# through, "NORVA Pen" gets one frame that lifts the pen and then nothing more,
# and the driver must keep running,
# answer on its event loop and end within a few seconds of SIGTERM.
#   test_pen_unplug.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run pen-unplug \
    --device "$E2E_HARNESS/devices/tablet-0b40.json" \
    -- bash "$E2E_GUEST/pen-unplug.sh" "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "unplug mid-stream, driver alive and answering, stopped"
e2e_check_run --window scribora-start scribora-stop \
    --app-clean scribora \
    --stopped-within scribora 5
e2e_finish e2e_pen_unplug
