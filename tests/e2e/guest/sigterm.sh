#!/bin/bash
# Guest side of e2e_sigterm: with tab1 in session, SIGTERM must end the driver
# as the tray's Exit does: the profile saved, exit status 0, and tab1's vendor
# interface back with usbhid, passing reports on.
#   sigterm.sh SCRIBORA_BINARY BUILD_DIR
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

probe() { /usr/bin/python3 "$E2E_GUEST_DIR/handback_probe.py" "$@"; }

scribora_launch "$1" "$2" || exit 1

status=0
pen_wait_ready "$E2E_WAIT_S" || exit 1
# The event loop is up, so the start-up scan and its window update are done.
pen_probe ping-app 10 || status=1
probe driver usbfs || status=1
# A save shows as a newer modification time than this.
config="$SCRIBORA_CONF_DIR/config.xml"
touch -d @946684800 "$config"

scribora_stop || status=1
emuctl mark scribora-ended >/dev/null

if grep -qx "exit_status=0" "$E2E_OUT/scribora.status"; then
    echo "PASS: scribora ended with status 0"
else
    echo "FAIL: scribora did not end with status 0: $(tr '\n' ' ' < "$E2E_OUT/scribora.status")"
    status=1
fi
if [ "$(stat -c %Y "$config")" -gt 946684800 ] &&
    /usr/bin/python3 -c 'import sys, xml.etree.ElementTree as ET; ET.parse(sys.argv[1])' "$config"; then
    echo "PASS: config.xml was written again on SIGTERM and is well-formed"
else
    echo "FAIL: config.xml was not saved on SIGTERM (modified $(stat -c %y "$config"))"
    status=1
fi
probe driver usbhid || status=1
probe hidraw || status=1
exit "$status"
