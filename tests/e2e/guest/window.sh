#!/bin/bash
# Guest side of e2e_window (README.md): window.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
x11_driver_up "$1" "$2" || exit 1
x11_screenshot window

x11_click 854 44 # settingBtn
expect "the settings pop-up opens" wait_for 30 x11_mapped 2
x11_click 640 104 # its checkBox_pressure
x11_screenshot settings
# A click elsewhere takes the focus from the pop-up, which then hides.
x11_click 300 40
expect "the settings pop-up closes" wait_for 30 x11_mapped 1

# The mapping page: the right half of the desktop, picked with two clicks in its dialog.
x11_click 561 396 # pushButton_setscreenarea
expect "the screen area dialog opens" wait_for 30 x11_mapped 2
dialog="$(x11_windows | grep -v "^$X11_WINDOW\$" | head -n 1)"
xdotool mousemove --window "$dialog" 104 315 click 1 # btn_selectscreenarea
shown() { [ "$(xdotool search --onlyvisible --pid "$SCRIBORA_PID" | wc -l)" -ge "$1" ]; }
expect "the two-click pick covers the desktop" wait_for 30 shown 3
xdotool mousemove 960 0 click 1 mousemove 1919 1079 click 1
x11_screenshot screen-area
xdotool mousemove --window "$dialog" 490 362 click 1 # its pushButton_ok
expect "the screen area dialog closes" wait_for 30 x11_mapped 1
x11_screenshot mapping
x11_click 307 345 # the Tablet tab of tabWidget_screen
pen_node && probe corners "$PEN_NODE" "$E2E_OUT/corners.events" 960,0,960,1080 || status=1

x11_screenshot mapping-tablet
x11_ok_saves
scribora_stop || status=1

# The window in German and Japanese, page by page (rows of listWidget_left), for a look at
# translations that do not fit.
for lang in de_DE ja_JP; do
    X11_WINDOW=""
    emuctl skip-outs tab1 > /dev/null
    LANG="$lang.UTF-8" LC_ALL="" scribora_start "$1" &&
        emuctl wait-out tab1 "$E2E_WAIT_S" 02b0 > /dev/null && x11_window_id ||
        { echo "FAIL: no window in $lang"; status=1; continue; }
    for row in 0 1 2; do
        x11_click 94 $((112 + 44 * row))
        sleep 1
        x11_screenshot "window-${lang%_*}-$row"
    done
    scribora_stop || status=1
done
exit "$status"
