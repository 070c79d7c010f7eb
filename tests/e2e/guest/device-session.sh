#!/bin/bash
# Guest side of e2e_device_session: start the driver with the emulated tablets
# plugged in, wait until it has sent the start packet to tab1, then stop it.
#   device-session.sh SCRIBORA_BINARY BUILD_DIR
set -u
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_launch "$1" "$2" || exit 1

status=0
reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || status=1
guest_log "wait-out tab1 02b0: ${reply:-no reply}"
# Leave time for anything the driver would do to the other device right after.
sleep "${E2E_SETTLE:-3}"
scribora_stop || status=1
exit "$status"
