#!/bin/bash
# e2e_like_tablets: one boot with two 0x0B40 tablets (tab1, tab2) and a work
# area saved for their model. Both open; tab1 is unplugged, and the driver
# closes tab2 with it and reopens it, and tab2 draws; tab1 plugged in again
# draws with the saved work area.
#   test_like_tablets.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run like-tablets \
    --device "$E2E_HARNESS/devices/tablet-0b40.json" \
    --device "$E2E_HARNESS/devices/tablet-0b40.json:name=tab2,serial=E2E0000002" \
    -- bash "$E2E_GUEST/tablets.sh" like "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "two like tablets: unplug one, the other reopened; replug, saved work area"
e2e_check_run --window scribora-start scribora-stop \
    --app-clean scribora \
    --stopped-within scribora 5
e2e_finish e2e_like_tablets
