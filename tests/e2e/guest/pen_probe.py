#!/usr/bin/python3
"""Guest side of the pen tests: plays pen reports on the emulated tablet tab1
and reads what the driver wrote to its virtual pen through the guest kernel.

    pen_probe.py node NAME TIMEOUT      prints /dev/input/eventN of the input device NAME
    pen_probe.py stroke NODE LOG        one stroke, report by report, checked frame by frame
    pen_probe.py unplug NODE LOG        pen moving, tablet unplugged mid-stream
    pen_probe.py libinput LOG           libinput's view of the stroke (debug-events output)
    pen_probe.py ping-app TIMEOUT       the running driver's event loop answers

LOG gets every evdev event read, one JSON object a line. Prints PASS/FAIL
lines; exit 0 when every check passed.

Expected values, for the emulated 5a3c:0b40 with its default profile
(orientation 0, whole tablet on the whole desktop, neutral pressure curve):
  device: string 100 gives MaxX 52324, MaxY 29600, pressure 8191, LPI 5080;
    width 52324*100/5080 = 1030, height 2960000/5080 = 582 (hundredths of an inch)
  work area TW,TH = 1030,582 (0 in the profile -> the device's size):
    areaW = 1030*52324/1030 = 52324, areaH = 582*29600/582 = 29600, from (0,0),
    so the normalised position is the report's x, y unchanged
  screen: the offscreen platform's one screen, 800x600 at (0,0) = the desktop,
    which the empty screen area of the profile takes
    fx = 800*x/52324, digitX = fx*52324/800; fy = 600*y/29600, digitY = fy*29600/600
    x = 13081, 26162, 39243 -> fx = 200, 400, 600 exactly -> digitX = x
    y = 148*j -> fy = 3*j exactly -> digitY = y (7400, 14800, 22200 are j = 50, 100, 150)
    (positions off these grids lose up to one count to float truncation)
  pressure: P0 0, P1X 0.5, P1Y 0.5, P2 1 -> a=0 b=0.5 c=1 d=0.5, e = a-2b+c = 0,
    s = (a-t)/(2(a-b)) = t, out = 2t(1-t)*0.5 + t*t = t, pressure = trunc(t*8191) = p
    for the p used here (about 35 p between 5792 and 8190 come out p-1 in doubles)
  tilt: orientation 0 turns nothing, the report's signed bytes go out as they are
The kernel passes only values that changed and drops frames with no change,
so each expected frame lists just what differs from the frame before.
"""
import collections
import fcntl
import glob
import json
import os
import re
import select
import socket
import struct
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from emuctl import Channel, NoReply  # noqa: E402

EV_SYN, EV_KEY, EV_ABS = 0, 1, 3
SYN_REPORT, SYN_DROPPED = 0, 3
ABS_X, ABS_Y, ABS_PRESSURE, ABS_TILT_X, ABS_TILT_Y = 0, 1, 24, 26, 27
BTN_TOOL_PEN, BTN_TOOL_RUBBER, BTN_TOUCH = 320, 321, 330
# Pen buttons go out through the button dispatch, which these tests leave alone.
PEN_PATH_KEYS = (BTN_TOOL_PEN, BTN_TOOL_RUBBER, BTN_TOUCH)
NAMES = {(EV_KEY, BTN_TOOL_PEN): "BTN_TOOL_PEN", (EV_KEY, BTN_TOOL_RUBBER): "BTN_TOOL_RUBBER",
         (EV_KEY, BTN_TOUCH): "BTN_TOUCH", (EV_ABS, ABS_X): "ABS_X", (EV_ABS, ABS_Y): "ABS_Y",
         (EV_ABS, ABS_PRESSURE): "ABS_PRESSURE", (EV_ABS, ABS_TILT_X): "ABS_TILT_X",
         (EV_ABS, ABS_TILT_Y): "ABS_TILT_Y"}
DEVICE = "tab1"
IFACE = "2"

PEN, PEN_BUTTON1, LEAVE = 0xA0, 0xA1, 0xC0


