#!/bin/bash
# Guest side of e2e_remote (README.md): remote.sh SCRIBORA_BINARY BUILD_DIR, with tab1 as the
# QRM07 remote (0x03E2), whose memory probe.py plays.
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
x11_driver_up "$1" "$2" || exit 1
probe remote "$E2E_OUT" > "$E2E_OUT/remote.log" 2>&1 &
memory=$!

# dialog_at X Y: a click in the transfer dialog; dialog_shows PHASE NAME: the device got to
# PHASE and the dialog shows it, kept as NAME.png.
dialog() { x11_windows | grep -v "^$X11_WINDOW\$" | head -n 1; }
dialog_at() { xdotool mousemove --window "$(dialog)" "$1" "$2" click 1; }
dialog_shows() {
    expect "the remote's memory: $1" wait_for 60 test -e "$E2E_OUT/$1"
    sleep 1 # the dialog paints the answer
    x11_screenshot "$2"
}

# A refused write offers a retry, which reads, and the remote has no file yet.
x11_click 459 515 # SaveQRM07Button
expect "the transfer dialog opens" wait_for 30 x11_mapped 2
dialog_shows refused remote-refused
dialog_at 212 271 # ImportRetryButton
dialog_shows nofile remote-nofile
dialog_at 348 271 # ImportCloseButton, beside the retry
expect "the transfer dialog closes" wait_for 30 x11_mapped 1

x11_click 459 515
expect "the transfer dialog opens for the second write" wait_for 30 x11_mapped 2
dialog_shows saved remote-saved
dialog_at 280 271 # ImportCloseButton, alone after a success
expect "the transfer dialog closes after the write" wait_for 30 x11_mapped 1

x11_click 633 515 # ImportQRM07Button
expect "the transfer dialog opens for the read" wait_for 30 x11_mapped 2
dialog_shows othermark remote-othermark
dialog_at 212 271
dialog_shows read remote-read
dialog_at 280 271
expect "the transfer dialog closes after the read" wait_for 30 x11_mapped 1
wait "$memory" || status=1
cat "$E2E_OUT/remote.log"
x11_screenshot keypad
x11_ok_saves
scribora_stop || status=1
exit "$status"
