#!/usr/bin/python3
"""Guest side of the e2e tests: plays reports on the emulated tablets (tabN,
serial E2E000000N) and checks what the driver made of them (expected.json).
Prints PASS/FAIL lines, exit 0 when all passed.

    probe.py emuctl WORD...         one control request, prints the reply
    probe.py node NAME TIMEOUT      prints /dev/input/eventN of the input device NAME
    probe.py stroke|plug|unplug|like NODE LOG, probe.py slots NODE LOG NAMES   a scenario; LOG gets the evdev events
    probe.py stall NODE LOG PID     tab1 stops answering mid-stroke while tab2 draws on (see run_stall)
    probe.py corners NODE LOG X,Y,W,H   the tablet's corners at those of a screen area
    probe.py key NODE LOG CODES         key 1 gives exactly the key codes CODES down and up
    probe.py wheel NODE LOG CODES       a step of wheel 1 gives exactly the key codes CODES down and up
    probe.py pressure NODE LOG P        a tap at pressure P; prints and writes LOG.value the ABS_PRESSURE it gives
    probe.py ping-app TIMEOUT       the running driver's event loop answers
    probe.py remote DIR             tab1 plays a remote's memory (see run_remote); DIR/<phase>
                                    marks each phase, DIR/written.xml the file taken
    probe.py display DIR            tab1 plays a pen display's picture settings; DIR/state marks the state sent
    probe.py hold P                 tab1's pen pressed at the centre at pressure P, and left there
    probe.py driver WANT            tab1's interface 2 is bound to WANT (usbfs, usbhid)
    probe.py hidraw                 a report injected on that interface comes out of its hidraw node
"""
import collections
import fcntl
import glob
import json
import os
import re
import select
import socket
import signal
import struct
import subprocess
import sys
import time

EV_SYN, EV_KEY, EV_ABS = 0, 1, 3
SYN_REPORT, SYN_DROPPED = 0, 3
CODES = {"BTN_TOOL_PEN": (EV_KEY, 320), "BTN_TOOL_RUBBER": (EV_KEY, 321), "BTN_TOUCH": (EV_KEY, 330),
         "ABS_X": (EV_ABS, 0), "ABS_Y": (EV_ABS, 1), "ABS_PRESSURE": (EV_ABS, 24),
         "ABS_TILT_X": (EV_ABS, 26), "ABS_TILT_Y": (EV_ABS, 27)}
NAMES = {v: k for k, v in CODES.items()}
# Pen buttons go out through the button dispatch, which these tests leave alone.
PEN_PATH_KEYS = (320, 321, 330)
IFACE = 2  # the vendor interface the driver takes from usbhid
FRAME_TIMEOUT_S, PLUG_TIMEOUT_S, NO_FRAME_S = 10.0, 60, 1.5
# Start packet of report mode 4; "02b002" is the release packet of a close.
START_PACKET, RELEASE_PACKET = "02b004", "02b002"
GRID_X = (13081, 26162, 39243)
with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "expected.json")) as f:
    EXPECTED = json.load(f)


class NoReply(Exception):
    pass


class Channel:
    """The emulator's control channel, the guest's virtio port."""

    def __init__(self):
        self.fd = os.open(os.environ.get("E2E_CTL") or "/dev/virtio-ports/usbemu.ctl", os.O_RDWR | os.O_NOCTTY)

    def request(self, words):
        return self.pipeline([words])[0]

    def pipeline(self, requests):
        """All request lines at once, so that the emulator acts on them back to back."""
        data = "".join(" ".join(w) + "\n" for w in requests).encode()
        while data:
            data = data[os.write(self.fd, data):]
        return [self.reply(w) for w in requests]

    def reply(self, words):
        reply = b""
        # waiting verbs carry their own timeout; leave the emulator time to answer it
        deadline = time.monotonic() + 30 + (float(words[2]) if words[0] in ("wait-out", "connect") else 0)
        while not reply.endswith(b"\n"):
            left = deadline - time.monotonic()
            if left <= 0:
                raise NoReply("no reply to '%s'" % " ".join(words))
            if not select.select([self.fd], [], [], left)[0]:
                continue
            chunk = os.read(self.fd, 1)  # byte by byte: the reply ends at the first newline
            if not chunk:
                time.sleep(0.05)  # the host end is not connected yet; not an EOF here
            reply += chunk
        return reply.decode("utf-8", "replace").strip()

    def ok(self, words):
        line = self.request(words)
        if not line.startswith("ok"):
            raise NoReply("'%s' answered '%s'" % (" ".join(words), line))


