#!/usr/bin/python3
"""Guest side of the e2e tests: plays reports on the emulated tablets (tabN,
serial E2E000000N) and checks what the driver made of them through the guest
kernel. One command a call; prints PASS/FAIL lines, exit 0 when all passed.

    probe.py emuctl WORD...         one control request, prints the reply (also on the
                                    host, with E2E_CTL=RUN/ctl.sock)
    probe.py node NAME TIMEOUT      prints /dev/input/eventN of the input device NAME
    probe.py stroke NODE LOG        a stroke on tab1, checked frame by frame
    probe.py libinput LOG           libinput's view of that stroke (debug-events output)
    probe.py plug NODE LOG          tab1 plugged in, a short stroke, unplugged
    probe.py unplug NODE LOG        tab1 plugged in, the pen moving, unplugged mid-stream
    probe.py like NODE LOG          two like tablets, one unplugged and replugged
    probe.py slots NODE LOG NAMES   six tablets, five slots
    probe.py ping-app TIMEOUT       the running driver's event loop answers
    probe.py driver WANT            tab1's interface 2 is bound to WANT (usbfs, usbhid)
    probe.py hidraw                 a report injected on that interface comes out of its hidraw node

LOG gets every evdev event read, one JSON object a line.

Expected values, for the emulated 5a3c:0b40 with its default profile: string
100 gives 52324 x 29600, pressure 8191, 5080 LPI, so the tablet is 1030 x 582
hundredths of an inch, and the whole of it maps onto the offscreen platform's
800x600 desktop: digitX = (800*x/52324)*52324/800, exact for x 13081, 26162,
39243 (fx 200, 400, 600) and y = 148*j (fy 3*j); elsewhere up to one count
is lost. The neutral pressure curve gives out = t, pressure = trunc(t*8191) = p
for the p used here; orientation 0 passes tilt bytes on as they are. The
kernel passes only values that changed, so each expected frame lists just what
differs from the frame before.
"""
import collections
import fcntl
import glob
import json
import os
import re
import select
import socket
import stat
import struct
import sys
import time

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
IFACE = 2  # the vendor interface the driver takes from usbhid
PEN, PEN_BUTTON1, LEAVE = 0xA0, 0xA1, 0xC0
FRAME_TIMEOUT_S, PLUG_TIMEOUT_S, NO_FRAME_S = 10.0, 60, 1.5
DOWN_PRESSURE, MOVE_PRESSURE = 1000, 2000
# Start packet of report mode 4; "02b002" is the release packet of a close.
START_PACKET, RELEASE_PACKET = "02b004", "02b002"
GRID_X = (13081, 26162, 39243)
WAITS = ("wait-out", "connect")


class NoReply(Exception):
    pass


class Channel:
    """The emulator's control channel: the guest's virtio port (one opener at
    a time) or, on the host, ctl.sock. One request line, one reply line."""

    def __init__(self):
        path = os.environ.get("E2E_CTL") or "/dev/virtio-ports/usbemu.ctl"
        try:
            if stat.S_ISSOCK(os.stat(path).st_mode):
                self.sock = socket.socket(socket.AF_UNIX)
                self.sock.connect(path)
                self.fd = self.sock.fileno()
            else:
                self.fd = os.open(path, os.O_RDWR | os.O_NOCTTY)
        except OSError as e:
            raise NoReply("open %s: %s" % (path, e))

    def request(self, words):
        return self.pipeline([words])[0]

    def pipeline(self, requests):
        """Sends all request lines at once, so that the emulator acts on them
        back to back; returns their replies in order."""
        data = "".join(" ".join(w) + "\n" for w in requests).encode()
        while data:
            data = data[os.write(self.fd, data):]
        return [self.reply(w) for w in requests]

    def reply(self, words):
        reply = b""
        # waiting verbs carry their own timeout; leave the emulator time to answer it
        deadline = time.monotonic() + 30 + (float(words[2]) if words[0] in WAITS else 0)
        while not reply.endswith(b"\n"):
            left = deadline - time.monotonic()
            if left <= 0:
                raise NoReply("no reply to '%s'" % " ".join(words))
            if not select.select([self.fd], [], [], left)[0]:
                continue
            chunk = os.read(self.fd, 1)  # byte by byte: the reply ends at the first newline
            if not chunk:
                # the host end is not connected yet; an empty read does not mean EOF here
                time.sleep(0.05)
            reply += chunk
        return reply.decode("utf-8", "replace").strip()

    def ok(self, words):
        line = self.request(words)
        if not line.startswith("ok"):
            raise NoReply("'%s' answered '%s'" % (" ".join(words), line))
        return line


