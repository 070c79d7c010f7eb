#!/bin/bash
# shellcheck disable=SC2317  # the test_* functions run by name, from $1
# The e2e tests: each boots the guest once (harness/run-e2e.sh) with emulated
# tablets, runs a script of guest/ there, then checks the run on the host.
#   e2e.sh TEST SCRIBORA_BINARY BUILD_DIR
# Environment: E2E_CACHE (kernel + initramfs cache, default
# /var/cache/scribora-e2e, not inside the repository), E2E_TIMEOUT (300 s per
# boot), E2E_VERBOSE=1 to stream the guest console.
set -u
[ $# = 3 ] || { echo "usage: $0 TEST SCRIBORA_BINARY BUILD_DIR"; exit 2; }
E2E_TESTS="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
HARNESS="$E2E_TESTS/harness"
TABLET="$HARNESS/devices/tablet-0b40.json"
START_PACKET="02 b0 04 00 00 00 00 00 00 00"
SCRIBORA_BIN="$(realpath "$2")"
BUILD="$(realpath "$3")"
export E2E_CACHE="${E2E_CACHE:-/var/cache/scribora-e2e}"
FAILED=0

fail() { echo "FAIL: $*"; FAILED=1; }

case "$(realpath -m "$E2E_CACHE")/" in
    "$(realpath -m "$E2E_TESTS/../..")"/*) echo "FAIL: E2E_CACHE=$E2E_CACHE is inside the repository"; exit 1 ;;
esac
[ -x "$SCRIBORA_BIN" ] || { echo "FAIL: scribora binary $SCRIBORA_BIN not found"; exit 1; }

# Does qemu start at all on this machine? Only asked after a run in which the
# guest never ran; a qemu that starts but fails later is a test failure.
qemu_starts() {
    command -v qemu-system-x86_64 >/dev/null || { echo "qemu-system-x86_64 is not installed"; return 1; }
    # -S: created but halted, so it keeps running until timeout stops it (124)
    timeout 5 qemu-system-x86_64 -M pc -accel "${E2E_ACCEL:-tcg,thread=multi}" -m 64 \
        -nodefaults -no-user-config -display none -S -serial none -monitor none
    [ $? = 124 ]
}

# boot NAME SCRIPT [ARGS...] -- [run-e2e.sh options] : runs guest/SCRIPT in
# a guest. The guest sees the host's files at the same paths except under
# /tmp and /var/tmp, so the run dir (/e2e/run in the guest) gets copies of
# guest/ and of the binary, resource.rcc and conf/; the script gets the paths
# of those copies (binary, build folder) after ARGS. Sets RUN and RC.
boot() {
    local name="$1" script="$2" args=() t0 quiet=(--quiet)
    shift 2
    while [ "$1" != -- ]; do args+=("$1"); shift; done
    shift
    [ "${E2E_VERBOSE:-0}" = 1 ] && quiet=()
    RUN="$BUILD/e2e-runs/$name-$(date +%Y%m%d-%H%M%S)-$$"
    if ! { mkdir -p "$RUN/build" && cp -r "$E2E_TESTS/guest" "$RUN/guest" &&
        cp "$SCRIBORA_BIN" "$(dirname "$SCRIBORA_BIN")/resource.rcc" "$RUN/build/" &&
        cp -r "$BUILD/conf" "$RUN/build/conf"; }; then
        echo "FAIL: could not stage $RUN"
        exit 1
    fi
    echo "e2e: $name: booting the guest (run dir $RUN)"
    t0=$(date +%s)
    "$HARNESS/run-e2e.sh" "${quiet[@]+"${quiet[@]}"}" --timeout "${E2E_TIMEOUT:-300}" --run-dir "$RUN" "$@" \
        -- bash "/e2e/run/guest/$script" "${args[@]+"${args[@]}"}" \
        "/e2e/run/build/$(basename "$SCRIBORA_BIN")" /e2e/run/build
    RC=$?
    echo "e2e: $name: harness exit status $RC, wall $(($(date +%s) - t0))s"
    if [ "$RC" = 125 ] && ! qemu_starts > "$RUN/qemu-probe.log" 2>&1; then
        sed 's/^/  qemu: /' "$RUN/qemu-probe.log"
        echo "SKIP: qemu cannot start a guest on this machine"
        exit 77
    fi
    [ "$RC" = 125 ] && tail -n 30 "$RUN/console.log" 2>/dev/null | sed 's/^/  console: /'
    [ "$RC" = 124 ] && echo "FAIL: the run hit the ${E2E_TIMEOUT:-300}s limit"
    sed 's/^/  guest-output: /' "$RUN/guest-output.log" 2>/dev/null
    [ -f "$RUN/out/scribora.log" ] && tail -n 40 "$RUN/out/scribora.log" | sed 's/^/  scribora: /'
    [ "$RC" = 0 ] || fail "guest scenario exit status $RC"
}

# events [check_events.py options] : checks of the last run's events.jsonl
events() { /usr/bin/python3 "$E2E_TESTS/check_events.py" "$RUN" "$@" || FAILED=1; }

# hotplug_lines STATE N : the driver logged N hot-plug events of STATE (1
# arrival, 2 removal) of the 0x0B40 tablet; each at debug and at info level.
hotplug_lines() {
    local count
    count=$(grep -c "ReceiveUsbMsg Vid: 23100 Pid: 2880 state $1" "$RUN/out/scribora.log" 2>/dev/null)
    if [ "${count:-0}" -ge $(($2 * 2)) ]; then
        echo "PASS: the driver took $2 hot-plug events of state $1"
    else
        fail "the driver logged ${count:-0} hot-plug lines of state $1, want $(($2 * 2))"
    fi
}

# The catalogued 0x0B40 tablet (tab1) and a product the catalogue does not
# list (tab9): the driver reads string 100 of tab1, starts its session (mode 4)
# and leaves tab9 alone; a stroke; then SIGTERM: the stop command, status 0
# within a second, the profile saved, the interface back with usbhid.
test_session() {
    local unlisted=0x0BFE catalogue="$BUILD/generated/zelkdevlist.inc"
    # tab9 proves something only while the catalogue lists 0x0B40 and not it
    grep -qi "0x5A3C, 0x0B40, 2," "$catalogue" || { echo "FAIL: $catalogue does not list 5a3c:0b40 interface 2"; exit 1; }
    ! grep -qi "0x5A3C, $unlisted," "$catalogue" || { echo "FAIL: $catalogue lists $unlisted"; exit 1; }
    boot session session.sh -- --device "$TABLET" --device "$TABLET:name=tab9,pid=$unlisted,serial=E2E0000009"
    events --window scribora-start scribora-stop --string-read tab1 100 --out tab1 "$START_PACKET" \
        --enumerated tab9 --no-string-read tab9 100 --no-out tab9 2 --not-opened tab9 2 --app-clean scribora
    events --window scribora-stop scribora-ended --out tab1 "02 b0 02 00 00 00 00 00 00 00" \
        --stopped-within scribora 1
}

# tab1 unplugged at start: plugged in after the driver runs, it draws;
# unplugged, plugged in again, unplugged while the pen moves: "NORVA Pen" gets
# one frame that lifts the pen, and the driver runs on.
test_hotplug() {
    boot hotplug hotplug.sh -- --device "$TABLET:connected=0"
    hotplug_lines 1 2
    hotplug_lines 2 2
    events --window scribora-start scribora-stop --app-clean scribora --stopped-within scribora 5
}

# Two 0x0B40 tablets and a work area saved for their model: both draw in it;
# when tab1 goes, tab2 is closed and reopened, and draws; tab1 plugged in
# again draws with the saved work area.
test_like_tablets() {
    boot like-tablets tablets.sh like -- --device "$TABLET" --device "$TABLET:name=tab2,serial=E2E0000002"
    events --window scribora-start scribora-stop --app-clean scribora --stopped-within scribora 5
}

# Six 0x0B40 tablets: five take the five slots and draw, the sixth gets
# nothing; unplugging one frees a slot for the sixth; plugged in again, the
# unplugged one finds the slots full and is left alone.
test_six_tablets() {
    local devices=() n sixth replugged opened=()
    for n in 1 2 3 4 5 6; do devices+=(--device "$TABLET:name=tab$n,serial=E2E000000$n"); done
    boot six-tablets tablets.sh slots -- "${devices[@]}"
    sixth="$(sed -n 's/^sixth=\(tab[1-6]\)$/\1/p' "$RUN/out/slots.names" 2>/dev/null)"
    replugged="$(sed -n 's/^replugged=\(tab[1-6]\)$/\1/p' "$RUN/out/slots.names" 2>/dev/null)"
    if [ -z "$sixth" ] || [ -z "$replugged" ]; then
        fail "the guest did not say which tablet was left alone"
    else
        for n in 1 2 3 4 5 6; do [ "tab$n" = "$sixth" ] || opened+=(--out "tab$n" "$START_PACKET"); done
        events --window scribora-start slots-full "${opened[@]}" --enumerated "$sixth" \
            --no-string-read "$sixth" 100 --no-out "$sixth" 2 --not-opened "$sixth" 2
        events --window replug replug-settled --no-string-read "$replugged" 100 \
            --no-out "$replugged" 2 --not-opened "$replugged" 2
    fi
    events --window scribora-start scribora-stop --app-clean scribora --stopped-within scribora 5
}

"test_$1"
echo "e2e_$1: $([ "$FAILED" = 0 ] && echo PASS || echo FAIL) (logs in $RUN)"
exit "$FAILED"
