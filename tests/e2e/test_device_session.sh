#!/bin/bash
# e2e_device_session: one boot with two devices of the vendor, the catalogued
# 0x0B40 tablet (tab1) and a product the catalogue does not list (tab9). The
# driver must read string 100 of tab1 and send it the start packet for mode 4,
# and leave tab9 alone.
#   test_device_session.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

UNLISTED_PID=0x0BFE
# Both devices prove something only while the catalogue compiled into the
# driver lists 0x0B40 and not the other product.
catalogue="$E2E_BUILD/generated/zelkdevlist.inc"
if ! grep -qi "0x5A3C, 0x0B40, 2," "$catalogue" 2>/dev/null; then
    echo "FAIL: $catalogue does not list 5a3c:0b40 interface 2"
    exit 1
fi
if grep -qi "0x5A3C, $UNLISTED_PID," "$catalogue"; then
    echo "FAIL: $catalogue lists $UNLISTED_PID; pick a product id it does not list"
    exit 1
fi

e2e_run device-session \
    --device "$E2E_HARNESS/devices/tablet-0b40.json" \
    --device "$E2E_HARNESS/devices/tablet-0b40.json:name=tab9,pid=$UNLISTED_PID,serial=E2E0000009" \
    -- bash "$E2E_GUEST/device-session.sh" "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "driver started, start packet seen, driver stopped"
e2e_check_run --window scribora-start scribora-stop \
    --string-read tab1 100 \
    --out tab1 "02 b0 04 00 00 00 00 00 00 00" \
    --enumerated tab9 \
    --no-string-read tab9 100 \
    --no-out tab9 2 \
    --not-opened tab9 2 \
    --app-clean scribora
e2e_finish e2e_device_session