COUNTS = {True: 0, False: 0}


def check(ok, text):
    print(("PASS: " if ok else "FAIL: ") + text, flush=True)
    COUNTS[bool(ok)] += 1
    return ok


def asks(ch, words, text):
    reply = ch.request(words)
    return check(reply.startswith("ok"), "%s (%s)" % (text, reply))


def pen_report(status, x, y, pressure=0, tilt_x=0, tilt_y=0):
    """64-byte pen report, report id 2, pen id 0."""
    r = bytearray(64)
    r[0:2] = (2, status)
    struct.pack_into("<HHBBbb", r, 2, x & 0xFFFF, y & 0xFFFF, pressure & 0xFF, (pressure >> 8) & 0x1F, tilt_x, tilt_y)
    r[10], r[11], r[13] = (x >> 16) & 0xFF, (y >> 16) & 0xFF, (pressure >> 13) & 0x07
    return r.hex()


def describe(frame):
    if frame is None:
        return "no frame"
    return " ".join("%s=%d" % (NAMES.get((t, c), "%d:%d" % (t, c)), v) for t, c, v in frame)


def poll(test, timeout, step=0.1):
    """test() until it gives something true or timeout seconds pass; its last result."""
    deadline = time.monotonic() + timeout
    while True:
        got = test()
        if got or time.monotonic() >= deadline:
            return got
        time.sleep(step)


