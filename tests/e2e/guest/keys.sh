#!/bin/bash
# Guest side of e2e_keys (README.md): keys.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
config="$SCRIBORA_CONF_DIR/config.xml"

scribora_install_conf "$2" && x11_start && scribora_start "$1" || exit 1
reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || { guest_log "no start packet on tab1: $reply"; exit 1; }
probe ping-app 10 && x11_window_id || exit 1
touch -d @946684800 "$config" /tmp/before-ok

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
expect "nothing is saved before OK" test ! "$config" -nt /tmp/before-ok
x11_click 778 573 # pushButton_ok
expect "OK saves config.xml" wait_for 30 test "$config" -nt /tmp/before-ok
cp "$config" "$E2E_OUT/config.xml"
scribora_stop || status=1
exit "$status"
