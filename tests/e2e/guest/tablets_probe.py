#!/usr/bin/python3
"""Guest side of the multi-tablet tests: several emulated 5a3c:0b40 tablets
(tabN with serial E2E000000N), the driver's slots and its virtual pen.

    tablets_probe.py like NODE LOG          two like tablets, one unplugged and replugged
    tablets_probe.py slots NODE LOG NAMES   six tablets, five slots; NAMES gets which
                                            tablet was left alone and which was replugged

LOG gets every evdev event read. Prints PASS/FAIL lines; exit 0 when every
check passed.

"like" runs with the work area of QTB0610 set to the right half of the tablet
in config.xml (TX 515, TY 0, TW 515, TH 582; the tablet is 1030 x 582, see
pen_probe.py), shared by both tablets since they are of one model:
  left = 515*5080/100 = 26162, top = 0, areaW = 515*52324/1030 = 26162,
  areaH = 582*29600/582 = 29600; a report's x comes out as
  (52324/26162 = 2.0) * (x - 26162) and y unchanged, so x 39243 -> 26162 and
  x 26162 -> 0, both exact through the screen step (fx 400 and 0, see
  pen_probe.py); x 13081 is left of the area and gives no frame at all.
  When tab1 goes, tab2 is closed with it and reopened, reading config.xml
  again; tab1 plugged in again copies the settings of the open tab2.
"slots" runs with the default profile: positions come out unchanged. Five
tablets get the start packet and draw, the sixth none and its interface stays
with usbhid; unplugging one of the five hands its slot to the sixth, and the
unplugged one, plugged in again, finds the slots full.
"""
import glob
import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from emuctl import Channel, NoReply  # noqa: E402
from pen_probe import (PEN, PLUG_TIMEOUT_S, START_PACKET, PenNode, Results, describe,  # noqa: E402
                       pen_report, ping_app, play, plug_in, send, short_stroke, started)

LIKE = ("tab1", "tab2")
SIX = tuple("tab%d" % n for n in range(1, 7))
# The scan has sent every start packet before the virtual pen exists.
SCAN_DONE_S = 5
NO_FRAME_S = 1.5
# USB interface that the driver takes from usbhid
IFACE = 2
LOG = os.path.join(os.environ.get("E2E_OUT", "/e2e/run/out"), "scribora.log")
ARRIVAL_LINE = "ReceiveUsbMsg Vid: 23100 Pid: 2880 state 1"


def right_half(x, y):
    return 2 * (x - 26162), y


# (tablet, hover point, end point), each starting where the last stroke left
# neither x nor y
LIKE_STROKES = {
    "both open": (("tab1", (39243, 7400), (26162, 14800)),
                  ("tab2", (39243, 22200), (26162, 7400))),
    "tab1 gone": (("tab2", (39243, 14800), (26162, 22200)),),
    "tab1 back": (("tab1", (39243, 7400), (26162, 14800)),),
}
GRID_X = (13081, 26162, 39243)


def slot_stroke(n):
    """Stroke n of the slots run: x steps through the grid, y down by 20*148."""
    return (GRID_X[n % 3], 148 * (10 + 20 * n)), (GRID_X[(n + 2) % 3], 148 * (20 + 20 * n))


def read(path):
    try:
        with open(path) as f:
            return f.read().strip()
    except OSError:
        return ""


def interface_drivers():
    """Emulated tablet (serial E2E000000N is tabN) -> driver of its interface 2:
    "usbfs" while a program holds it, None without a driver."""
    drivers = {}
    for dev in glob.glob("/sys/bus/usb/devices/*"):
        serial = read(dev + "/serial")
        if read(dev + "/idVendor") != "5a3c" or not serial[3:].isdigit():
            continue
        link = "%s/%s:%s.%d/driver" % (dev, os.path.basename(dev),
                                       read(dev + "/bConfigurationValue"), IFACE)
        driver = os.path.basename(os.path.realpath(link)) if os.path.islink(link) else None
        drivers["tab%d" % int(serial[3:])] = driver
    return drivers


def check_drivers(res, what, want):
    got = interface_drivers()
    seen = {dev: got.get(dev) for dev in want}
    return res.check(seen == want, "%s: interface %d drivers %s%s"
                     % (what, IFACE, seen, "" if seen == want else " (want %s)" % want))


def strokes(res, channel, pen, what, plan, mapped=lambda x, y: (x, y)):
    for device, a, b in plan:
        play(res, channel, pen, short_stroke(a, b, mapped), "%s: %s: " % (what, device), device)


def no_frame(res, pen, what):
    got = pen.next_frame(NO_FRAME_S)
    return res.check(got is None, "%s: no frame%s" % (what, "" if got is None
                                                       else " (got %s)" % describe(got)))


