#!/bin/bash
# e2e_sigterm: one boot with the catalogued 0x0B40 tablet in session. SIGTERM
# (logout, systemctl stop) ends the driver the way the tray's Exit does: the
# profile is saved, the tablet gets the stop command (02 B0 02), the driver
# ends with status 0 within a second, and the tablet's vendor interface is
# back with usbhid, whose hidraw node passes an injected report on.
#   test_sigterm.sh SCRIBORA_BINARY BUILD_DIR
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run sigterm \
    --device "$E2E_HARNESS/devices/tablet-0b40.json" \
    -- bash "$E2E_GUEST/sigterm.sh" "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "SIGTERM: saved, status 0, interface back with usbhid"
e2e_check_run --window scribora-stop scribora-ended \
    --out tab1 "02 b0 02 00 00 00 00 00 00 00" \
    --app-clean scribora \
    --stopped-within scribora 1
e2e_finish e2e_sigterm
