#!/bin/bash
# e2e_pen_stroke: one boot with the catalogued 0x0B40 tablet. A stroke (hover,
# tilt, tip down with rising pressure, a pen button press and release, tip up,
# leave) played on the tablet must reach the virtual "NORVA Pen" evdev node in
# order with the values the default mapping gives (guest/pen_probe.py), and
# libinput must see a tablet tool draw it.
#   test_pen_stroke.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

e2e_run pen-stroke \
    --device "$E2E_HARNESS/devices/tablet-0b40.json" \
    -- bash "$E2E_GUEST/pen-stroke.sh" "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "stroke frames, libinput tablet tool, driver stopped"
e2e_check_run --window scribora-start scribora-stop --app-clean scribora
e2e_finish e2e_pen_stroke
