#!/bin/bash
# Guest side of e2e_churn (README.md): churn.sh SCRIBORA_BINARY BUILD_DIR. tab1 is unplugged and
# plugged in again 50 times; the driver's descriptors, threads and resident memory after the last
# cycle must stay near those after the first, and a stroke must still map right. Then the driver
# is killed ten times while it saves.
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
scribora_install_conf "$2" && scribora_start "$1" && pen_node || exit 1
sleep 2 # the hot-plug listener starts right after the virtual devices exist
cycles=50

# "fds threads rss_kB" of the driver
usage() {
    echo "$(ls "/proc/$SCRIBORA_PID/fd" | wc -l)" \
        "$(awk '/^Threads:/ {print $2}' "/proc/$SCRIBORA_PID/status")" \
        "$(awk '/^VmRSS:/ {print $2}' "/proc/$SCRIBORA_PID/status")"
}
# Each removal is logged twice.
removals_seen() { [ "$(grep -c "Pid: 2880 state 2" "$E2E_OUT/scribora.log")" -ge $((2 * $1)) ]; }

for cycle in $(seq "$cycles"); do
    emuctl skip-outs tab1 > /dev/null &&
        emuctl disconnect tab1 > /dev/null &&
        wait_for 30 removals_seen "$cycle" &&
        emuctl connect tab1 60 > /dev/null &&
        emuctl wait-out tab1 60 02b0 > /dev/null ||
        { echo "FAIL: cycle $cycle did not reopen tab1"; status=1; break; }
    [ "$cycle" = 1 ] && first="$(usage)"
done
last="$(usage)"
echo "after cycle 1: $first; after cycle $cycles: $last (fds threads rss_kB)" | tee "$E2E_OUT/churn.usage"
read -r fds1 threads1 rss1 <<< "$first"
read -r fds threads rss <<< "$last"
expect "descriptors stay within 2 ($fds1 -> $fds)" [ $((fds - fds1)) -le 2 ]
expect "threads stay within 1 ($threads1 -> $threads)" [ $((threads - threads1)) -le 1 ]
expect "resident memory grows by under 8 MB ($rss1 -> $rss kB)" [ $((rss - rss1)) -lt 8192 ]
scribora_alive "after $cycles cycles" || status=1
probe stroke "$PEN_NODE" "$E2E_OUT/stroke.events" || status=1

# A stop saves config.xml; a SIGKILL at any moment of that save must leave a whole file behind.
config="$SCRIBORA_CONF_DIR/config.xml"
loads() { python3 -c 'import sys, xml.etree.ElementTree as ET; ET.parse(sys.argv[1]).getroot().find("QTB0610").tag' "$1"; }
for kill in $(seq 10); do
    kill -TERM "$SCRIBORA_PID"
    sleep "0.0$((RANDOM % 10))"
    kill -KILL "$SCRIBORA_PID" 2> /dev/null
    wait "$SCRIBORA_PID" 2> /dev/null
    loads "$config" || { echo "FAIL: config.xml does not load after kill $kill"; status=1; break; }
    emuctl skip-outs tab1 > /dev/null && scribora_start "$1" &&
        emuctl wait-out tab1 60 02b0 > /dev/null || { echo "FAIL: no restart after kill $kill"; status=1; break; }
done
expect "config.xml loads after each of $kill kills during a stop" loads "$config"
scribora_stop || status=1
exit "$status"