def unplug(res, channel, device, what, others):
    """Unplugs the device; only output reports to the others after this count."""
    for dev in others:
        channel.ok(["skip-outs", dev])
    reply = channel.request(["disconnect", device])
    return res.check(reply.startswith("ok"), "%s: %s unplugged (%s)" % (what, device, reply))


def closed(res, channel, device, what):
    """The release packet of a close, then the start packet of the reopening."""
    reply = channel.request(["wait-out", device, str(PLUG_TIMEOUT_S), "02b002"])
    res.check(reply.startswith("ok"), "%s: the driver closed %s (release packet: %s)"
              % (what, device, reply))
    return started(res, channel, device, what + ": reopened")


def run_like(node, log_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    try:
        for device in LIKE:
            started(res, channel, device, "at start", SCAN_DONE_S)
        strokes(res, channel, pen, "both open", LIKE_STROKES["both open"], right_half)
        if unplug(res, channel, "tab1", "tab1 gone", ["tab2"]):
            closed(res, channel, "tab2", "tab1 gone")
            strokes(res, channel, pen, "tab1 gone", LIKE_STROKES["tab1 gone"], right_half)
        if plug_in(res, channel, "tab1", "tab1 back"):
            send(channel, pen_report(PEN, 13081, 7400), "tab1")
            no_frame(res, pen, "tab1 back: a hover left of the work area")
            strokes(res, channel, pen, "tab1 back", LIKE_STROKES["tab1 back"], right_half)
        res.check(pen.dropped == 0, "no SYN_DROPPED (%d)" % pen.dropped)
    except NoReply as e:
        res.check(False, "control channel: %s" % e)
    finally:
        channel.close()
        pen.close()
    return res.exit_status("like tablets")


def arrivals():
    return read(LOG).count(ARRIVAL_LINE)


def wait_arrival(res, before, what):
    """Waits until the driver took one more arrival; the app's event loop
    answers only once that handler (600 ms sleep and scan) has returned."""
    for _ in range(PLUG_TIMEOUT_S * 10):
        if arrivals() > before:
            break
        time.sleep(0.1)
    res.check(arrivals() > before, "%s: the driver took the arrival (%s)" % (what, ARRIVAL_LINE))
    res.check(ping_app(30) == 0, "%s: then its event loop answered" % what)


def run_slots(node, log_path, names_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    try:
        opened = [dev for dev in SIX if channel.request(
            ["wait-out", dev, str(SCAN_DONE_S), START_PACKET]).startswith("ok")]
        sixth = [dev for dev in SIX if dev not in opened]
        if not res.check(len(opened) == 5, "five tablets got a start packet (%s), one did not "
                         "(%s)" % (" ".join(opened), " ".join(sixth))):
            return res.exit_status("slots")
        sixth, gone = sixth[0], opened[0]
        with open(names_path, "w") as f:
            f.write("sixth=%s\nreplugged=%s\n" % (sixth, gone))
        check_drivers(res, "at start", dict({dev: "usbfs" for dev in opened}, **{sixth: "usbhid"}))
        strokes(res, channel, pen, "five open",
                [(dev, *slot_stroke(n)) for n, dev in enumerate(opened)])
        channel.ok(["mark", "slots-full"])

        # removal closes every 0b40 and reopens those left: five again, the sixth among them
        if unplug(res, channel, gone, "slot freed", SIX):
            started(res, channel, sixth, "slot freed: the sixth")
            for dev in opened[1:]:
                closed(res, channel, dev, "slot freed")
            strokes(res, channel, pen, "slot freed", [(sixth, *slot_stroke(len(opened)))])
            check_drivers(res, "slot freed", {dev: "usbfs" for dev in opened[1:] + [sixth]})

        channel.ok(["mark", "replug"])
        before = arrivals()
        reply = channel.request(["connect", gone, str(PLUG_TIMEOUT_S)])
        res.check(reply.startswith("ok"), "slots full: %s plugged in again (%s)" % (gone, reply))
        wait_arrival(res, before, "slots full")
        channel.ok(["mark", "replug-settled"])
        check_drivers(res, "slots full", {gone: "usbhid"})
        res.check(pen.dropped == 0, "no SYN_DROPPED (%d)" % pen.dropped)
    except NoReply as e:
        res.check(False, "control channel: %s" % e)
    finally:
        channel.close()
        pen.close()
    return res.exit_status("slots")


def main(argv):
    if len(argv) == 3 and argv[0] == "like":
        return run_like(argv[1], argv[2])
    if len(argv) == 4 and argv[0] == "slots":
        return run_slots(*argv[1:])
    print(__doc__.split("\n\n")[1], file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
