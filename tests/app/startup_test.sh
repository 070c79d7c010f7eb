#!/usr/bin/env bash
# The real program on a real X server: "/mini" starts hidden and "/MINI" does not; a second
# start ends at once with status 0 and brings the running window up; SIGTERM ends it with
# status 0, and a start made while it is still ending waits for it and comes up as the first.
set -u
scribora=$1
work=$(mktemp -d)
pids=()
failures=0
trap 'kill "${pids[@]}" 2>/dev/null; wait 2>/dev/null; rm -rf "$work"' EXIT

check() {
    [ "$2" = "$3" ] && echo "PASS: $1" && return
    echo "FAIL: $1 (expected '$3', got '$2')"
    failures=$((failures + 1))
}

# Polls `$1` up to 15 s until it prints `$2`, then prints what it printed last.
poll() {
    for _ in $(seq 150); do [ "$($1)" = "$2" ] && break; sleep 0.1; done
    $1
}

# -noreset: the server would otherwise reset when its last client leaves and refuse the
# next start for a moment. -displayfd picks a free display.
Xvfb -displayfd 3 -noreset -screen 0 1280x800x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=":$(head -n1 "$work/display")" XDG_RUNTIME_DIR=$work
unset QT_QPA_PLATFORM
for _ in $(seq 100); do xwininfo -root >/dev/null 2>&1 && break; sleep 0.1; done

# A hidden window may not exist on the server at all.
map_state() {
    local state
    state=$(xwininfo -name Scribora 2>/dev/null | awk '/Map State:/ {print $3}')
    echo "${state:-IsUnMapped}"
}
sockets() { ls "$work"/*.sock >/dev/null 2>&1 && echo yes; }
alive() { kill -0 "$1" 2>/dev/null && echo alive; }

# The program must be a child of this shell, so wait sees it end.
"$scribora" /mini >>"$work/scribora.log" 2>&1 &
first=$!
pids+=("$first")
poll sockets yes >/dev/null
sleep 1
check "/mini starts hidden" "$(map_state)" "IsUnMapped"

timeout 20 "$scribora" >>"$work/second.log" 2>&1
check "a second start ends with status 0" "$?" "0"
check "the second start brings the first window up" "$(poll map_state IsViewable)" "IsViewable"
check "the first instance keeps running" "$(alive "$first")" "alive"
kill -TERM "$first"
"$scribora" /MINI >>"$work/scribora.log" 2>&1 &
next=$!
pids+=("$next")
wait "$first"
check "SIGTERM ends the program with status 0" "$?" "0"
check "the switch is case-sensitive" "$(poll map_state IsViewable)" "IsViewable"
check "a start while the first ends becomes the first" "$(alive "$next")" "alive"

if [ "$failures" -ne 0 ]; then
    echo "--- scribora output"
    cat "$work/scribora.log" "$work/second.log"
    exit 1
fi
