# shellcheck shell=bash disable=SC2034  # status and PEN_NODE are for the sourcing scripts
# Helpers for the scripts that run inside the e2e guest; the host reads $E2E_OUT after the run.
set -u
E2E_GUEST_DIR="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
: "${E2E_OUT:=/e2e/run/out}"
SCRIBORA_CONF_DIR=/usr/lib/scribora/conf/norva
SCRIBORA_PID=""
# Cold starts over 9p under TCG take seconds; this only bounds a hang.
E2E_WAIT_S="${E2E_START_TIMEOUT:-120}"
SCRIBORA_QPA=offscreen
status=0

guest_log() { echo "guest: $*"; }
probe() { /usr/bin/python3 "$E2E_GUEST_DIR/probe.py" "$@"; }
emuctl() { probe emuctl "$@"; }
# shellcheck source=SCRIPTDIR/x11.sh
. "$E2E_GUEST_DIR/x11.sh"

# scribora_install_conf BUILD_DIR: the configuration folder the build generated
scribora_install_conf() {
    mkdir -p "$SCRIBORA_CONF_DIR" &&
        cp "$1"/conf/{config.xml,name_config.ini,language.ini} "$SCRIBORA_CONF_DIR/"
}

# scribora_start BINARY [ARGS...]: in the background, output in $E2E_OUT/scribora.log; on the
# X server when x11_start ran first
scribora_start() {
    [ -x "$1" ] || { guest_log "scribora binary $1 not found"; return 1; }
    mkdir -p "$E2E_OUT"
    export QT_QPA_PLATFORM="$SCRIBORA_QPA" XDG_RUNTIME_DIR=/tmp/runtime-root
    install -d -m 0700 "$XDG_RUNTIME_DIR"
    emuctl mark scribora-start >/dev/null || return 1
    "$@" > "$E2E_OUT/scribora.log" 2>&1 &
    SCRIBORA_PID=$!
    guest_log "scribora started (pid $SCRIBORA_PID)"
}

# scribora_stop: SIGTERM; $E2E_OUT/scribora.status: was it running, its status, how long it took
scribora_stop() {
    local alive=0 rc t0
    [ -n "$SCRIBORA_PID" ] || return 1
    kill -0 "$SCRIBORA_PID" 2>/dev/null && alive=1
    emuctl mark scribora-stop >/dev/null
    t0=$(date +%s.%N)
    if [ "$alive" = 1 ]; then
        kill -TERM "$SCRIBORA_PID"
        for _ in $(seq 200); do kill -0 "$SCRIBORA_PID" 2>/dev/null || break; sleep 0.05; done
        kill -0 "$SCRIBORA_PID" 2>/dev/null && { guest_log "SIGTERM ignored for 10 s"; kill -KILL "$SCRIBORA_PID"; }
    fi
    wait "$SCRIBORA_PID"
    rc=$?
    printf 'alive_before_stop=%s\nexit_status=%s\nstop_seconds=%s\n' "$alive" "$rc" \
        "$(awk "BEGIN{printf \"%.2f\", $(date +%s.%N) - $t0}")" > "$E2E_OUT/scribora.status"
    guest_log "scribora stopped: $(tr '\n' ' ' < "$E2E_OUT/scribora.status")"
    SCRIBORA_PID=""
    [ "$alive" = 1 ]
}

# expect WHAT COMMAND...: a PASS or FAIL line; a failure sets status
expect() {
    local what="$1"
    shift
    "$@" && { echo "PASS: $what"; return 0; }
    echo "FAIL: $what"
    status=1
    return 1
}

# scribora_alive WHEN: the driver still runs and its event loop answers
scribora_alive() { expect "scribora still runs $1" kill -0 "$SCRIBORA_PID" && probe ping-app 10; }

# pen_node: waits for the driver's virtual pen; sets PEN_NODE
pen_node() {
    PEN_NODE="$(probe node "NORVA Pen" "$E2E_WAIT_S")" || { guest_log "no \"NORVA Pen\" input device"; return 1; }
}
