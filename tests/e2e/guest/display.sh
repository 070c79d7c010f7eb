#!/bin/bash
# Guest side of e2e_display (README.md): display.sh SCRIBORA_BINARY BUILD_DIR, with tab1 as a
# QPD1360 pen display (0x0A66), whose picture settings probe.py plays.
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
x11_driver_up "$1" "$2" || exit 1
probe display "$E2E_OUT" > "$E2E_OUT/display.out" 2>&1 &
display=$!

# The driver's windows, dialogs included (not all are called "Scribora"); opened: a new one.
windows() { xdotool search --onlyvisible --pid "$SCRIBORA_PID" 2> /dev/null; }
remember_windows() { windows > /tmp/windows-before || true; }
opened() { windows | grep -v -x -F -f /tmp/windows-before | tail -n 1 | grep .; }
closed() { ! windows | grep -qx "$1"; }
at() { xdotool mousemove --window "$1" "$2" "$3" click 1; }

# Display settings, from the Tablet tab of the work-area page.
x11_click 332 348 # the Tablet tab of tabWidget_screen
remember_windows
x11_click 822 396 # pushButton_ScreenSetting
expect "the display settings open" wait_for 30 opened
dialog="$(opened)"
expect "the display told its state" wait_for 60 test -e "$E2E_OUT/state"
at "$dialog" 143 99 # RGBcomboBox: the colour spaces
x11_keys Down Return
at "$dialog" 226 144 # radioButton_SRGB, as laid out with the guest's fonts
# The brightness handle, at 70 from the display's state, dragged past the end of its groove.
xdotool mousemove --window "$dialog" 367 337 mousedown 1 \
    mousemove --window "$dialog" 440 337 mousemove --window "$dialog" 530 337 mouseup 1
expect "the display got sRGB and full brightness" wait "$display"
sleep 1 # the dialog paints the display's answers
x11_screenshot display
cat "$E2E_OUT/display.out"
at "$dialog" 465 449 # pushButton_ok
expect "the display settings close" wait_for 30 closed "$dialog"

# Diagnosis, from the settings pop-up, with the pen held on the display.
x11_click 853 43 # settingBtn
expect "the settings pop-up opens" wait_for 30 x11_mapped 2
remember_windows
x11_click 876 223 # its Setting_Diagnosisbtn
expect "the diagnosis opens" wait_for 30 opened
diagnosis="$(opened)"
probe hold 4096 || status=1
sleep 1 # the dialog shows the pen
x11_screenshot diagnosis
emuctl disconnect tab1 > /dev/null || status=1
expect "the diagnosis closes with its device" wait_for 30 closed "$diagnosis"
scribora_stop || status=1
exit "$status"
