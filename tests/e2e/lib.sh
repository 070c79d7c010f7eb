# Host-side helpers of the e2e tests (sourced by bash).
#
#   . lib.sh
#   e2e_init SCRIBORA_BINARY BUILD_DIR      # exits 77 when the harness folder is missing
#   e2e_run NAME [run-e2e.sh options] -- COMMAND...   # sets E2E_RUN_DIR, E2E_RC, E2E_WALL
#   e2e_check [check_events.py options]     # checks E2E_RUN_DIR/events.jsonl
#
# Environment: E2E_HARNESS (default: ../shared/e2e next to the source tree),
# E2E_CACHE (kernel + initramfs cache, default /var/cache/scribora-e2e; must not
# be inside the repository or the read-only harness folder), E2E_TIMEOUT (300 s
# per boot), E2E_VERBOSE=1 to stream the guest console.

E2E_TESTS="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck disable=SC2034  # used by the test scripts that source this file
E2E_GUEST="$E2E_TESTS/guest"
E2E_SKIP=77

e2e_skip() {
    echo "SKIP: $*"
    exit "$E2E_SKIP"
}

e2e_init() {
    SCRIBORA_BIN="$(realpath "$1")"
    E2E_BUILD="$(realpath "$2")"
    : "${E2E_HARNESS:=$E2E_TESTS/../../../shared/e2e}"
    if [ ! -d "$E2E_HARNESS" ]; then
        e2e_skip "e2e harness folder $E2E_HARNESS does not exist"
    fi
    E2E_HARNESS="$(realpath "$E2E_HARNESS")"
    if [ ! -x "$E2E_HARNESS/run-e2e.sh" ]; then
        echo "FAIL: $E2E_HARNESS exists but has no run-e2e.sh"
        exit 1
    fi
    export E2E_CACHE="${E2E_CACHE:-/var/cache/scribora-e2e}"
    case "$(realpath -m "$E2E_CACHE")/" in
        "$(realpath -m "$E2E_TESTS/../..")"/*|"$E2E_HARNESS"/*)
            echo "FAIL: E2E_CACHE=$E2E_CACHE is inside the repository or the harness folder"
            exit 1 ;;
    esac
    # The guest mounts fresh tmpfs on these, so a tree there is invisible to it.
    case "$E2E_BUILD/" in
        /tmp/*|/var/tmp/*)
            echo "FAIL: the build tree $E2E_BUILD is under /tmp or /var/tmp, which the guest does not see"
            exit 1 ;;
    esac
    if [ ! -x "$SCRIBORA_BIN" ]; then
        echo "FAIL: scribora binary $SCRIBORA_BIN not found"
        exit 1
    fi
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
    echo "e2e: $name: booting the guest (run dir $E2E_RUN_DIR)"
    t0=$(date +%s.%N)
    # the guest runs COMMAND in this working directory; the harness folder is
    # read-only, so keep the harness from writing next to it
    ( cd "$E2E_BUILD" && "$E2E_HARNESS/run-e2e.sh" $quiet --timeout "${E2E_TIMEOUT:-300}" \
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
