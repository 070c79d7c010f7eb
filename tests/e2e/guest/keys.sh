#!/bin/bash
# Guest side of e2e_keys (README.md): keys.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
x11_driver_up "$1" "$2" || exit 1

# Key 1 on the key page: its "Custom" entry opens the editor, which captures Ctrl+Shift+Z.
x11_click 94 200 # "Express Keys" in the page list
x11_click 303 315 # key 1's box
x11_keys Down Return
expect "the key function editor opens" wait_for 30 x11_mapped 2
editor="$(x11_windows | grep -v "^$X11_WINDOW\$" | head -n 1)"
x11_keys ctrl+shift+z
x11_screenshot editor
xdotool mousemove --window "$editor" 705 673 click 1 # hotkeywin_ok_button
expect "the key function editor closes" wait_for 30 x11_mapped 1
x11_screenshot keys

keys="$(probe node "NORVA Mouse" "$E2E_WAIT_S")" && probe key "$keys" "$E2E_OUT/key.events" 29,42,44 || status=1
x11_ok_saves
scribora_stop || status=1
exit "$status"
