# shellcheck shell=bash
# Host-side helpers of the e2e tests (sourced by bash).
#
#   . lib.sh
#   e2e_init SCRIBORA_BINARY BUILD_DIR
#   e2e_run NAME [run-e2e.sh options] -- COMMAND...   # sets E2E_RUN_DIR, E2E_RC, E2E_WALL
#   e2e_check [check_events.py options]     # checks E2E_RUN_DIR/events.jsonl
#
# Each run dir (under BUILD_DIR/e2e-runs) gets a copy of what the guest runs,
# because the guest sees it at /e2e/run wherever it is on the host; a command
# for the guest names these copies:
#   $E2E_GUEST        the guest scripts (this folder's guest/)
#   $E2E_GUEST_BIN    the scribora binary, with resource.rcc beside it
#   $E2E_GUEST_BUILD  the folder of that binary and of the generated conf/
# Host-side paths stay in SCRIBORA_BIN, E2E_BUILD, E2E_HARNESS (the harness,
# harness/ here; its device descriptions are in $E2E_HARNESS/devices).
#
# Environment: E2E_CACHE (kernel + initramfs cache, default
# /var/cache/scribora-e2e; must not be inside the repository), E2E_TIMEOUT
# (300 s per boot), E2E_VERBOSE=1 to stream the guest console.

E2E_TESTS="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
E2E_HARNESS="$E2E_TESTS/harness"
# shellcheck disable=SC2034  # used by the test scripts that source this file
{
    E2E_GUEST=/e2e/run/guest
    E2E_GUEST_BUILD=/e2e/run/build
}
E2E_SKIP=77

e2e_skip() {
    echo "SKIP: $*"
    exit "$E2E_SKIP"
}

