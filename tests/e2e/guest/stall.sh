#!/bin/bash
# Guest side of e2e_stall (README.md): stall.sh SCRIBORA_BINARY BUILD_DIR. tab1 stops answering
# mid-stroke while tab2 (another model) draws on; replugged, tab1 draws again.
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_install_conf "$2" && scribora_start "$1" && pen_node || exit 1
sleep 2 # the hot-plug listener starts right after the virtual devices exist
probe stall "$PEN_NODE" "$E2E_OUT/stall.events" "$SCRIBORA_PID" || status=1
dmesg | grep -E "usb 1-[0-9]+: (reset|USB disconnect)|unable to enumerate" | head -n 4
scribora_alive "at the end" || status=1
scribora_stop || status=1
exit "$status"
