#!/bin/bash
# Guest side of e2e_hotplug (README.md): hotplug.sh SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_install_conf "$2" && scribora_start "$1" && pen_node || exit 1
# The hot-plug listener starts right after the virtual devices exist.
sleep 2
probe plug "$PEN_NODE" "$E2E_OUT/plug.events" || status=1
# the removal reaches the driver about 0.4 s after the unplug
sleep 3
scribora_alive "after the unplug" || status=1
probe unplug "$PEN_NODE" "$E2E_OUT/unplug.events" || status=1
scribora_alive "after the unplug mid-stroke" || status=1
scribora_stop || status=1
exit "$status"
