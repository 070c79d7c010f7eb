#!/usr/bin/env bash
# scribora-replay end to end: a small capture through the driver's report
# path, and the command-line failures.
set -u
replay=$1
profile=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failures=0
check() {
    if [ "$2" = "$3" ]; then
        echo "PASS: $1"
    else
        echo "FAIL: $1"
        diff <(echo "$3") <(echo "$2") | sed 's/^/    /'
        failures=$((failures + 1))
    fi
}

tablet=(--config "$profile" --model TESTPAD --pid 0B40 --type 1 --maxx 50800 --maxy 30480
    --pressure 4096 --screen 1920x1080+0+0 --screen 1280x1024+1920+0)

# Worked out by hand from the profile:
#   width, height = 50800*100/5080, 30480*100/5080 = 1000, 600 (1/100 inch)
#   work area TX,TY 100 -> left = top = 100*5080/100 = 5080
#             areaW = 500*50800/1000 = 25400, areaH = 300*30480/600 = 15240
#   x = 50800/25400 * (raw - 5080) = 2*(raw - 5080); y the same with 30480/15240
#   screen 2 (1920,0 1280x1024): fx = 1280*x/50800 + 1920, fy = 1024*y/30480
#   desktop 3200x1080: ABS_X = fx*52324/3200, ABS_Y = fy*29600/1080, truncated
# P1 raw (17780, 12700) = 74 45, 9C 31: x, y = 25400, 15240 -> fx, fy = 2560, 512
#   -> 2560*52324/3200 = 41859.2, 512*29600/1080 = 14032.6 -> 41859, 14032
# P2 raw (11430, 8890) = A6 2C, BA 22: x, y = 12700, 7620 -> fx, fy = 2240, 256
#   -> 2240*52324/3200 = 36626.8, 256*29600/1080 = 7016.3 -> 36626, 7016
# Pressure 1024 of 4096 (00 04): t = 0.25; curve a=P0=0, b=P1X=0, c=P2=1,
#   d = 1-P1Y = 0.5: e = a-2b+c = 1, q = t*c = 0.25, s = sqrt(q)/e = 0.5,
#   out = 2s(1-s)d + s^2 = 0.5; 4096 levels scale to 8191: 0.5*8191 = 4095.5 -> 4095
# Two pens, none seen yet: the first pen report announces pen 0 (message 89),
# before its frame. A report outside the work area (raw 1000, 1000) writes nothing.
# Tilt bytes are signed: F6 = -10, FB = -5.
cat >"$work/capture.txt" <<CAPTURE
# hover at P1, tilt (5, -10), 10 bytes
02 A0 74 45 9C 31 00 00 05 F6
# tip down at P2, pressure 1024, tilt (-5, 10), as the device sends it: 64 bytes
02 A1 A6 2C BA 22 00 04 FB 0A $(printf '00 %.0s' {1..54})
02 A0 G1
$(printf '00 %.0s' {1..65})

02 A0 E8 03 E8 03 00 00
# leaves at P2
02 C0 A6 2C BA 22 00 00 00 00
# eraser end hovers at P1, 12 bytes
02 A8 74 45 9C 31 00 00 00 00 00 00
CAPTURE

frame() { # device tool in-range x y pressure tiltx tilty touch
    printf '%s EV_KEY %s %s\n' "$1" "$2" "$3"
    printf '%s EV_ABS ABS_X %s\n%s EV_ABS ABS_Y %s\n' "$1" "$4" "$1" "$5"
    printf '%s EV_ABS ABS_PRESSURE %s\n' "$1" "$6"
    printf '%s EV_ABS ABS_TILT_X %s\n%s EV_ABS ABS_TILT_Y %s\n' "$1" "$7" "$1" "$8"
    printf '%s EV_KEY BTN_TOUCH %s\n%s EV_SYN SYN_REPORT 0\n' "$1" "$9" "$1"
}
expected=$(
    echo "msg 0 89 0"
    frame pen BTN_TOOL_PEN 1 41859 14032 0 5 -10 0
    frame pen BTN_TOOL_PEN 1 36626 7016 4095 -5 10 1
    frame pen BTN_TOOL_PEN 0 36626 7016 0 0 0 0
    frame eraser BTN_TOOL_RUBBER 1 41859 14032 0 0 0 0
)

"$replay" "${tablet[@]}" "$work/capture.txt" >"$work/out" 2>"$work/err"
check "capture: status 0" "$?" 0
check "capture: events and messages" "$(cat "$work/out")" "$expected"
check "capture: bad lines named on stderr" "$(grep -o 'line [0-9]*' "$work/err")" \
    "$(printf 'line 5\nline 6')"
check "capture: nothing else on stderr" "$(wc -l <"$work/err")" 2

"$replay" "${tablet[@]}" <"$work/capture.txt" >"$work/stdin-out" 2>/dev/null
check "capture from standard input" "$(cat "$work/stdin-out")" "$expected"

# Product 0x07C9 delivers its first report after the pen came back twice.
cat >"$work/reentry.txt" <<CAPTURE
02 A0 74 45 9C 31 00 00 00 00
02 C0 74 45 9C 31 00 00 00 00
02 A0 74 45 9C 31 00 00 00 00
02 A0 74 45 9C 31 00 00 00 00
CAPTURE
hover_p1() { frame pen BTN_TOOL_PEN 1 41859 14032 0 0 0 0; }
"$replay" "${tablet[@]}" --pid 07C9 "$work/reentry.txt" >"$work/out" 2>/dev/null
check "0x07C9: the return of the pen is written twice" "$(cat "$work/out")" "$(
    echo "msg 0 89 0"
    hover_p1
    frame pen BTN_TOOL_PEN 0 41859 14032 0 0 0 0
    hover_p1
    hover_p1
    hover_p1
)"
"$replay" "${tablet[@]}" "$work/reentry.txt" >"$work/out" 2>/dev/null
check "0x0B40: the return of the pen is written once" "$(grep -c "BTN_TOOL_PEN 1" "$work/out")" 3

