#!/usr/bin/env bash
# The real program on a real X server: "/mini" starts hidden and "/MINI"
# does not; a second start ends at once with status 0 and brings the
# running window up; SIGTERM ends it with status 0, and a start made while it
# is still ending waits for it and comes up as the first instance.
set -u
scribora=$1
work=$(mktemp -d)
pids=()

cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    wait 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT

failures=0
check() {
    if [ "$2" = "$3" ]; then
        echo "PASS: $1"
    else
        echo "FAIL: $1 (expected '$3', got '$2')"
        failures=$((failures + 1))
    fi
}

# -noreset: the server would otherwise reset when its last client leaves and
# refuse the next start for a moment. -displayfd picks a free display.
Xvfb -displayfd 3 -noreset -screen 0 1280x800x24 -nolisten tcp \
    3>"$work/display" >"$work/xvfb.log" 2>&1 &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=":$(head -n1 "$work/display")"
export XDG_RUNTIME_DIR=$work
unset QT_QPA_PLATFORM
for _ in $(seq 100); do xwininfo -root >/dev/null 2>&1 && break; sleep 0.1; done

map_state() {
    xwininfo -name Scribora 2>/dev/null | awk '/Map State:/ {print $3}'
}

wait_for_state() {
    for _ in $(seq 150); do
        [ "$(map_state)" = "$1" ] && break
        sleep 0.1
    done
    map_state
}

# Sets started: the program must be a child of this shell, so wait sees it end.
start() {
    "$scribora" "$@" >>"$work/scribora.log" 2>&1 &
    started=$!
    pids+=("$started")
}

# A hidden window may not exist on the server at all.
hidden_state() {
    local state
    state=$(map_state)
    echo "${state:-IsUnMapped}"
}

start /mini
first=$started
for _ in $(seq 150); do
    ls "$work"/*.sock >/dev/null 2>&1 && break
    sleep 0.1
done
sleep 1
check "/mini starts hidden" "$(hidden_state)" "IsUnMapped"

timeout 20 "$scribora" >>"$work/second.log" 2>&1
check "a second start ends with status 0" "$?" "0"
check "the second start brings the first window up" "$(wait_for_state IsViewable)" "IsViewable"
check "the first instance keeps running" "$(kill -0 "$first" 2>/dev/null && echo alive)" "alive"
kill -TERM "$first"
start /MINI
next=$started
wait "$first"
check "SIGTERM ends the program with status 0" "$?" "0"
check "the switch is case-sensitive" "$(wait_for_state IsViewable)" "IsViewable"
check "a start while the first ends becomes the first" \
    "$(kill -0 "$next" 2>/dev/null && echo alive)" "alive"

if [ "$failures" -ne 0 ]; then
    echo "--- scribora output"; cat "$work/scribora.log" "$work/second.log"
    exit 1
fi