COUNTS = {True: 0, False: 0}


def check(ok, text):
    print(("PASS: " if ok else "FAIL: ") + text, flush=True)
    COUNTS[bool(ok)] += 1
    return ok


def asks(ch, words, text):
    """A request whose reply must be "ok ..."; text gets the reply."""
    reply = ch.request(words)
    return check(reply.startswith("ok"), "%s (%s)" % (text, reply))


def pen_report(status, x, y, pressure=0, tilt=(0, 0)):
    """64-byte pen report, report id 2, pen id 0."""
    r = bytearray(64)
    r[0:2] = (2, status)
    struct.pack_into("<HHBBbb", r, 2, x & 0xFFFF, y & 0xFFFF, pressure & 0xFF,
                     (pressure >> 8) & 0x1F, *tilt)
    r[10], r[11], r[13] = (x >> 16) & 0xFF, (y >> 16) & 0xFF, (pressure >> 13) & 0x07
    return r.hex()


def key(code, value):
    return (EV_KEY, code, value)


def abs_(code, value):
    return (EV_ABS, code, value)


def describe(frame):
    if frame is None:
        return "no frame"
    return " ".join("%s=%d" % (NAMES.get((t, c), "%d:%d" % (t, c)), v) for t, c, v in frame)


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

    def next_event(self, deadline):
        while not self.queue:
            left = deadline - time.monotonic()
            if left <= 0:
                return None
            if select.select([self.fd], [], [], left)[0]:
                self.buffer += os.read(self.fd, 64 * self.EVENT.size)
                whole = len(self.buffer) // self.EVENT.size * self.EVENT.size
                chunk, self.buffer = self.buffer[:whole], self.buffer[whole:]
                for e in self.EVENT.iter_unpack(chunk):
                    self.queue.append(self.record(*e))
        return self.queue.popleft()

    def record(self, sec, usec, etype, code, value):
        self.log.write(json.dumps({"t": round(time.monotonic() - self.t0, 6),
                                   "time": sec + usec / 1e6, "type": etype, "code": code,
                                   "value": value}) + "\n")
        self.dropped += etype == EV_SYN and code == SYN_DROPPED
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
        deadline = time.monotonic() + seconds
        return list(iter(lambda: self.next_event(deadline), None))

    def keys_down(self, codes):
        """Names of the given keys that the device holds down now (EVIOCGKEY)."""
        state = bytearray(96)  # KEY_MAX 0x2ff
        fcntl.ioctl(self.fd, (2 << 30) | (len(state) << 16) | (ord("E") << 8) | 0x18, state)
        return [NAMES[(EV_KEY, c)] for c in codes if state[c // 8] >> (c % 8) & 1]

    def close(self):
        check(self.dropped == 0, "no SYN_DROPPED (%d)" % self.dropped)
        os.close(self.fd)
        self.log.close()


def send(ch, report, device="tab1"):
    ch.ok(["send", device, str(IFACE), report])


def check_frame(what, got, want):
    return check(got == want, "%s: %s%s" % (
        what, describe(got), "" if got == want else " (want %s)" % describe(want)))


def play(ch, pen, steps, prefix="", device="tab1"):
    """Sends each (what, report, frame) step and checks the frame it gives."""
    for what, report, want in steps:
        send(ch, report, device)
        check_frame(prefix + what, pen.next_frame(FRAME_TIMEOUT_S), want)


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
        ("tip up", pen_report(PEN, bx, by), [abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]),
        ("pen leaves", pen_report(LEAVE, bx, by), [key(BTN_TOOL_PEN, 0)]),
    ]


def strokes(ch, pen, what, plan, mapped=lambda x, y: (x, y)):
    for device, a, b in plan:
        play(ch, pen, short_stroke(a, b, mapped), "%s: %s: " % (what, device), device)


def started(ch, device, what, timeout=PLUG_TIMEOUT_S):
    """Waits for the driver's next start packet to the device."""
    return asks(ch, ["wait-out", device, str(timeout), START_PACKET],
                "%s: the driver opened %s and sent its start packet" % (what, device))


def plug_in(ch, device, what):
    ch.ok(["skip-outs", device])  # only a start packet of this attachment counts
    asks(ch, ["connect", device, str(PLUG_TIMEOUT_S)], "%s: %s plugged in" % (what, device))
    return started(ch, device, what)


def unplug(ch, device, what, others=()):
    """Unplugs the device; only output reports to the others after this count."""
    for dev in others:
        ch.ok(["skip-outs", dev])
    return asks(ch, ["disconnect", device], "%s: %s unplugged" % (what, device))


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
    ("pen leaves", pen_report(LEAVE, 13081, 7400), [key(BTN_TOOL_PEN, 0)]),
]


