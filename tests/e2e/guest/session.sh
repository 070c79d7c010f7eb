#!/bin/bash
# Guest side of e2e_session (README.md): session.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_install_conf "$2" && scribora_start "$1" || exit 1
reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || { guest_log "no start packet on tab1: $reply"; exit 1; }
pen_node || exit 1

libinput_log="$E2E_OUT/libinput.log"
stdbuf -oL -eL libinput debug-events --device "$PEN_NODE" > "$libinput_log" 2>&1 &
libinput_pid=$!
for _ in $(seq $((E2E_WAIT_S * 10))); do
    grep -q DEVICE_ADDED "$libinput_log" && break
    kill -0 "$libinput_pid" 2>/dev/null || break
    sleep 0.1
done
probe stroke "$PEN_NODE" "$E2E_OUT/pen-stroke.events" || status=1
# libinput prints proximity-out when it reads the last frame; give it a moment
sleep 1
kill -INT "$libinput_pid" 2>/dev/null
wait "$libinput_pid" 2>/dev/null
probe libinput "$libinput_log" || { status=1; sed 's/^/  libinput: /' "$libinput_log"; }

# The event loop is up, so the start-up scan and its window update are done.
scribora_alive "before SIGTERM" || status=1
probe driver usbfs || status=1
# A save shows as a newer modification time than this.
config="$SCRIBORA_CONF_DIR/config.xml"
touch -d @946684800 "$config"
scribora_stop || status=1
emuctl mark scribora-ended >/dev/null

if grep -qx "exit_status=0" "$E2E_OUT/scribora.status"; then
    echo "PASS: scribora ended with status 0"
else
    echo "FAIL: scribora did not end with status 0"
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