# The reader thread passes on report ids 2 and 3 only: pens with ids 1, 4 and 6
# come to nothing, the one with id 3 is written.
cat >"$work/ids.txt" <<CAPTURE
01 A0 74 45 9C 31 00 00 00 00
04 A0 74 45 9C 31 00 00 00 00
06 A0 74 45 9C 31 00 00 00 00
03 A0 74 45 9C 31 00 00 00 00
CAPTURE
"$replay" "${tablet[@]}" "$work/ids.txt" >"$work/out" 2>/dev/null
check "report ids 1, 4 and 6 are dropped" "$(cat "$work/out")" "$(
    echo "msg 0 89 0"
    hover_p1
)"

# Pen button 1 runs "0|ctrl click|4+6": Ctrl goes down on the mouse device, the
# left button on the pen device, both after the pen frame, in the order written.
"$replay" "${tablet[@]}" <<<'02 A2 74 45 9C 31 00 00 00 00' >"$work/out" 2>/dev/null
check "pen frame, modifier and button in the order written" "$(cat "$work/out")" "$(
    echo "msg 0 89 0"
    hover_p1
    printf 'mouse EV_KEY KEY_LEFTCTRL 1\nmouse EV_SYN SYN_REPORT 0\n'
    printf 'pen EV_KEY BTN_TOOL_PEN 1\npen EV_KEY BTN_LEFT 1\npen EV_SYN SYN_REPORT 0\n'
    echo 'msg 0 99 "DoPenBtnAction":{"custom":"0|ctrl click|4+6","id":"1","curapp":"","PenID":"0","PenKeyState":"1"}'
)"

# Keys go through the same virtual devices: key 1 holds Ctrl+C while it is down,
# key 2 is Space. Each dispatch posts its usage record (99) after its keys.
printf '02 F0 01 00 00 00 00 00\n02 F0 00 00 00 00 00 00\n02 F0 02 00 00 00 00 00\n' \
    >"$work/keys.txt"
key() { printf 'mouse EV_KEY %s %s\nmouse EV_SYN SYN_REPORT 0\n' "$1" "$2"; }
usage() {
    printf 'msg 0 99 "DoKeyAction":{"custom":"%s","id":"%s","curapp":"","KeyID":"%s","TabletKeyState":"%s"}\n' "$@"
}
"$replay" "${tablet[@]}" "$work/keys.txt" >"$work/out" 2>/dev/null
check "keys: events and usage records in order" "$(cat "$work/out")" "$(
    key KEY_LEFTCTRL 1
    key KEY_C 1
    usage "1|copy|Ctrl+C|29:37+46:54" 1 0 1
    key KEY_LEFTCTRL 0
    key KEY_C 0
    usage "1|copy|Ctrl+C|29:37+46:54" 1 0 0
    key KEY_SPACE 1
    usage "" 0 1 1
)"

# A remote has no pen: it reports ranges of 0, and LPI 0 stands for 5080.
"$replay" --config "$profile" --model TESTPAD --pid 03E2 --type 4 --maxx 0 --maxy 0 \
    --pressure 0 --lpi 0 --screen 1920x1080+0+0 "$work/keys.txt" >"$work/out" 2>/dev/null
check "remote: its keys are written" "$(grep -v '^msg' "$work/out")" "$(
    key KEY_LEFTCTRL 1
    key KEY_C 1
    key KEY_LEFTCTRL 0
    key KEY_C 0
    key KEY_SPACE 1
)"

without() { # the tablet options with one option and its value left out
    local skip=$1 i
    for ((i = 0; i < ${#tablet[@]}; i += 2)); do
        [ "${tablet[i]}" = "$skip" ] || printf '%s\n%s\n' "${tablet[i]}" "${tablet[i + 1]}"
    done
}

usage_error() { # name, then the arguments
    local name=$1
    shift
    "$@" </dev/null >"$work/out" 2>"$work/err"
    check "$name: status 2" "$?" 2
    check "$name: one line on stderr" "$(wc -l <"$work/err")" 1
    check "$name: nothing on stdout" "$(wc -c <"$work/out")" 0
}

mapfile -t no_maxx < <(without --maxx)
mapfile -t no_screen < <(without --screen)
usage_error "missing --maxx" "$replay" "${no_maxx[@]}"
usage_error "no screen" "$replay" "${no_screen[@]}"
usage_error "pid not hexadecimal" "$replay" "${tablet[@]}" --pid 0BZ0
usage_error "bad geometry" "$replay" "${tablet[@]}" --screen 1280x+0+0
usage_error "device type 3" "$replay" "${tablet[@]}" --type 3
usage_error "unknown option" "$replay" "${tablet[@]}" --speed 5
usage_error "two input files" "$replay" "${tablet[@]}" "$work/capture.txt" "$work/capture.txt"
usage_error "model not in profile" "$replay" "${tablet[@]}" --model NOPAD
usage_error "unreadable input" "$replay" "${tablet[@]}" "$work/missing.txt"
usage_error "input is a folder" "$replay" "${tablet[@]}" "$work"

[ "$failures" -eq 0 ]