def run_stroke(ch, pen):
    play(ch, pen, STROKE)
    extra = pen.next_frame(1.5)
    check(extra is None, "nothing more from the pen path after the stroke%s"
          % ("" if extra is None else " (got %s)" % describe(extra)))


def run_plug(ch, pen):
    """Ends at x 39243, so that the hover of the unplug run is a complete frame."""
    if plug_in(ch, "tab1", "plug"):
        play(ch, pen, short_stroke((13081, 7400), (39243, 14800)), "plug: ")
    unplug(ch, "tab1", "plug")


# Unplug: the pen down at x 26162 moving down by 148 counts a report, first
# paced frame by frame, then a burst that the emulator hands over with the
# unplug right behind it, so that the unplug hits while reports are on their
# way; some of them may never arrive.
UNPLUG_X, UNPLUG_FIRST_J, UNPLUG_PACED, UNPLUG_BURST = 26162, 20, 40, 20
# Reports already in the guest's queues may still come out just after the unplug.
UNPLUG_SETTLE_S, UNPLUG_QUIET_S = 1.0, 4.0
# The pen was down when its tablet went: tool and touch up, pressure 0, in the order written.
UNPLUG_LEAVE = [key(BTN_TOOL_PEN, 0), abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]


def run_unplug(ch, pen):
    if not plug_in(ch, "tab1", "unplug"):
        return
    j = UNPLUG_FIRST_J
    send(ch, pen_report(PEN, UNPLUG_X, 148 * j))
    check_frame("hover enters", pen.next_frame(FRAME_TIMEOUT_S),
                [key(BTN_TOOL_PEN, 1), abs_(ABS_X, UNPLUG_X), abs_(ABS_Y, 148 * j)])
    paced_ok = 0
    for n in range(UNPLUG_PACED):
        j += 1
        send(ch, pen_report(PEN, UNPLUG_X, 148 * j, MOVE_PRESSURE))
        want = [abs_(ABS_Y, 148 * j)]
        if n == 0:
            want += [abs_(ABS_PRESSURE, MOVE_PRESSURE), key(BTN_TOUCH, 1)]
        got = pen.next_frame(FRAME_TIMEOUT_S)
        if got != want:
            check_frame("paced move %d" % n, got, want)
            break
        paced_ok += 1
    check(paced_ok == UNPLUG_PACED, "%d paced moves, each its own frame with the new Y" % paced_ok)
    burst = [148 * (j + 1 + n) for n in range(UNPLUG_BURST)]
    replies = ch.pipeline([["send", "tab1", str(IFACE), pen_report(PEN, UNPLUG_X, y, MOVE_PRESSURE)]
                           for y in burst] + [["disconnect", "tab1"]])
    check(all(r.startswith("ok queued") for r in replies[:-1]) and replies[-1] == "ok acked",
          "%d reports queued and the tablet unplugged right behind them (%s)"
          % (UNPLUG_BURST, replies[-1]))
    settle = pen.all_events(UNPLUG_SETTLE_S)
    quiet = pen.all_events(UNPLUG_QUIET_S)
    path = [e for e in settle if e[0] != EV_SYN and not (e[0] == EV_KEY and e[1] not in PEN_PATH_KEYS)]
    moves = 0
    while moves < len(path) and path[moves][:2] == (EV_ABS, ABS_Y):
        moves += 1
    ys = [v for _, _, v in path[:moves]]
    # USB delivers in order and the unplug cuts off the tail of the burst; then the
    # driver lifts the pen of the tablet that went away.
    check(ys == burst[:len(ys)], "within %.1f s of the unplug only the first moves of the burst "
          "came out, in order (%d of %d: %s)" % (UNPLUG_SETTLE_S, len(ys), UNPLUG_BURST, ys))
    check(path[moves:] == UNPLUG_LEAVE, "then one frame lifts the pen (%s)" % describe(path[moves:]))
    down = pen.keys_down(PEN_PATH_KEYS)
    check(not down, "the pen device holds no key down (%s)" % down)
    check(not quiet, "no event from %.1f s to %.1f s after the unplug%s"
          % (UNPLUG_SETTLE_S, UNPLUG_SETTLE_S + UNPLUG_QUIET_S,
             "" if not quiet else " (got %d: %s)" % (len(quiet), describe(quiet[:8]))))


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
    with open(log_path, errors="replace") as f:
        lines = f.read().splitlines()
    at = 0
    for what, matches in LIBINPUT_SEQUENCE:
        found = next((n for n in range(at, len(lines)) if matches(lines[n])), None)
        where = "" if found is None else " (line %d: %s)" % (found + 1, lines[found].strip())
        if not check(found is not None, "libinput: %s%s" % (what, where)):
            return
        at = found + 1


