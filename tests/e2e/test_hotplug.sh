#!/bin/bash
# e2e_hotplug: one boot with the catalogued 0x0B40 tablet unplugged at start.
# Plugged in after the driver runs, it must open and take pen input; unplugged,
# the driver stays alive and answers; plugged in again, it works again.
#   test_hotplug.sh SCRIBORA_BINARY BUILD_DIR
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run hotplug \
    --device "$E2E_HARNESS/devices/tablet-0b40.json:connected=0" \
    -- bash "$E2E_GUEST/hotplug.sh" "$SCRIBORA_BIN" "$E2E_BUILD"

e2e_show_app_log
failed=0
if [ "$E2E_RC" = 0 ]; then
    echo "PASS: guest scenario (plug in, stroke, unplug, twice; driver alive throughout)"
else
    echo "FAIL: guest scenario exit status $E2E_RC"
    failed=1
fi
log="$E2E_RUN_DIR/out/scribora.log"
for state in 1 2; do
    count=$(grep -c "ReceiveUsbMsg Vid: 23100 Pid: 2880 state $state" "$log" 2>/dev/null)
    # each message is logged at debug and at info level
    if [ "${count:-0}" -ge 4 ]; then
        echo "PASS: the driver took both hot-plug events of state $state"
    else
        echo "FAIL: the driver logged ${count:-0} hot-plug lines of state $state, want 4"
        failed=1
    fi
done
if [ -f "$E2E_RUN_DIR/events.jsonl" ]; then
    e2e_check --window scribora-start scribora-stop \
        --app-clean scribora \
        --stopped-within scribora 5 || failed=1
else
    echo "FAIL: no events.jsonl in $E2E_RUN_DIR"
    failed=1
fi
if [ "$failed" = 0 ]; then
    echo "e2e_hotplug: PASS (wall ${E2E_WALL}s, logs in $E2E_RUN_DIR)"
else
    echo "e2e_hotplug: FAIL (logs in $E2E_RUN_DIR)"
fi
exit "$failed"