def pen_report(status, x, y, pressure=0, tilt=(0, 0)):
    """64-byte pen report, report id 2, pen id 0."""
    r = bytearray(64)
    r[0] = 2
    r[1] = status
    struct.pack_into("<HH", r, 2, x & 0xFFFF, y & 0xFFFF)
    r[6] = pressure & 0xFF
    r[7] = (pressure >> 8) & 0x1F
    r[8] = tilt[0] & 0xFF
    r[9] = tilt[1] & 0xFF
    r[10] = (x >> 16) & 0xFF
    r[11] = (y >> 16) & 0xFF
    r[13] = (pressure >> 13) & 0x07
    return r.hex()


def key(code, value):
    return (EV_KEY, code, value)


def abs_(code, value):
    return (EV_ABS, code, value)


# (what, report, the frame it gives after the kernel's filtering)
STROKE = [
    ("hover enters", pen_report(PEN, 13081, 7400),
     [key(BTN_TOOL_PEN, 1), abs_(ABS_X, 13081), abs_(ABS_Y, 7400)]),
    ("hover, tilted", pen_report(PEN, 26162, 14800, 0, (10, -20)),
     [abs_(ABS_X, 26162), abs_(ABS_Y, 14800), abs_(ABS_TILT_X, 10), abs_(ABS_TILT_Y, -20)]),
    ("tip down", pen_report(PEN, 26162, 14800, 1000, (10, -20)),
     [abs_(ABS_PRESSURE, 1000), key(BTN_TOUCH, 1)]),
    ("move right, pressure rises", pen_report(PEN, 39243, 14800, 2500, (12, -18)),
     [abs_(ABS_X, 39243), abs_(ABS_PRESSURE, 2500), abs_(ABS_TILT_X, 12),
      abs_(ABS_TILT_Y, -18)]),
    ("move down, pressure rises", pen_report(PEN, 39243, 22200, 4000, (12, -18)),
     [abs_(ABS_Y, 22200), abs_(ABS_PRESSURE, 4000)]),
    ("button 1 down, full pressure", pen_report(PEN_BUTTON1, 26162, 22200, 8191, (12, -18)),
     [abs_(ABS_X, 26162), abs_(ABS_PRESSURE, 8191)]),
    ("button 1 up, upright", pen_report(PEN, 13081, 22200, 3000),
     [abs_(ABS_X, 13081), abs_(ABS_PRESSURE, 3000), abs_(ABS_TILT_X, 0), abs_(ABS_TILT_Y, 0)]),
    ("tip up", pen_report(PEN, 13081, 7400),
     [abs_(ABS_Y, 7400), abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]),
    ("pen leaves", pen_report(LEAVE, 13081, 7400),
     [key(BTN_TOOL_PEN, 0)]),
]

# Unplug: the pen down at x 26162 moving down by 148 counts a report (exact
# mapping, see above), first paced frame by frame, then a burst that the
# emulator hands over with the unplug right behind it, so that the unplug hits
# while reports are on their way; some of them may never arrive.
UNPLUG_X, UNPLUG_PRESSURE, UNPLUG_FIRST_J = 26162, 2000, 20
UNPLUG_PACED, UNPLUG_BURST = 40, 20
# Reports already in the guest's queues may still come out just after the unplug.
UNPLUG_SETTLE_S, UNPLUG_QUIET_S = 1.0, 4.0
# The pen was down when its tablet went: tool and touch up, pressure 0, in the order written.
UNPLUG_LEAVE = [key(BTN_TOOL_PEN, 0), abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]
FRAME_TIMEOUT_S = 10.0
PLUG_TIMEOUT_S = 60
DOWN_PRESSURE, MOVE_PRESSURE = 1000, 2000
# Start packet of report mode 4; "02b002" is the release packet of a close.
START_PACKET = "02b004"


def describe(frame):
    if frame is None:
        return "no frame"
    return " ".join("%s=%d" % (NAMES.get((t, c), "%d:%d" % (t, c)), v) for t, c, v in frame)


class Results:
    def __init__(self):
        self.passed = self.failed = 0

    def check(self, ok, text):
        print(("PASS: " if ok else "FAIL: ") + text, flush=True)
        if ok:
            self.passed += 1
        else:
            self.failed += 1
        return ok

    def exit_status(self, what):
        print("pen_probe %s: %d passed, %d failed" % (what, self.passed, self.failed), flush=True)
        return 0 if self.failed == 0 and self.passed > 0 else 1


