#!/bin/bash
# Guest side of e2e_session (README.md): session.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_install_conf "$2" && scribora_start "$1" || exit 1
reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || { guest_log "no start packet on tab1: $reply"; exit 1; }
pen_node || exit 1

probe stroke "$PEN_NODE" "$E2E_OUT/pen-stroke.events" || status=1

# The event loop is up, so the start-up scan and its window update are done.
scribora_alive "before SIGTERM" || status=1
probe driver usbfs || status=1
# A save shows as a newer modification time than this.
config="$SCRIBORA_CONF_DIR/config.xml"
touch -d @946684800 "$config"
scribora_stop || status=1
emuctl mark scribora-ended >/dev/null

expect "scribora ended with status 0" grep -qx "exit_status=0" "$E2E_OUT/scribora.status"
expect "config.xml was written again on SIGTERM and is well-formed" /usr/bin/python3 -c \
    'import os, sys, xml.etree.ElementTree as ET; ET.parse(sys.argv[1]); sys.exit(os.stat(sys.argv[1]).st_mtime <= 946684800)' "$config"
probe driver usbhid || status=1
probe hidraw || status=1
exit "$status"
