#!/bin/bash
# shellcheck disable=SC2317  # the test_* functions run by name, from $1
# e2e.sh TEST SCRIBORA_BINARY BUILD_DIR: one boot of the guest (see README.md).
set -u
[ $# = 3 ] || { echo "usage: $0 TEST SCRIBORA_BINARY BUILD_DIR"; exit 2; }
E2E_TESTS="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
HARNESS="$E2E_TESTS/harness"
TABLET="$HARNESS/devices/tablet-0b40.json"
START_PACKET="02 b0 04 00 00 00 00 00 00 00"
SCRIBORA_BIN="$(realpath "$2")" BUILD="$(realpath "$3")"
export E2E_CACHE="${E2E_CACHE:-/var/cache/scribora-e2e}"
FAILED=0
STAGE_EXTRA=() # more files for the run dir's build/

fail() { echo "FAIL: $*"; FAILED=1; }

case "$(realpath -m "$E2E_CACHE")/" in
    "$(realpath -m "$E2E_TESTS/../..")"/*) echo "FAIL: E2E_CACHE=$E2E_CACHE is inside the repository"; exit 1 ;;
esac
[ -x "$SCRIBORA_BIN" ] || { echo "FAIL: scribora binary $SCRIBORA_BIN not found"; exit 1; }

# Asked only when the guest never ran: a qemu that starts but fails later is a failure.
qemu_starts() {
    command -v qemu-system-x86_64 >/dev/null || { echo "qemu-system-x86_64 is not installed"; return 1; }
    # -S: created but halted, so it keeps running until timeout stops it (124)
    timeout 5 qemu-system-x86_64 -M pc -accel "${E2E_ACCEL:-tcg,thread=multi}" -m 64 \
        -nodefaults -no-user-config -display none -S -serial none -monitor none
    [ $? = 124 ]
}

# boot NAME SCRIPT [ARGS...] -- [run-e2e.sh options]: runs guest/SCRIPT ARGS BINARY BUILD.
# The guest does not see the host's /tmp, so the run dir gets copies of guest/,
# the binary, resource.rcc and conf/, and the script their paths. Sets RUN.
boot() {
    local name="$1" script="$2" args=() t0 rc quiet=(--quiet)
    shift 2
    while [ "$1" != -- ]; do args+=("$1"); shift; done
    shift
    [ "${E2E_VERBOSE:-0}" = 1 ] && quiet=()
    RUN="$BUILD/e2e-runs/$name-$(date +%Y%m%d-%H%M%S)-$$"
    { mkdir -p "$RUN/build" && cp -r "$E2E_TESTS/guest" "$RUN/guest" &&
        cp "$SCRIBORA_BIN" "$(dirname "$SCRIBORA_BIN")/resource.rcc" "$RUN/build/" &&
        cp -r "$BUILD/conf" "$RUN/build/conf" &&
        { [ ${#STAGE_EXTRA[@]} = 0 ] || cp "${STAGE_EXTRA[@]}" "$RUN/build/"; }; } || { echo "FAIL: could not stage $RUN"; exit 1; }
    echo "e2e: $name: booting the guest (run dir $RUN)"
    t0=$(date +%s)
    "$HARNESS/run-e2e.sh" "${quiet[@]+"${quiet[@]}"}" --timeout "${E2E_TIMEOUT:-300}" --run-dir "$RUN" "$@" \
        -- bash "/e2e/run/guest/$script" "${args[@]+"${args[@]}"}" \
        "/e2e/run/build/$(basename "$SCRIBORA_BIN")" /e2e/run/build
    rc=$?
    echo "e2e: $name: harness exit status $rc, wall $(($(date +%s) - t0))s"
    if [ "$rc" = 125 ] && ! qemu_starts > "$RUN/qemu-probe.log" 2>&1; then
        sed 's/^/  qemu: /' "$RUN/qemu-probe.log"
        echo "SKIP: qemu cannot start a guest on this machine"
        exit 77
    fi
    [ "$rc" = 125 ] && tail -n 30 "$RUN/console.log" 2>/dev/null | sed 's/^/  console: /'
    [ "$rc" = 124 ] && echo "FAIL: the run hit the ${E2E_TIMEOUT:-300}s limit"
    sed 's/^/  guest-output: /' "$RUN/guest-output.log" 2>/dev/null
    [ -f "$RUN/out/scribora.log" ] && tail -n 40 "$RUN/out/scribora.log" | sed 's/^/  scribora: /'
    [ "$rc" = 0 ] || fail "guest scenario exit status $rc"
}

events() { /usr/bin/python3 "$E2E_TESTS/check_events.py" "$RUN" "$@" || FAILED=1; }

test_session() {
    local unlisted=0x0BFE catalogue="$BUILD/generated/zelkdevlist.inc"
    # tab9 proves something only while the catalogue lists 0x0B40 and not it
    grep -qi "0x5A3C, 0x0B40, 2," "$catalogue" || { echo "FAIL: $catalogue does not list 5a3c:0b40 interface 2"; exit 1; }
    ! grep -qi "0x5A3C, $unlisted," "$catalogue" || { echo "FAIL: $catalogue lists $unlisted"; exit 1; }
    boot session session.sh -- --device "$TABLET" --device "$TABLET:name=tab9,pid=$unlisted,serial=E2E0000009"
    events --window scribora-start scribora-stop --string-read tab1 100 --out tab1 "$START_PACKET" \
        --enumerated tab9 --left-alone tab9 --app-clean scribora 1
    events --window scribora-stop scribora-ended --out tab1 "02 b0 02 00 00 00 00 00 00 00"
}

test_hotplug() {
    boot hotplug hotplug.sh -- --device "$TABLET:connected=0"
    # two arrivals and two removals of 0x0B40, each logged twice
    events --app-clean scribora 5 --log-lines scribora 4 "ReceiveUsbMsg Vid: 23100 Pid: 2880 state 1" \
        --log-lines scribora 4 "ReceiveUsbMsg Vid: 23100 Pid: 2880 state 2"
}

test_like_tablets() {
    boot like-tablets tablets.sh like -- --device "$TABLET" --device "$TABLET:name=tab2,serial=E2E0000002"
    events --app-clean scribora 5
}

test_six_tablets() {
    local devices=() n sixth="" replugged="" opened=()
    for n in 1 2 3 4 5 6; do devices+=(--device "$TABLET:name=tab$n,serial=E2E000000$n"); done
    boot six-tablets tablets.sh slots -- "${devices[@]}"
    read -r sixth replugged < "$RUN/out/slots.names"
    if [[ ! "$sixth $replugged" =~ ^tab[1-6]\ tab[1-6]$ ]]; then
        fail "the guest did not say which tablet was left alone"
    else
        for n in 1 2 3 4 5 6; do [ "tab$n" = "$sixth" ] || opened+=(--out "tab$n" "$START_PACKET"); done
        events --window scribora-start slots-full "${opened[@]}" --enumerated "$sixth" --left-alone "$sixth"
        events --window replug replug-settled --left-alone "$replugged"
    fi
    events --app-clean scribora 5
}

# OK in the window saves the switch of the settings pop-up to the tablet's section
test_window() {
    boot window window.sh -- --device "$TABLET"
    /usr/bin/python3 -c 'import sys, xml.etree.ElementTree as ET
flags = [ET.parse(f).findtext("QTB0610/Common/DisablePressure") for f in sys.argv[1:]]
print("%s: DisablePressure of QTB0610 went from %s to %s" % ("PASS" if flags == ["0", "1"] else "FAIL", *flags))
area = [ET.parse(sys.argv[2]).findtext("QTB0610/Common/ScreenMapping/" + k) for k in ("SX", "SY", "SW", "SH")]
print("%s: the screen area saved is %s" % ("PASS" if area == ["960", "0", "960", "1080"] else "FAIL", area))
sys.exit(flags != ["0", "1"] or area != ["960", "0", "960", "1080"])' "$BUILD/conf/config.xml" "$RUN/out/config.xml" || FAILED=1
    events --app-clean scribora 5
}

test_keys() {
    boot keys keys.sh -- --device "$TABLET"
    /usr/bin/python3 -c 'import sys, xml.etree.ElementTree as ET
key = ET.parse(sys.argv[1]).find("QTB0610/CommonAPP/K/K1")
ok = key is not None and key.get("id") == "1" and (key.text or "").startswith("1|")
print("%s: key 1 saved as a custom function: %s" % ("PASS" if ok else "FAIL", None if key is None else (key.attrib, key.text)))
sys.exit(not ok)' "$RUN/out/config.xml" || FAILED=1
    events --app-clean scribora 5
}

# The harder curve gives less at the same half pressure; the curve and the wheel's custom
# function are saved with OK.
test_pen() {
    boot pen pen.sh -- --device "$TABLET:pid=0x0B44"
    /usr/bin/python3 -c 'import sys, xml.etree.ElementTree as ET
before, after = (open(sys.argv[1] + "/" + n + ".events.value").read().strip() for n in ("before", "after"))
ok = before.isdigit() and after.isdigit() and int(after) < int(before)
print("%s: half pressure gives ABS_PRESSURE %s before the curve change and %s after" % ("PASS" if ok else "FAIL", before, after))
root = ET.parse(sys.argv[1] + "/config.xml").find("QTB0860/CommonAPP")
p1x = float(root.findtext("Pen1/P1X") or 0)
item = root.find("R/W1")
saved = item is not None and item.get("id") == "2" and (item.text or "").startswith("4|")
print("%s: P1X saved as %s" % ("PASS" if p1x > 0.8 else "FAIL", p1x))
print("%s: wheel function 1 saved as custom: %s" % ("PASS" if saved else "FAIL", None if item is None else (item.attrib, item.text)))
sys.exit(not (ok and p1x > 0.8 and saved))' "$RUN/out" || FAILED=1
    events --app-clean scribora 5
}

# The remote's memory: what the driver saves there comes back, with key 1 made custom on the
# device, into the profile; OK saves it.
test_remote() {
    boot remote remote.sh -- --device "$TABLET:pid=0x03E2"
    /usr/bin/python3 -c 'import sys, xml.etree.ElementTree as ET
key = ET.parse(sys.argv[1]).find("QRM07/CommonAPP/K/K1")
ok = key is not None and key.get("id") == "1" and (key.text or "") == "1|Undo|Ctrl+Z|29:37+44:52"
print("%s: key 1 read back from the remote and saved: %s" % ("PASS" if ok else "FAIL", None if key is None else (key.attrib, key.text)))
sys.exit(not ok)' "$RUN/out/config.xml" || FAILED=1
    events --app-clean scribora 5
}

test_churn() {
    boot churn churn.sh -- --device "$TABLET"
    events --app-clean scribora 5
}

# The emulator's own record of what the driver sent the display: every 02 b5 frame as its
# command, sRGB (111, 1, 2) and the brightness slider at its end (117, 1, 100) among them.
test_display() {
    boot display display.sh -- --device "$HARNESS/devices/display-0a66.json"
    /usr/bin/python3 -c 'import json, sys
sys.path.insert(0, sys.argv[2])
from probe import display_command
sent = [display_command(bytes.fromhex(e["data"])) for e in map(json.loads, open(sys.argv[1]))
        if e["ev"] == "out_report" and e["dev"] == "tab1" and e["data"].startswith("02b5")]
ok = {(111, 1, 2), (117, 1, 100)} <= set(sent)
print("%s: sRGB (111,1,2) and brightness 100 (117,1,100) among the display commands %s" % ("PASS" if ok else "FAIL", sent))
sys.exit(not ok)' "$RUN/events.jsonl" "$E2E_TESTS/guest" || FAILED=1
    events --app-clean scribora 5
}

# The package as a user gets it: installed with dpkg, the program started by its autostart
# entry as a member of plugdev, who draws and saves; then upgrade, removal and purge.
test_package() {
    local deb
    deb="$(cd "$BUILD" && cpack -G DEB -B "$BUILD/e2e-runs/package" | sed -n 's/^CPack: - package: \(.*\) generated\.$/\1/p')"
    [ -f "$deb" ] || { echo "FAIL: cpack made no package"; exit 1; }
    STAGE_EXTRA=("$deb")
    boot package package.sh "$(basename "$deb")" -- --device "$TABLET"
    events --app-clean scribora 5
}

# tab2 is another model, so that tab1's going does not close and reopen it.
test_stall() {
    boot stall stall.sh -- --device "$TABLET" --device "$TABLET:name=tab2,pid=0x0B44,serial=E2E0000002"
    events --app-clean scribora 5
}

"test_$1"
echo "e2e_$1: $([ "$FAILED" = 0 ] && echo PASS || echo FAIL) (logs in $RUN)"
exit "$FAILED"
