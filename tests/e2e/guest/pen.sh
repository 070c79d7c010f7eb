#!/bin/bash
# Guest side of e2e_pen (README.md): pen.sh SCRIBORA_BINARY BUILD_DIR, with tab1 as a QTB0860
# (0x0B44, one wheel).
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
x11_driver_up "$1" "$2" || exit 1
pen="$(probe node "NORVA Pen" "$E2E_WAIT_S")" || exit 1
keys="$(probe node "NORVA Mouse" "$E2E_WAIT_S")" || exit 1
probe pressure "$pen" "$E2E_OUT/before.events" 4096 || status=1

# The pen page: the curve's handle dragged from its centre to the lower right, a harder curve.
x11_click 94 155 # "Pen" in the page list
xdotool mousemove --window "$X11_WINDOW" 457 196 mousedown 1 \
    mousemove --window "$X11_WINDOW" 480 220 mousemove --window "$X11_WINDOW" 505 245 mouseup 1

# The wheel page: the first function set to a custom one, Ctrl+Z one way, Ctrl+Shift+Z the
# other, captured in the wheel function editor.
x11_click 94 243 # "Wheel"
x11_click 699 197 # comboBox_ringItem1
x11_keys Down Down Return
expect "the wheel function editor opens" wait_for 30 x11_mapped 2
editor="$(x11_windows | grep -v "^$X11_WINDOW\$" | head -n 1)"
xdotool mousemove --window "$editor" 320 126 click 1 # lineEdit_keys1
x11_keys ctrl+z
xdotool mousemove --window "$editor" 320 244 click 1 # lineEdit_keys2
x11_keys ctrl+shift+z
x11_screenshot roller-key
xdotool mousemove --window "$editor" 546 426 click 1 # pushButton_ok
expect "the wheel function editor closes" wait_for 30 x11_mapped 1
x11_screenshot wheel

probe wheel "$keys" "$E2E_OUT/wheel.events" 29,42,44 || status=1
x11_ok_saves
x11_click 94 155 # "Pen": the harder curve, and the bar follows the tap
probe pressure "$pen" "$E2E_OUT/after.events" 4096 || status=1
x11_screenshot pen
scribora_stop || status=1
exit "$status"
