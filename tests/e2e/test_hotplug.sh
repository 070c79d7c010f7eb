#!/bin/bash
# e2e_hotplug: one boot with the catalogued 0x0B40 tablet unplugged at start.
# Plugged in after the driver runs, it must open and take pen input; unplugged,
# the driver stays alive and answers; plugged in again, it works again.
#   test_hotplug.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run hotplug \
    --device "$E2E_HARNESS/devices/tablet-0b40.json:connected=0" \
    -- bash "$E2E_GUEST/hotplug.sh" "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "plug in, stroke, unplug, twice; driver alive throughout"
log="$E2E_RUN_DIR/out/scribora.log"
for state in 1 2; do
    count=$(grep -c "ReceiveUsbMsg Vid: 23100 Pid: 2880 state $state" "$log" 2>/dev/null)
    # each message is logged at debug and at info level
    if [ "${count:-0}" -ge 4 ]; then
        echo "PASS: the driver took both hot-plug events of state $state"
    else
        echo "FAIL: the driver logged ${count:-0} hot-plug lines of state $state, want 4"
        E2E_FAILED=1
    fi
done
e2e_check_run --window scribora-start scribora-stop \
    --app-clean scribora \
    --stopped-within scribora 5
e2e_finish e2e_hotplug