def ping_app(timeout):
    """The single-instance server of the running driver answers a message
    (4-byte big-endian length, UTF-8 text) with one ack byte, 0x06, from its
    GUI event loop."""
    runtime = os.environ.get("XDG_RUNTIME_DIR") or "/tmp"
    sockets = glob.glob(os.path.join(runtime, "qtsingleapp-ScriboraV3-*.sock"))
    if not check(len(sockets) == 1, "one single-instance socket in %s: %s" % (runtime, sockets)):
        return False
    message = b"Please show ScriboraV3"
    t0 = time.monotonic()
    ack = b""
    try:
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as s:
            s.settimeout(timeout)
            s.connect(sockets[0])
            s.sendall(struct.pack(">I", len(message)) + message)
            ack = s.recv(1)
    except OSError as e:
        print("ping-app: %s" % e, flush=True)
    return check(ack == b"\x06", "the driver's event loop acknowledged a message in %.2f s "
                 "(got %r)" % (time.monotonic() - t0, ack))


def read(path):
    try:
        with open(path) as f:
            return f.read().strip()
    except OSError:
        return ""


def interface_dirs():
    """tabN -> sysfs folder of its interface 2 (serial E2E000000N is tabN)."""
    dirs = {}
    for dev in glob.glob("/sys/bus/usb/devices/*"):
        serial = read(dev + "/serial")
        if read(dev + "/idVendor") == "5a3c" and serial[3:].isdigit():
            dirs["tab%d" % int(serial[3:])] = "%s/%s:%s.%d" % (
                dev, os.path.basename(dev), read(dev + "/bConfigurationValue"), IFACE)
    return dirs


def check_drivers(what, want):
    """want: tabN -> driver of its interface 2 ("usbfs" while a program holds it)."""
    dirs = interface_dirs()
    seen = {dev: os.path.basename(os.path.realpath(dirs[dev] + "/driver"))
            if os.path.islink(dirs.get(dev, "-") + "/driver") else None for dev in want}
    return check(seen == want, "%s: interface %d drivers %s%s"
                 % (what, IFACE, seen, "" if seen == want else " (want %s)" % want))