class PenNode:
    """Reads input_events (struct timeval, u16 type, u16 code, s32 value) from
    an evdev node and groups them into SYN_REPORT frames."""
    EVENT = struct.Struct("llHHi")

    def __init__(self, node, log_path):
        self.fd = os.open(node, os.O_RDONLY | os.O_NONBLOCK)
        self.log = open(log_path, "w")
        self.t0 = time.monotonic()
        self.buffer = b""
        self.queue = collections.deque()
        self.current = []
        self.dropped = 0
        self.events_read = 0

    def next_event(self, deadline):
        while not self.queue:
            left = deadline - time.monotonic()
            if left <= 0:
                return None
            ready, _, _ = select.select([self.fd], [], [], left)
            if ready:
                self.fill()
        return self.queue.popleft()

    def fill(self):
        self.buffer += os.read(self.fd, 64 * self.EVENT.size)
        whole = len(self.buffer) // self.EVENT.size * self.EVENT.size
        chunk, self.buffer = self.buffer[:whole], self.buffer[whole:]
        for e in self.EVENT.iter_unpack(chunk):
            self.queue.append(self.record(e))

    def record(self, e):
        sec, usec, etype, code, value = e
        self.events_read += 1
        self.log.write(json.dumps({"t": round(time.monotonic() - self.t0, 6),
                                   "time": sec + usec / 1e6, "type": etype, "code": code,
                                   "value": value}) + "\n")
        if etype == EV_SYN and code == SYN_DROPPED:
            self.dropped += 1
        return etype, code, value

    def next_frame(self, timeout):
        """The next frame with something of the pen path in it, without its
        SYN_REPORT and without pen-button keys; None on time-out."""
        deadline = time.monotonic() + timeout
        while True:
            event = self.next_event(deadline)
            if event is None:
                return None
            etype, code, _ = event
            if etype != EV_SYN or code != SYN_REPORT:
                if etype != EV_KEY or code in PEN_PATH_KEYS:
                    self.current.append(event)
                continue
            frame, self.current = self.current, []
            if frame:
                return frame

    def all_events(self, seconds):
        """Every event read within the next seconds."""
        deadline = time.monotonic() + seconds
        got = []
        while True:
            event = self.next_event(deadline)
            if event is None:
                return got
            got.append(event)

    def keys_down(self, codes):
        """Names of the given keys that the device holds down now (EVIOCGKEY)."""
        state = bytearray(96)  # KEY_MAX 0x2ff
        fcntl.ioctl(self.fd, (2 << 30) | (len(state) << 16) | (ord("E") << 8) | 0x18, state)
        return [NAMES[(EV_KEY, c)] for c in codes if state[c // 8] >> (c % 8) & 1]

    def close(self):
        os.close(self.fd)
        self.log.close()


def find_node(name, timeout):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        for path in sorted(glob.glob("/sys/class/input/event*/device/name")):
            try:
                with open(path) as f:
                    if f.read().strip() == name:
                        return "/dev/input/" + path.split("/")[4]
            except OSError:
                pass
        time.sleep(0.2)
    return None


def send(channel, report, device=DEVICE):
    channel.ok(["send", device, IFACE, report])


def check_frame(res, what, got, want):
    return res.check(got == want, "%s: %s%s" % (
        what, describe(got), "" if got == want else " (want %s)" % describe(want)))


def play(res, channel, pen, steps, prefix="", device=DEVICE):
    """Sends each (what, report, frame) step and checks the frame it gives."""
    for what, report, want in steps:
        send(channel, report, device)
        check_frame(res, prefix + what, pen.next_frame(FRAME_TIMEOUT_S), want)


def short_stroke(a, b, mapped=lambda x, y: (x, y)):
    """Hover at a, tip down, move to b, tip up, leave. mapped gives where a
    report's position comes out; the frame before must differ from mapped(a)
    in x and y, so that every expected frame is complete."""
    (ax, ay), (bx, by) = a, b
    (max_, may), (mbx, mby) = mapped(ax, ay), mapped(bx, by)
    return [
        ("hover enters", pen_report(PEN, ax, ay),
         [key(BTN_TOOL_PEN, 1), abs_(ABS_X, max_), abs_(ABS_Y, may)]),
        ("tip down", pen_report(PEN, ax, ay, DOWN_PRESSURE),
         [abs_(ABS_PRESSURE, DOWN_PRESSURE), key(BTN_TOUCH, 1)]),
        ("move", pen_report(PEN, bx, by, MOVE_PRESSURE),
         [abs_(ABS_X, mbx), abs_(ABS_Y, mby), abs_(ABS_PRESSURE, MOVE_PRESSURE)]),
        ("tip up", pen_report(PEN, bx, by),
         [abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]),
        ("pen leaves", pen_report(LEAVE, bx, by), [key(BTN_TOOL_PEN, 0)]),
    ]


def plug_in(res, channel, device, what, timeout=PLUG_TIMEOUT_S):
    """Plugs the device in and waits for the driver's start packet to it."""
    # only a start packet of this attachment counts
    channel.ok(["skip-outs", device])
    reply = channel.request(["connect", device, str(timeout)])
    res.check(reply.startswith("ok"), "%s: %s plugged in (%s)" % (what, device, reply))
    return started(res, channel, device, what, timeout)


def started(res, channel, device, what, timeout=PLUG_TIMEOUT_S):
    """Waits for the driver's next start packet to the device."""
    reply = channel.request(["wait-out", device, str(timeout), START_PACKET])
    return res.check(reply.startswith("ok"), "%s: the driver opened %s and sent its start "
                     "packet (%s)" % (what, device, reply))


def run_stroke(node, log_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    try:
        play(res, channel, pen, STROKE)
        extra = pen.next_frame(1.5)
        res.check(extra is None, "nothing more from the pen path after the stroke%s"
                  % ("" if extra is None else " (got %s)" % describe(extra)))
        res.check(pen.dropped == 0, "no SYN_DROPPED (%d)" % pen.dropped)
    finally:
        channel.close()
        pen.close()
    return res.exit_status("stroke")


def unplug_y(j):
    return 148 * j


def run_unplug(node, log_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    try:
        j = UNPLUG_FIRST_J
        send(channel, pen_report(PEN, UNPLUG_X, unplug_y(j)))
        want = [key(BTN_TOOL_PEN, 1), abs_(ABS_X, UNPLUG_X), abs_(ABS_Y, unplug_y(j))]
        check_frame(res, "hover enters", pen.next_frame(FRAME_TIMEOUT_S), want)
        paced_ok = 0
        for n in range(UNPLUG_PACED):
            j += 1
            send(channel, pen_report(PEN, UNPLUG_X, unplug_y(j), UNPLUG_PRESSURE))
            want = [abs_(ABS_Y, unplug_y(j))]
            if n == 0:
                want += [abs_(ABS_PRESSURE, UNPLUG_PRESSURE), key(BTN_TOUCH, 1)]
            got = pen.next_frame(FRAME_TIMEOUT_S)
            if got != want:
                check_frame(res, "paced move %d" % n, got, want)
                break
            paced_ok += 1
        res.check(paced_ok == UNPLUG_PACED, "%d paced moves, each its own frame with the new Y"
                  % paced_ok)
        burst = [unplug_y(j + 1 + n) for n in range(UNPLUG_BURST)]
        replies = channel.pipeline(
            [["send", DEVICE, IFACE, pen_report(PEN, UNPLUG_X, y, UNPLUG_PRESSURE)] for y in burst]
            + [["disconnect", DEVICE]])
        unplugged = time.monotonic()
        res.check(all(r.startswith("ok queued") for r in replies[:-1])
                  and replies[-1].startswith("ok acked"),
                  "%d reports queued and the tablet unplugged right behind them (%s)"
                  % (UNPLUG_BURST, replies[-1]))

        settle = pen.all_events(UNPLUG_SETTLE_S)
        quiet = pen.all_events(UNPLUG_QUIET_S)
        path = [e for e in settle if e[0] != EV_SYN
                and not (e[0] == EV_KEY and e[1] not in PEN_PATH_KEYS)]
        moves = 0
        while moves < len(path) and path[moves][:2] == (EV_ABS, ABS_Y):
            moves += 1
        ys = [v for _, _, v in path[:moves]]
        # USB delivers in order and the unplug cuts off the tail of the burst; then the
        # driver lifts the pen of the tablet that went away.
        res.check(ys == burst[:len(ys)],
                  "within %.1f s of the unplug only the first moves of the burst came out, in "
                  "order (%d of %d: %s)" % (UNPLUG_SETTLE_S, len(ys), UNPLUG_BURST, ys))
        res.check(path[moves:] == UNPLUG_LEAVE, "then one frame lifts the pen (%s)"
                  % describe(path[moves:]))
        res.check(not pen.keys_down(PEN_PATH_KEYS), "the pen device holds no key down (%s)"
                  % pen.keys_down(PEN_PATH_KEYS))
        res.check(not quiet, "no event from %.1f s to %.1f s after the unplug%s"
                  % (UNPLUG_SETTLE_S, UNPLUG_SETTLE_S + UNPLUG_QUIET_S,
                     "" if not quiet else " (got %d: %s)" % (len(quiet), describe(quiet[:8]))))
        res.check(pen.dropped == 0, "no SYN_DROPPED (%d)" % pen.dropped)
        print("unplug: %.1f s watched after the unplug, %d events in all"
              % (time.monotonic() - unplugged, pen.events_read), flush=True)
    finally:
        channel.close()
        pen.close()
    return res.exit_status("unplug")


# libinput debug-events lines that must appear in this order for the stroke:
# the pen is a tablet tool of 52324/200 by 29600/200 mm (resolution 200 per mm),
# and the tip goes down at 26162/200 = 130.81 mm, 14800/200 = 74.00 mm.
LIBINPUT_SEQUENCE = [
    ("the pen is a tablet device of 262x148 mm",
     lambda line: "DEVICE_ADDED" in line and "NORVA Pen" in line and "size 262x148mm" in line
     and any(w.startswith("cap:") and "T" in w for w in line.split())),
    ("proximity in", lambda line: "TABLET_TOOL_PROXIMITY" in line and "proximity-in" in line),
    ("tip down at 130.81/74.00 mm",
     lambda line: "TABLET_TOOL_TIP" in line and " down" in line
     and re.search(r"\s130\.81\*?/74\.00\*?\s", line)),
    ("axis change while down", lambda line: "TABLET_TOOL_AXIS" in line),
    ("tip up", lambda line: "TABLET_TOOL_TIP" in line and " up" in line),
    ("proximity out", lambda line: "TABLET_TOOL_PROXIMITY" in line and "proximity-out" in line),
]


def check_libinput(log_path):
    res = Results()
    with open(log_path, errors="replace") as f:
        lines = f.read().splitlines()
    at = 0
    for what, matches in LIBINPUT_SEQUENCE:
        found = next((n for n in range(at, len(lines)) if matches(lines[n])), None)
        where = "" if found is None else " (line %d: %s)" % (found + 1, lines[found].strip())
        if not res.check(found is not None, "libinput: %s%s" % (what, where)):
            break
        at = found + 1
    return res.exit_status("libinput")


def ping_app(timeout):
    """The single-instance server of the running driver answers a message
    (4-byte big-endian length, UTF-8 text) with one ack byte, 0x06, from its
    GUI event loop."""
    res = Results()
    runtime = os.environ.get("XDG_RUNTIME_DIR") or "/tmp"
    sockets = glob.glob(os.path.join(runtime, "qtsingleapp-ScriboraV3-*.sock"))
    if not res.check(len(sockets) == 1,
                     "one single-instance socket in %s: %s" % (runtime, sockets)):
        return res.exit_status("ping-app")
    message = b"Please show ScriboraV3"
    started = time.monotonic()
    ack = b""
    try:
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as s:
            s.settimeout(timeout)
            s.connect(sockets[0])
            s.sendall(struct.pack(">I", len(message)) + message)
            ack = s.recv(1)
    except OSError as e:
        print("ping-app: %s" % e, flush=True)
    res.check(ack == b"\x06", "the driver's event loop acknowledged a message in %.2f s (got %r)"
              % (time.monotonic() - started, ack))
    return res.exit_status("ping-app")


def main(argv):
    try:
        if len(argv) == 3 and argv[0] == "node":
            node = find_node(argv[1], float(argv[2]))
            if node:
                print(node)
            return 0 if node else 1
        if len(argv) == 3 and argv[0] == "stroke":
            return run_stroke(argv[1], argv[2])
        if len(argv) == 3 and argv[0] == "unplug":
            return run_unplug(argv[1], argv[2])
        if len(argv) == 2 and argv[0] == "libinput":
            return check_libinput(argv[1])
        if len(argv) == 2 and argv[0] == "ping-app":
            return ping_app(float(argv[1]))
    except NoReply as e:
        print("FAIL: control channel: %s" % e, flush=True)
        return 1
    print(__doc__.split("\n\n")[1], file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
