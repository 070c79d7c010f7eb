#!/bin/bash
# e2e_six_tablets: one boot with six 0x0B40 tablets (tab1..tab6). Five take
# the five slots and draw; the sixth gets nothing from the driver. Unplugging
# one frees a slot for the sixth; plugged in again, the unplugged one finds the
# slots full and is left alone.
#   test_six_tablets.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
[ $# = 2 ] || { echo "usage: $0 SCRIBORA_BINARY BUILD_DIR"; exit 2; }
e2e_init "$1" "$2"

devices=()
for n in 1 2 3 4 5 6; do
    devices+=(--device "$E2E_HARNESS/devices/tablet-0b40.json:name=tab$n,serial=E2E000000$n")
done
e2e_run six-tablets "${devices[@]}" \
    -- bash "$E2E_GUEST/tablets.sh" slots "$E2E_GUEST_BIN" "$E2E_GUEST_BUILD"

e2e_show_app_log
e2e_guest_verdict "six tablets: five slots, the sixth left alone until one is unplugged"
names="$E2E_RUN_DIR/out/slots.names"
sixth="$(sed -n 's/^sixth=\(tab[1-6]\)$/\1/p' "$names" 2>/dev/null)"
replugged="$(sed -n 's/^replugged=\(tab[1-6]\)$/\1/p' "$names" 2>/dev/null)"
if [ -n "$sixth" ] && [ -n "$replugged" ]; then
    opened=()
    for n in 1 2 3 4 5 6; do
        [ "tab$n" = "$sixth" ] || opened+=(--out "tab$n" "02 b0 04 00 00 00 00 00 00 00")
    done
    echo "e2e: left alone at start: $sixth; unplugged and plugged in again: $replugged"
    e2e_check_run --window scribora-start slots-full "${opened[@]}" \
        --enumerated "$sixth" \
        --no-string-read "$sixth" 100 \
        --no-out "$sixth" 2 \
        --not-opened "$sixth" 2
    e2e_check_run --window replug replug-settled \
        --no-string-read "$replugged" 100 \
        --no-out "$replugged" 2 \
        --not-opened "$replugged" 2
else
    echo "FAIL: the guest did not say which tablet was left alone ($names)"
    E2E_FAILED=1
fi
e2e_check_run --window scribora-start scribora-stop \
    --app-clean scribora \
    --stopped-within scribora 5
e2e_finish e2e_six_tablets