def check_hidraw(ch):
    """The vendor interface's descriptor is all page 0xFF00, so usbhid makes
    no input device of it: its hidraw node is where the reports show."""
    node = None
    for _ in range(50):
        nodes = glob.glob(interface_dirs().get("tab1", "-") + "/*/hidraw/hidraw*")
        node = nodes and "/dev/" + os.path.basename(nodes[0])
        if node and os.path.exists(node):
            break
        time.sleep(0.2)
    if not check(node, "tab1 interface %d has a hidraw node (%s)" % (IFACE, node)):
        return
    # a pen leaving at an odd position: nothing the tablet would send unasked
    report = bytes.fromhex(pen_report(LEAVE, 12345, 6789))
    fd = os.open(node, os.O_RDONLY | os.O_NONBLOCK)
    others, found, deadline = [], False, time.monotonic() + 5
    try:
        send(ch, report.hex())
        while not found and select.select([fd], [], [], max(0, deadline - time.monotonic()))[0]:
            got = os.read(fd, 64)
            found = got == report
            others += [] if found else [got.hex()]
    finally:
        os.close(fd)
    check(found, "%s read the injected report %s...%s"
          % (node, report[:6].hex(), "" if not others else " (also read %s)" % others))


def like_area(x, y):
    """Where a report comes out with QTB0610's saved work area, the right half
    (TX 515, TY 0, TW 515, TH 582): left = 515*5080/100 = 26162, areaW 26162,
    so x comes out as 2*(x - 26162), exact through the screen step; x 13081 is
    left of the area and gives no frame at all."""
    return 2 * (x - 26162), y


# (tablet, hover point, end point), each starting where the last stroke left neither x nor y
LIKE_STROKES = {
    "both open": (("tab1", (39243, 7400), (26162, 14800)), ("tab2", (39243, 22200), (26162, 7400))),
    "tab1 gone": (("tab2", (39243, 14800), (26162, 22200)),),
    "tab1 back": (("tab1", (39243, 7400), (26162, 14800)),),
}
# The scan has sent every start packet before the virtual pen exists.
SCAN_DONE_S = 5


def closed(ch, device, what):
    """The release packet of a close, then the start packet of the reopening."""
    asks(ch, ["wait-out", device, str(PLUG_TIMEOUT_S), RELEASE_PACKET],
         "%s: the driver closed %s (release packet)" % (what, device))
    return started(ch, device, what + ": reopened")


def run_like(ch, pen):
    """When tab1 goes, tab2 is closed with it and reopened, reading config.xml
    again; tab1 plugged in again copies the settings of the open tab2."""
    for device in ("tab1", "tab2"):
        started(ch, device, "at start", SCAN_DONE_S)
    strokes(ch, pen, "both open", LIKE_STROKES["both open"], like_area)
    if unplug(ch, "tab1", "tab1 gone", ["tab2"]):
        closed(ch, "tab2", "tab1 gone")
        strokes(ch, pen, "tab1 gone", LIKE_STROKES["tab1 gone"], like_area)
    if plug_in(ch, "tab1", "tab1 back"):
        send(ch, pen_report(PEN, 13081, 7400))
        got = pen.next_frame(NO_FRAME_S)
        check(got is None, "tab1 back: a hover left of the work area: no frame%s"
              % ("" if got is None else " (got %s)" % describe(got)))
        strokes(ch, pen, "tab1 back", LIKE_STROKES["tab1 back"], like_area)


def slot_stroke(n):
    """Stroke n of the slots run: x steps through the grid, y down by 20*148."""
    return (GRID_X[n % 3], 148 * (10 + 20 * n)), (GRID_X[(n + 2) % 3], 148 * (20 + 20 * n))


ARRIVAL_LINE = "ReceiveUsbMsg Vid: 23100 Pid: 2880 state 1"


def arrivals():
    return read(os.path.join(os.environ.get("E2E_OUT", "/e2e/run/out"), "scribora.log")).count(
        ARRIVAL_LINE)