e2e_init() {
    SCRIBORA_BIN="$(realpath "$1")"
    E2E_BUILD="$(realpath "$2")"
    # shellcheck disable=SC2034  # used by the test scripts
    E2E_GUEST_BIN="$E2E_GUEST_BUILD/$(basename "$SCRIBORA_BIN")"
    export E2E_CACHE="${E2E_CACHE:-/var/cache/scribora-e2e}"
    case "$(realpath -m "$E2E_CACHE")/" in
        "$(realpath -m "$E2E_TESTS/../..")"/*)
            echo "FAIL: E2E_CACHE=$E2E_CACHE is inside the repository"
            exit 1 ;;
    esac
    if [ ! -x "$SCRIBORA_BIN" ]; then
        echo "FAIL: scribora binary $SCRIBORA_BIN not found"
        exit 1
    fi
}

# e2e_stage DIR : copies the guest scripts to DIR/guest and the binary,
# resource.rcc and conf/ to DIR/build (a build tree under /tmp or /var/tmp
# would be hidden by the guest's own tmpfs there).
e2e_stage() {
    local dir="$1"
    mkdir -p "$dir/build" &&
        cp -r "$E2E_TESTS/guest" "$dir/guest" &&
        cp "$SCRIBORA_BIN" "$(dirname "$SCRIBORA_BIN")/resource.rcc" "$dir/build/" &&
        cp -r "$E2E_BUILD/conf" "$dir/build/conf"
}

# Does qemu start at all on this machine? Only asked after a run in which the
# guest never ran; a qemu that starts but fails later is a test failure.
e2e_qemu_starts() {
    local log="$1"
    if ! command -v qemu-system-x86_64 >/dev/null 2>&1; then
        echo "qemu-system-x86_64 is not installed (the harness could not install it)" > "$log"
        return 1
    fi
    # -S: created but halted, so it keeps running until timeout stops it (124)
    timeout 5 qemu-system-x86_64 -M pc -accel "${E2E_ACCEL:-tcg,thread=multi}" -m 64 \
        -nodefaults -no-user-config -display none -S -serial none -monitor none > "$log" 2>&1
    [ $? = 124 ]
}

# e2e_run NAME [run-e2e.sh options] -- COMMAND...
e2e_run() {
    local name="$1" t0 t1 quiet=--quiet
    shift
    [ "${E2E_VERBOSE:-0}" = 1 ] && quiet=""
    mkdir -p "$E2E_BUILD/e2e-runs"
    E2E_RUN_DIR="$E2E_BUILD/e2e-runs/$name-$(date +%Y%m%d-%H%M%S)-$$"
    if ! e2e_stage "$E2E_RUN_DIR"; then
        echo "FAIL: could not copy what the guest runs into $E2E_RUN_DIR"
        exit 1
    fi
    echo "e2e: $name: booting the guest (run dir $E2E_RUN_DIR)"
    t0=$(date +%s.%N)
    # the guest runs COMMAND in the run dir (/e2e/run there)
    ( cd "$E2E_RUN_DIR" && "$E2E_HARNESS/run-e2e.sh" $quiet --timeout "${E2E_TIMEOUT:-300}" \
        --run-dir "$E2E_RUN_DIR" "$@" )
    E2E_RC=$?
    t1=$(date +%s.%N)
    E2E_WALL=$(awk "BEGIN{printf \"%.1f\", $t1 - $t0}")
    echo "e2e: $name: harness exit status $E2E_RC, wall ${E2E_WALL}s"
    if [ "$E2E_RC" = 125 ]; then
        if ! e2e_qemu_starts "$E2E_BUILD/e2e-runs/qemu-probe.log"; then
            sed 's/^/  qemu: /' "$E2E_BUILD/e2e-runs/qemu-probe.log"
            e2e_skip "qemu cannot start a guest on this machine"
        fi
        echo "FAIL: the guest did not run the command although qemu starts here; console:"
        tail -n 30 "$E2E_RUN_DIR/console.log" 2>/dev/null | sed 's/^/  console: /'
        tail -n 10 "$E2E_RUN_DIR/qemu.log" 2>/dev/null | sed 's/^/  qemu.log: /'
    elif [ "$E2E_RC" = 124 ]; then
        echo "FAIL: the run hit the ${E2E_TIMEOUT:-300}s limit"
    fi
    if [ -s "$E2E_RUN_DIR/guest-output.log" ]; then
        sed 's/^/  guest-output: /' "$E2E_RUN_DIR/guest-output.log"
    fi
    return 0
}

# e2e_check [check_events.py options] : checks of the last run's events
e2e_check() {
    /usr/bin/python3 "$E2E_TESTS/check_events.py" "$E2E_RUN_DIR" "$@"
}

# Prints the scribora output of the last run (for the test log).
e2e_show_app_log() {
    local f="$E2E_RUN_DIR/out/scribora.log"
    [ -f "$f" ] || return 0
    echo "e2e: scribora output ($(wc -l < "$f") lines, last 40):"
    tail -n 40 "$f" | sed 's/^/  scribora: /'
}

# e2e_guest_verdict WHAT : PASS/FAIL line for the guest command of the last
# run; E2E_FAILED becomes 1 when it failed.
e2e_guest_verdict() {
    E2E_FAILED=0
    if [ "$E2E_RC" = 0 ]; then
        echo "PASS: guest scenario ($1)"
    else
        echo "FAIL: guest scenario exit status $E2E_RC"
        E2E_FAILED=1
    fi
}

# e2e_check_run [check_events.py options] : e2e_check; a failure, or a run
# without events.jsonl, sets E2E_FAILED.
e2e_check_run() {
    if [ ! -f "$E2E_RUN_DIR/events.jsonl" ]; then
        echo "FAIL: no events.jsonl in $E2E_RUN_DIR"
        E2E_FAILED=1
        return 1
    fi
    e2e_check "$@" || E2E_FAILED=1
}

# e2e_finish NAME : the verdict line of the test; exits with E2E_FAILED.
e2e_finish() {
    if [ "$E2E_FAILED" = 0 ]; then
        echo "$1: PASS (wall ${E2E_WALL}s, logs in $E2E_RUN_DIR)"
    else
        echo "$1: FAIL (logs in $E2E_RUN_DIR)"
    fi
    exit "$E2E_FAILED"
}