class PenNode:
    """Reads input_events from an evdev node and groups them into SYN_REPORT frames."""
    EVENT = struct.Struct("llHHi")

    def __init__(self, node, log_path):
        self.node, self.fd = node, os.open(node, os.O_RDONLY | os.O_NONBLOCK)
        self.log = open(log_path, "w")
        self.t0, self.buffer, self.current, self.dropped = time.monotonic(), b"", [], 0
        self.queue = collections.deque()

    def next_event(self, deadline):
        while not self.queue:
            left = deadline - time.monotonic()
            if left <= 0:
                return None
            if select.select([self.fd], [], [], left)[0]:
                self.buffer += os.read(self.fd, 64 * self.EVENT.size)
                whole = len(self.buffer) // self.EVENT.size * self.EVENT.size
                chunk, self.buffer = self.buffer[:whole], self.buffer[whole:]
                for sec, usec, etype, code, value in self.EVENT.iter_unpack(chunk):
                    self.log.write(json.dumps({"t": round(time.monotonic() - self.t0, 6), "time": sec + usec / 1e6,
                                               "type": etype, "code": code, "value": value}) + "\n")
                    self.dropped += etype == EV_SYN and code == SYN_DROPPED
                    self.queue.append((etype, code, value))
        return self.queue.popleft()

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

    def keys_down(self):
        """Names of the pen-path keys that the device holds down now (EVIOCGKEY)."""
        state = bytearray(96)  # KEY_MAX 0x2ff
        fcntl.ioctl(self.fd, (2 << 30) | (len(state) << 16) | (ord("E") << 8) | 0x18, state)
        return [NAMES[(EV_KEY, c)] for c in PEN_PATH_KEYS if state[c // 8] >> (c % 8) & 1]

    def close(self):
        check(self.dropped == 0, "no SYN_DROPPED (%d)" % self.dropped)
        os.close(self.fd)
        self.log.close()


def send(ch, data, device="tab1"):
    ch.ok(["send", device, str(IFACE), data])


def check_frame(what, got, want):
    got = describe(got)
    return check(got == want, "%s: %s%s" % (what, got, "" if got == want else " (want %s)" % want))


def play(ch, pen, steps, prefix="", device="tab1", **values):
    """Sends each [what, report, frame] step and checks the frame it gives; values fill the
    {names} of report ('status x y [pressure [tilt_x tilt_y]]', status in hex) and frame."""
    for what, sent, want in steps:
        words = sent.format(**values).split()
        send(ch, pen_report(int(words[0], 16), *map(int, words[1:])), device)
        check_frame(prefix + what, pen.next_frame(FRAME_TIMEOUT_S), want.format(**values))


def strokes(ch, pen, what, plan, mapped=lambda x, y: (x, y)):
    for device, a, b in plan:
        (max_, may), (mbx, mby) = mapped(*a), mapped(*b)
        play(ch, pen, EXPECTED["short_stroke"], "%s: %s: " % (what, device), device, ax=a[0], ay=a[1],
             bx=b[0], by=b[1], max=max_, may=may, mbx=mbx, mby=mby)


def started(ch, device, what, timeout=PLUG_TIMEOUT_S):
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


def no_frame(pen, what, seconds):
    got = pen.next_frame(seconds)
    check(got is None, "%s: no frame%s" % (what, "" if got is None else " (got %s)" % describe(got)))


def run_stroke(ch, pen):
    """The stroke, and libinput's view of it (debug-events output in LOG.libinput)."""
    log_path = pen.log.name + ".libinput"
    with open(log_path, "w") as log:
        libinput = subprocess.Popen(["stdbuf", "-oL", "-eL", "libinput", "debug-events", "--device", pen.node],
                                    stdout=log, stderr=subprocess.STDOUT)
    poll(lambda: libinput.poll() is not None or "DEVICE_ADDED" in read(log_path), PLUG_TIMEOUT_S)
    play(ch, pen, EXPECTED["stroke"])
    no_frame(pen, "after the stroke, from the pen path", NO_FRAME_S)
    libinput.send_signal(signal.SIGINT)
    libinput.wait()
    lines, at = read(log_path).splitlines(), 0
    for what, pattern in EXPECTED["libinput"]:
        found = next((n for n in range(at, len(lines)) if re.search(pattern, lines[n])), None)
        where = "" if found is None else " (line %d: %s)" % (found + 1, lines[found].strip())
        if not check(found is not None, "libinput: %s%s" % (what, where)):
            print("\n".join(lines), flush=True)
            break
        at = found + 1


def run_plug(ch, pen):
    """Ends at x 39243, so that the hover of the unplug run is a complete frame."""
    if plug_in(ch, "tab1", "plug"):
        strokes(ch, pen, "plug", [("tab1", (13081, 7400), (39243, 14800))])
    unplug(ch, "tab1", "plug")


# Unplug: the pen down at x 26162 moving down by 148 counts a report, first
# paced frame by frame, then a burst that the emulator hands over with the
# unplug right behind it, so that the unplug hits while reports are on their
# way; some of them may never arrive.
UNPLUG_X, UNPLUG_FIRST_J, UNPLUG_PACED, UNPLUG_BURST = 26162, 20, 40, 20
# Reports already in the guest's queues may still come out just after the unplug.
UNPLUG_SETTLE_S, UNPLUG_QUIET_S = 1.0, 4.0


def run_unplug(ch, pen):
    if not plug_in(ch, "tab1", "unplug"):
        return
    j = UNPLUG_FIRST_J
    send(ch, pen_report(0xA0, UNPLUG_X, 148 * j))
    check_frame("hover enters", pen.next_frame(FRAME_TIMEOUT_S),
                "BTN_TOOL_PEN=1 ABS_X=%d ABS_Y=%d" % (UNPLUG_X, 148 * j))
    paced_ok = 0
    for n in range(UNPLUG_PACED):
        j += 1
        send(ch, pen_report(0xA0, UNPLUG_X, 148 * j, 2000))
        want = "ABS_Y=%d" % (148 * j) + (" ABS_PRESSURE=2000 BTN_TOUCH=1" if n == 0 else "")
        got = pen.next_frame(FRAME_TIMEOUT_S)
        if describe(got) != want:
            check_frame("paced move %d" % n, got, want)
            break
        paced_ok += 1
    check(paced_ok == UNPLUG_PACED, "%d paced moves, each its own frame with the new Y" % paced_ok)
    burst = [148 * (j + 1 + n) for n in range(UNPLUG_BURST)]
    replies = ch.pipeline([["send", "tab1", str(IFACE), pen_report(0xA0, UNPLUG_X, y, 2000)]
                           for y in burst] + [["disconnect", "tab1"]])
    check(all(r.startswith("ok queued") for r in replies[:-1]) and replies[-1] == "ok acked",
          "%d reports queued and the tablet unplugged right behind them (%s)" % (UNPLUG_BURST, replies[-1]))
    settle, quiet = pen.all_events(UNPLUG_SETTLE_S), pen.all_events(UNPLUG_QUIET_S)
    path = [e for e in settle if e[0] != EV_SYN and not (e[0] == EV_KEY and e[1] not in PEN_PATH_KEYS)]
    moves = next((n for n, e in enumerate(path) if e[:2] != CODES["ABS_Y"]), len(path))
    ys = [v for _, _, v in path[:moves]]
    # USB delivers in order and the unplug cuts off the tail of the burst; then the
    # driver lifts the pen of the tablet that went away.
    check(ys == burst[:len(ys)], "within %.1f s of the unplug only the first moves of the burst "
          "came out, in order (%d of %d: %s)" % (UNPLUG_SETTLE_S, len(ys), UNPLUG_BURST, ys))
    leave = describe(path[moves:])
    check(leave == EXPECTED["unplug_leave"], "then one frame lifts the pen (%s)" % leave)
    down = pen.keys_down()
    check(not down, "the pen device holds no key down (%s)" % down)
    check(not quiet, "no event from %.1f s to %.1f s after the unplug%s"
          % (UNPLUG_SETTLE_S, UNPLUG_SETTLE_S + UNPLUG_QUIET_S,
             "" if not quiet else " (got %d: %s)" % (len(quiet), describe(quiet[:8]))))


def ping_app(timeout):
    """The driver's single-instance server answers a message (4-byte big-endian
    length, UTF-8 text) with one ack byte, 0x06, from its GUI event loop."""
    runtime = os.environ.get("XDG_RUNTIME_DIR") or "/tmp"
    sockets = glob.glob(os.path.join(runtime, "qtsingleapp-ScriboraV3-*.sock"))
    if not check(len(sockets) == 1, "one single-instance socket in %s: %s" % (runtime, sockets)):
        return False
    message = b"Please show ScriboraV3"
    t0, ack = time.monotonic(), b""
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
        with open(path, errors="replace") as f:
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
    node = poll(lambda: [n for n in glob.glob(interface_dirs().get("tab1", "-") + "/*/hidraw/hidraw*")
                         if os.path.exists("/dev/" + os.path.basename(n))], 10, 0.2)
    node = node and "/dev/" + os.path.basename(node[0])
    if not check(node, "tab1 interface %d has a hidraw node (%s)" % (IFACE, node)):
        return
    # a pen leaving at an odd position: nothing the tablet would send unasked
    data = bytes.fromhex(pen_report(0xC0, 12345, 6789))
    fd = os.open(node, os.O_RDONLY | os.O_NONBLOCK)
    others, found, deadline = [], False, time.monotonic() + 5
    try:
        send(ch, data.hex())
        while not found and select.select([fd], [], [], max(0, deadline - time.monotonic()))[0]:
            got = os.read(fd, 64)
            found = got == data
            others += [] if found else [got.hex()]
    finally:
        os.close(fd)
    check(found, "%s read the injected report %s...%s"
          % (node, data[:6].hex(), "" if not others else " (also read %s)" % others))


def like_area(x, y):
    """Where a report comes out with QTB0610's saved work area, the right half
    (TX 515, TY 0, TW 515, TH 582): left = 515*5080/100 = 26162, areaW 26162,
    so x comes out as 2*(x - 26162), exact through the screen step; x 13081 is
    left of the area and gives no frame at all."""
    return 2 * (x - 26162), y


# The scan has sent every start packet before the virtual pen exists.
SCAN_DONE_S = 5


def closed(ch, device, what):
    """The release packet of a close, then the start packet of the reopening."""
    asks(ch, ["wait-out", device, str(PLUG_TIMEOUT_S), RELEASE_PACKET],
         "%s: the driver closed %s (release packet)" % (what, device))
    return started(ch, device, what + ": reopened")


def run_like(ch, pen):
    """When tab1 goes, tab2 is closed and reopened, reading config.xml again;
    tab1 plugged in again copies the settings of the open tab2."""
    plans = EXPECTED["like_strokes"]
    for device in ("tab1", "tab2"):
        started(ch, device, "at start", SCAN_DONE_S)
    strokes(ch, pen, "both open", plans["both open"], like_area)
    if unplug(ch, "tab1", "tab1 gone", ["tab2"]):
        closed(ch, "tab2", "tab1 gone")
        strokes(ch, pen, "tab1 gone", plans["tab1 gone"], like_area)
    if plug_in(ch, "tab1", "tab1 back"):
        send(ch, pen_report(0xA0, 13081, 7400))
        no_frame(pen, "tab1 back: a hover left of the work area", NO_FRAME_S)
        strokes(ch, pen, "tab1 back", plans["tab1 back"], like_area)


def readers(pid):
    """The driver's report readers: its threads named after their class."""
    return sum(read(path) == "DeviceThread" for path in glob.glob("/proc/%s/task/*/comm" % pid))


STALL_A, STALL_B = (13081, 7400), (39243, 14800)
STALL_GONE_S = 60  # the guest's kernel gives up on a dead device after resets of a few seconds


def stroke_values(a, b):
    return dict(ax=a[0], ay=a[1], bx=b[0], by=b[1], max=a[0], may=a[1], mbx=b[0], mby=b[1])


def quiet_stroke(ch, pen, device, a, b):
    """The short stroke from a to b, unmapped; the first step that gave another frame, or None."""
    values = stroke_values(a, b)
    for what, sent, want in EXPECTED["short_stroke"]:
        words = sent.format(**values).split()
        send(ch, pen_report(int(words[0], 16), *map(int, words[1:])), device)
        got, want = describe(pen.next_frame(FRAME_TIMEOUT_S)), want.format(**values)
        if got != want:
            return "%s: %s (want %s)" % (what, got, want)
    return None


def run_stall(ch, pen, pid):
    """tab1 stops answering with its pen down while tab2 draws on: tab2's pen takes the pen
    device over (tab1's is lifted where it is) and its strokes map as ever, before and after
    tab1's reader ends; nothing of tab1 comes out afterwards; replugged, tab1 draws again."""
    for device in ("tab1", "tab2"):
        started(ch, device, "at start", SCAN_DONE_S)
    check(readers(pid) == 2, "two readers at start (%d)" % readers(pid))
    values = stroke_values(STALL_A, STALL_B)
    hover, *rest = EXPECTED["short_stroke"]
    play(ch, pen, [hover] + rest[:2], "tab1 before it stops: ", "tab1", **values)
    asks(ch, ["fail", "tab1"], "tab1 stops answering with its pen down")
    send(ch, pen_report(0xA0, *STALL_A), "tab2")
    check_frame("tab2's pen comes: tab1's is lifted where it is", pen.next_frame(FRAME_TIMEOUT_S),
                EXPECTED["unplug_leave"])
    check_frame("tab2's pen comes: it enters", pen.next_frame(FRAME_TIMEOUT_S), hover[2].format(**values))
    play(ch, pen, rest, "tab2's first stroke: ", "tab2", **values)
    deadline, during, bad = time.monotonic() + STALL_GONE_S, 0, None
    while not bad and readers(pid) == 2 and time.monotonic() < deadline:
        bad = quiet_stroke(ch, pen, "tab2", STALL_A, STALL_B)
        during += 1
    check(not bad, "%d strokes of tab2 while tab1 was dead map right%s" % (during, bad and ": " + bad or ""))
    check(readers(pid) == 1, "tab1's reader ended, tab2's runs (%d reader(s))" % readers(pid))
    strokes(ch, pen, "after tab1's reader ended", [("tab2", STALL_A, STALL_B)])
    no_frame(pen, "nothing more: tab1's late leave is dropped", NO_FRAME_S)
    unplug(ch, "tab1", "replug")
    if plug_in(ch, "tab1", "replug"):
        check(poll(lambda: readers(pid) == 2, FRAME_TIMEOUT_S), "two readers again (%d)" % readers(pid))
        strokes(ch, pen, "after the replug", [("tab1", STALL_A, STALL_B), ("tab2", STALL_A, STALL_B)])


def slot_stroke(n):
    """Stroke n of the slots run: x steps through the grid, y down by 20*148."""
    return (GRID_X[n % 3], 148 * (10 + 20 * n)), (GRID_X[(n + 2) % 3], 148 * (20 + 20 * n))


def run_slots(ch, pen, names_path):
    """Default profile; five slots for six tablets (README.md)."""
    six = ["tab%d" % n for n in range(1, 7)]
    opened = [dev for dev in six if ch.request(["wait-out", dev, str(SCAN_DONE_S), START_PACKET]).startswith("ok")]
    sixth = [dev for dev in six if dev not in opened]
    if not check(len(opened) == 5, "five tablets got a start packet (%s), one did not (%s)"
                 % (" ".join(opened), " ".join(sixth))):
        return
    sixth, gone = sixth[0], opened[0]
    with open(names_path, "w") as f:
        f.write("%s %s\n" % (sixth, gone))  # the one left alone, the one to be replugged
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
    arrival, log = "ReceiveUsbMsg Vid: 23100 Pid: 2880 state 1", os.environ.get("E2E_OUT", "/e2e/run/out")
    before = read(log + "/scribora.log").count(arrival)
    asks(ch, ["connect", gone, str(PLUG_TIMEOUT_S)], "slots full: %s plugged in again" % gone)
    # the app's event loop answers only once the arrival handler (600 ms sleep and scan) returned
    check(poll(lambda: read(log + "/scribora.log").count(arrival) > before, PLUG_TIMEOUT_S),
          "slots full: the driver took the arrival (%s)" % arrival)
    ping_app(30)
    ch.ok(["mark", "replug-settled"])
    check_drivers("slots full", {gone: "usbhid"})


def run_corners(ch, pen, area):
    """The tablet's far corners hover at the corners of the screen area AREA ("x,y,w,h" of
    the 1920x1080 desktop); the pen space spans the desktop, 52324 x 29600."""
    x, y, w, h = map(int, area.split(","))
    # Far corner first: the kernel passes only values that changed.
    for what, tx, ty, sx, sy in (("bottom right", 52323, 29599, x + w, y + h), ("top left", 0, 0, x, y)):
        send(ch, pen_report(0xa0, tx, ty))
        got = dict(((t, c), v) for t, c, v in pen.next_frame(FRAME_TIMEOUT_S) or ())
        want = (sx * 52324 // 1920, sy * 29600 // 1080)
        near = all(abs(got.get((EV_ABS, c), -999) - v) <= 30 for c, v in enumerate(want))
        check(near, "the tablet's %s at the area's: ABS_X %s ABS_Y %s (want %d %d within 30)" % (
            what, got.get((EV_ABS, 0)), got.get((EV_ABS, 1)), *want))
    send(ch, pen_report(0xc0, 0, 0))


def run_key(ch, keys, codes):
    """Key 1 of tab1 pressed and let go gives exactly the keys CODES ("29,42,44") on the
    keyboard device KEYS: each down, then each up."""
    for state in ("01", "00"):
        send(ch, "02f0" + state + "00" * 61)
    check_combination(keys, codes, "key 1")


def run_wheel(ch, keys, codes):
    """One step of wheel 1 clockwise (wheel state 0x01, then at rest) gives exactly the keys
    CODES on KEYS, each down, then each up."""
    for state in ("01", "00"):
        send(ch, "02f0" + "00" * 5 + state + "00" * 56)
    check_combination(keys, codes, "a wheel step")


def check_combination(keys, codes, what):
    want = sorted(map(int, codes.split(",")))
    got = [(c, v) for t, c, v in keys.all_events(3.0) if t == EV_KEY]
    downs = sorted(c for c, v in got if v == 1)
    ups = sorted(c for c, v in got if v == 0)
    last_down = max((n for n, (c, v) in enumerate(got) if v == 1), default=-1)
    first_up = min((n for n, (c, v) in enumerate(got) if v == 0), default=len(got))
    check(downs == want and ups == want and last_down < first_up,
          "%s gives %s down, then up (got %s)" % (what, want, got))


def run_pressure(ch, pen, pressure):
    """The pen taps the tablet's centre at PRESSURE; the ABS_PRESSURE it gives goes to
    LOG.value and is printed."""
    frames = []
    for report in (pen_report(0xa0, 26162, 14800), pen_report(0xa0, 26162, 14800, int(pressure)),
                   pen_report(0xa0, 26162, 14800), pen_report(0xc0, 0, 0)):
        send(ch, report)
        frames.append(dict(((t, c), v) for t, c, v in pen.next_frame(FRAME_TIMEOUT_S) or ()))
    got = frames[1].get(CODES["ABS_PRESSURE"])
    with open(pen.log.name + ".value", "w") as out:
        out.write("%s\n" % got)
    check(got is not None and 0 < got <= 8191, "pressure %s gives ABS_PRESSURE %s" % (pressure, got))


# The file transfer of the remote's memory (report 02 b6): the driver's requests and the
# device's answers.
FILE_WRITE, FILE_CHUNK, FILE_END, FILE_READ, FILE_DATA = "02b601", "02b603", "02b602", "02b60001", "02b60002"
FILE_BLOCK = 29
CUSTOM_KEY = "1|Undo|Ctrl+Z|29:37+44:52"


def wait_out(ch, prefix, timeout=60):
    """The data of the driver's next output report on tab1 that starts with PREFIX."""
    while True:
        reply = ch.request(["wait-out", "tab1", str(timeout)]).split()
        if reply[0] != "ok":
            raise NoReply("no output report %s... (%s)" % (prefix, " ".join(reply)))
        if reply[-1].startswith(prefix):
            return bytes.fromhex(reply[-1])


def take_written_file(ch):
    """Accepts a write and collects its blocks up to the end frame; the file without padding."""
    wait_out(ch, FILE_WRITE)
    send(ch, "02b60101" + "00" * 60)
    data = b""
    while True:
        frame = wait_out(ch, "02b60")
        if frame.hex().startswith(FILE_END):
            return data.rstrip(b"\0")
        if frame.hex().startswith(FILE_CHUNK):
            data += frame[3:3 + FILE_BLOCK]


def header(size, mark=0):
    return ("02b60001" + struct.pack("<IB", size, mark).hex()).ljust(128, "0")


def play_file(ch, data):
    wait_out(ch, FILE_DATA)
    for at in range(0, len(data), 61):
        send(ch, ("02b600" + data[at:at + 61].hex()).ljust(128, "0"))
    send(ch, "02b60200".ljust(128, "0"))


def run_remote(ch, out):
    """Refuses the first write, whose retry reads and finds no file; takes the second write;
    answers the next read with another mark, and its retry with the file taken, key 1 of the
    first group made custom."""
    mark = lambda name: open(os.path.join(out, name), "w").close()
    take_written_file(ch)
    send(ch, "02b60200".ljust(128, "0"))
    mark("refused")
    wait_out(ch, FILE_READ)
    send(ch, header(0))
    mark("nofile")
    written = take_written_file(ch)
    with open(os.path.join(out, "written.xml"), "wb") as f:
        f.write(written)
    check(written.startswith(b"<?xml") and b"<QRM07App>" in written and b"<K1 " in written,
          "the driver wrote the remote's document (%d bytes)" % len(written))
    send(ch, "02b60202".ljust(128, "0"))
    mark("saved")
    wait_out(ch, FILE_READ)
    send(ch, header(len(written), 7))
    mark("othermark")
    wait_out(ch, FILE_READ)
    changed = re.sub(rb'<K1 ([^>]*)id="0"([^>]*?) ?/>', lambda m: b'<K1 ' + m.group(1) + b'id="1"' +
                     m.group(2) + b'>' + CUSTOM_KEY.encode() + b'</K1>', written, count=1)
    check(changed != written, "key 1 of the first group made custom in the document sent back")
    send(ch, header(len(changed)))
    play_file(ch, changed)
    mark("read")


# A pen display's picture settings (report 02 b5): byte 3 the setting, the value in byte 6, or
# in byte 7 for the three gains.
DISPLAY_SETTINGS = {(0xF0, 0): 110, (1, 1): 111, (1, 2): 112, (1, 3): 113, (3, 0): 117, (4, 0): 118, (7, 0): 119}


def display_command(frame):
    """The driver's command (id, p1, value) for a display frame."""
    command = DISPLAY_SETTINGS.get((frame[3], frame[4] if frame[3] == 1 else 0))
    if command == 113:
        return command + frame[6] - 1, frame[2], frame[7]
    return command, frame[2], frame[6]


def run_display(ch, out):
    """Answers the state request, then sends back every setting until sRGB and full brightness."""
    wait_out(ch, "02b500f0")
    for state in ("02b50101020003", "02b50103000046", "02b50104000032"):  # 6500K, 70, 50
        send(ch, state.ljust(128, "0"))
    open(os.path.join(out, "state"), "w").close()
    wanted = {(111, 1, 2), (117, 1, 100)}
    while wanted:
        frame = wait_out(ch, "02b5")
        command = display_command(frame)
        check(command[0] is not None and command[1] == 1,
              "the display understands %s as %s,%s,%s" % ((frame[:8].hex(),) + command))
        send(ch, frame.hex().ljust(128, "0"))
        wanted.discard(command)


def hold_pen(ch, pressure):
    """The pen comes into range at the centre and presses there, and stays."""
    for report in (pen_report(0xa0, 26162, 14800), pen_report(0xa0, 26162, 14800, pressure)):
        reply = ch.request(["send", "tab1", str(IFACE), report])
        check(reply.startswith("ok"), "tab1 takes the pen report (%s)" % reply)


SCENARIOS = {"corners": run_corners, "key": run_key, "wheel": run_wheel, "pressure": run_pressure,
             "stroke": run_stroke, "plug": run_plug, "unplug": run_unplug, "like": run_like,
             "slots": run_slots, "stall": run_stall}


def main(argv):
    cmd, args = (argv[0], argv[1:]) if argv else ("", [])
    if cmd == "emuctl" and args:
        line = Channel().request(args)
        print(line)
        return 0 if line.startswith("ok") else 1
    if cmd == "node" and len(args) == 2:
        node = poll(lambda: next(("/dev/input/" + path.split("/")[4] for path in sorted(
            glob.glob("/sys/class/input/event*/device/name")) if read(path) == args[0]), None), float(args[1]), 0.2)
        print(node or "")
        return 0 if node else 1
    if cmd in SCENARIOS and len(args) >= 2:
        ch, pen = Channel(), PenNode(args[0], args[1])
        try:
            SCENARIOS[cmd](ch, pen, *args[2:])
        finally:
            pen.close()
    elif (cmd, len(args)) in (("ping-app", 1), ("driver", 1), ("hidraw", 0), ("remote", 1),
                            ("display", 1), ("hold", 1)):
        {"ping-app": lambda t: ping_app(float(t)), "driver": lambda want: check_drivers("tab1", {"tab1": want}),
         "hidraw": lambda: check_hidraw(Channel()), "remote": lambda out: run_remote(Channel(), out),
         "display": lambda out: run_display(Channel(), out),
         "hold": lambda p: hold_pen(Channel(), int(p))}[cmd](*args)
    else:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    print("probe %s: %d passed, %d failed" % (cmd, COUNTS[True], COUNTS[False]), flush=True)
    return 0 if COUNTS[True] and not COUNTS[False] else 1


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except (NoReply, OSError) as e:
        print("FAIL: control channel: %s" % e, flush=True)
        sys.exit(1)