def run_slots(ch, pen, names_path):
    """Default profile. Five tablets get the start packet and draw, the sixth
    none and its interface stays with usbhid; unplugging one of the five hands
    its slot to the sixth, and the unplugged one, plugged in again, finds the
    slots full."""
    six = ["tab%d" % n for n in range(1, 7)]
    opened = [dev for dev in six if ch.request(
        ["wait-out", dev, str(SCAN_DONE_S), START_PACKET]).startswith("ok")]
    sixth = [dev for dev in six if dev not in opened]
    if not check(len(opened) == 5, "five tablets got a start packet (%s), one did not (%s)"
                 % (" ".join(opened), " ".join(sixth))):
        return
    sixth, gone = sixth[0], opened[0]
    with open(names_path, "w") as f:
        f.write("sixth=%s\nreplugged=%s\n" % (sixth, gone))
    check_drivers("at start", dict({dev: "usbfs" for dev in opened}, **{sixth: "usbhid"}))
    strokes(ch, pen, "five open", [(dev, *slot_stroke(n)) for n, dev in enumerate(opened)])
    ch.ok(["mark", "slots-full"])
    # removal closes every 0b40 and reopens those left: five again, the sixth among them
    if unplug(ch, gone, "slot freed", six):
        started(ch, sixth, "slot freed: the sixth")
        for dev in opened[1:]:
            closed(ch, dev, "slot freed")
        strokes(ch, pen, "slot freed", [(sixth, *slot_stroke(len(opened)))])
        check_drivers("slot freed", {dev: "usbfs" for dev in opened[1:] + [sixth]})
    ch.ok(["mark", "replug"])
    before = arrivals()
    asks(ch, ["connect", gone, str(PLUG_TIMEOUT_S)], "slots full: %s plugged in again" % gone)
    # the app's event loop answers only once the arrival handler (600 ms sleep and scan) returned
    for _ in range(PLUG_TIMEOUT_S * 10):
        if arrivals() > before:
            break
        time.sleep(0.1)
    check(arrivals() > before, "slots full: the driver took the arrival (%s)" % ARRIVAL_LINE)
    ping_app(30)
    ch.ok(["mark", "replug-settled"])
    check_drivers("slots full", {gone: "usbhid"})


def find_node(name, timeout):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        for path in sorted(glob.glob("/sys/class/input/event*/device/name")):
            if read(path) == name:
                return "/dev/input/" + path.split("/")[4]
        time.sleep(0.2)
    return None


def main(argv):
    if argv[:1] == ["emuctl"] and len(argv) > 1:
        line = Channel().request(argv[1:])
        print(line)
        return 0 if line.startswith("ok") else 1
    if argv[:1] == ["node"] and len(argv) == 3:
        node = find_node(argv[1], float(argv[2]))
        print(node or "")
        return 0 if node else 1
    if argv[:1] == ["libinput"] and len(argv) == 2:
        check_libinput(argv[1])
    elif argv[:1] == ["ping-app"] and len(argv) == 2:
        ping_app(float(argv[1]))
    elif argv[:1] == ["driver"] and len(argv) == 2:
        check_drivers("tab1", {"tab1": argv[1]})
    elif argv == ["hidraw"]:
        check_hidraw(Channel())
    elif argv[:1] in (["stroke"], ["plug"], ["unplug"], ["like"], ["slots"]) and len(argv) >= 3:
        run = {"stroke": run_stroke, "plug": run_plug, "unplug": run_unplug,
               "like": run_like, "slots": run_slots}[argv[0]]
        ch, pen = Channel(), PenNode(argv[1], argv[2])
        try:
            run(ch, pen, *argv[3:])
        finally:
            pen.close()
    else:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    print("probe %s: %d passed, %d failed" % (argv[0], COUNTS[True], COUNTS[False]), flush=True)
    return 0 if COUNTS[True] and not COUNTS[False] else 1


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except NoReply as e:
        print("FAIL: control channel: %s" % e, flush=True)
        sys.exit(1)
