# shellcheck shell=bash
# Helpers for scripts that run inside the e2e guest (sourced by bash).
# The guest sees the host's files read-only at the same paths, except under
# /tmp and /var/tmp; writes go to a RAM overlay, except in the run dir
# (/e2e/run, which holds the copies of these scripts, the binary and conf/ that
# the host staged) and $E2E_OUT, which the host reads after the run.

E2E_GUEST_DIR="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
: "${E2E_OUT:=/e2e/run/out}"
SCRIBORA_CONF_DIR=/usr/lib/scribora/conf/norva
SCRIBORA_PID=""

guest_log() { echo "guest: $*"; }

# emuctl VERB ARGS... : one request on the emulator's control channel.
emuctl() { /usr/bin/python3 "$E2E_GUEST_DIR/emuctl.py" "$@"; }

# Lays down the configuration folder from the files the build generated.
scribora_install_conf() {
    local build="$1" f
    for f in config.xml name_config.ini language.ini; do
        if [ ! -s "$build/conf/$f" ]; then
            guest_log "missing $build/conf/$f (is the scribora_data target built?)"
            return 1
        fi
    done
    mkdir -p "$SCRIBORA_CONF_DIR" || return 1
    cp "$build/conf/config.xml" "$build/conf/name_config.ini" "$build/conf/language.ini" \
        "$SCRIBORA_CONF_DIR/" || return 1
    guest_log "configuration folder $SCRIBORA_CONF_DIR: $(cd "$SCRIBORA_CONF_DIR" && echo *)"
}

# scribora_set_work_area MODEL TX TY TW TH : gives the model's section of the
# installed config.xml this work area (hundredths of an inch), as if saved.
scribora_set_work_area() {
    /usr/bin/python3 - "$SCRIBORA_CONF_DIR/config.xml" "$@" <<'PY' || return 1
import sys
import xml.etree.ElementTree as ET
path, model, values = sys.argv[1], sys.argv[2], sys.argv[3:]
tree = ET.parse(path)
panel = tree.getroot().find(model + "/Common/TabletPannel")
for name, value in zip(("TX", "TY", "TW", "TH"), values):
    panel.find(name).text = value
tree.write(path, encoding="UTF-8", xml_declaration=True)
PY
    guest_log "work area of $1 in config.xml: TX $2 TY $3 TW $4 TH $5"
}

# Cold starts over 9p under TCG take seconds; this only bounds a hang.
# shellcheck disable=SC2034  # used by the scripts that source this file
E2E_WAIT_S="${E2E_START_TIMEOUT:-120}"

# scribora_launch BINARY BUILD_DIR : installs the configuration from
# BUILD_DIR/conf, then starts the driver.
scribora_launch() {
    scribora_install_conf "$2" && scribora_start "$1"
}

# scribora_start BINARY [ARGS...] : starts the driver in the background.
# Its output goes to $E2E_OUT/scribora.log; the marks let the host-side checks
# look only at what happened while it ran.
scribora_start() {
    local bin="$1"
    shift
    if [ ! -x "$bin" ]; then
        guest_log "scribora binary $bin not found"
        return 1
    fi
    mkdir -p "$E2E_OUT"
    export QT_QPA_PLATFORM=offscreen
    export XDG_RUNTIME_DIR=/tmp/runtime-root
    install -d -m 0700 "$XDG_RUNTIME_DIR"
    emuctl mark scribora-start >/dev/null || return 1
    "$bin" "$@" > "$E2E_OUT/scribora.log" 2>&1 &
    SCRIBORA_PID=$!
    guest_log "scribora started (pid $SCRIBORA_PID)"
}

# scribora_stop : SIGTERM, then records whether it was still running, how it
# ended and how long that took in $E2E_OUT/scribora.status (read by the
# host-side crash check); the time is also left in SCRIBORA_STOP_SECONDS.
scribora_stop() {
    local alive=0 rc t0 t1
    [ -n "$SCRIBORA_PID" ] || return 1
    kill -0 "$SCRIBORA_PID" 2>/dev/null && alive=1
    emuctl mark scribora-stop >/dev/null
    t0=$(date +%s.%N)
    if [ "$alive" = 1 ]; then
        kill -TERM "$SCRIBORA_PID"
        for _ in $(seq 100); do
            kill -0 "$SCRIBORA_PID" 2>/dev/null || break
            sleep 0.1
        done
        if kill -0 "$SCRIBORA_PID" 2>/dev/null; then
            guest_log "scribora ignored SIGTERM for 10 s, killing it"
            kill -KILL "$SCRIBORA_PID"
        fi
    fi
    wait "$SCRIBORA_PID"
    rc=$?
    t1=$(date +%s.%N)
    SCRIBORA_STOP_SECONDS=$(awk "BEGIN{printf \"%.2f\", $t1 - $t0}")
    printf 'alive_before_stop=%s\nexit_status=%s\nstop_seconds=%s\n' "$alive" "$rc" \
        "$SCRIBORA_STOP_SECONDS" > "$E2E_OUT/scribora.status"
    guest_log "scribora stopped: alive before stop $alive, exit status $rc," \
        "after ${SCRIBORA_STOP_SECONDS}s"
    SCRIBORA_PID=""
    [ "$alive" = 1 ]
}

# scribora_alive WHEN : PASS/FAIL line on whether the driver still runs.
scribora_alive() {
    if kill -0 "$SCRIBORA_PID" 2>/dev/null; then
        echo "PASS: scribora still runs $1"
    else
        echo "FAIL: scribora ended $1"
        return 1
    fi
}

# pen_probe ARGS... : the evdev and control-channel probe of the pen tests.
pen_probe() { /usr/bin/python3 "$E2E_GUEST_DIR/pen_probe.py" "$@"; }

# pen_wait_ready TIMEOUT : waits until the driver has started tab1's session
# (its start packet) and created the virtual pen; sets PEN_NODE.
pen_wait_ready() {
    local wait_s="$1" reply
    reply="$(emuctl wait-out tab1 "$wait_s" 02b0)" || {
        guest_log "no start packet on tab1: ${reply:-no reply}"
        return 1
    }
    PEN_NODE="$(pen_probe node "NORVA Pen" "$wait_s")" || {
        guest_log "no \"NORVA Pen\" input device"
        return 1
    }
    guest_log "tab1 session started; NORVA Pen is $PEN_NODE"
}
