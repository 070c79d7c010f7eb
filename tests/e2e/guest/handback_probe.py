#!/usr/bin/python3
"""Guest side of e2e_sigterm: who holds tab1's vendor interface, and whether
the kernel's own driver passes its reports on again.

    handback_probe.py driver WANT    interface 2 of tab1 is bound to WANT (usbfs, usbhid)
    handback_probe.py hidraw         a report injected on interface 2 comes out of
                                     the interface's hidraw node

The interface's report descriptor is all vendor page 0xFF00, so the kernel
makes no input device of it: its hidraw node is where usbhid shows the
tablet's reports. Prints PASS/FAIL lines; exit 0 when every check passed.
"""
import glob
import os
import select
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from emuctl import Channel, NoReply  # noqa: E402
from pen_probe import LEAVE, Results, pen_report, send  # noqa: E402
from tablets_probe import IFACE, interface_drivers, read  # noqa: E402

DEVICE = "tab1"
NODE_TIMEOUT_S = 10
READ_TIMEOUT_S = 5


def hidraw_node():
    """/dev/hidrawN of tab1's interface 2, or None."""
    for dev in glob.glob("/sys/bus/usb/devices/*"):
        if read(dev + "/serial") != "E2E0000001":
            continue
        pattern = "%s/%s:%s.%d/*/hidraw/hidraw*" % (
            dev, os.path.basename(dev), read(dev + "/bConfigurationValue"), IFACE)
        nodes = glob.glob(pattern)
        if nodes:
            return "/dev/" + os.path.basename(nodes[0])
    return None


def wait_for_node():
    deadline = time.monotonic() + NODE_TIMEOUT_S
    while time.monotonic() < deadline:
        node = hidraw_node()
        if node and os.path.exists(node):
            return node
        time.sleep(0.2)
    return None


def read_report(fd, want):
    """Reads until want arrives; returns (found, other reports read)."""
    others = []
    deadline = time.monotonic() + READ_TIMEOUT_S
    while time.monotonic() < deadline:
        ready, _, _ = select.select([fd], [], [], deadline - time.monotonic())
        if not ready:
            break
        got = os.read(fd, 64)
        if got == want:
            return True, others
        others.append(got.hex())
    return False, others


def check_hidraw(res):
    node = wait_for_node()
    if not res.check(node is not None, "tab1 interface %d has a hidraw node (%s)" % (IFACE, node)):
        return
    # a pen leaving at an odd position: nothing the tablet would send unasked
    report = bytes.fromhex(pen_report(LEAVE, 12345, 6789))
    fd = os.open(node, os.O_RDONLY | os.O_NONBLOCK)
    try:
        send(Channel(), report.hex(), DEVICE)
        found, others = read_report(fd, report)
    finally:
        os.close(fd)
    res.check(found, "%s read the injected report %s...%s"
              % (node, report[:6].hex(), "" if not others else " (also read %s)" % others))


def main(argv):
    res = Results()
    try:
        if len(argv) == 2 and argv[0] == "driver":
            driver = interface_drivers().get(DEVICE)
            res.check(driver == argv[1], "tab1 interface %d is bound to %s (want %s)"
                      % (IFACE, driver, argv[1]))
            return res.exit_status("driver")
        if argv == ["hidraw"]:
            check_hidraw(res)
            return res.exit_status("hidraw")
    except NoReply as e:
        print("FAIL: control channel: %s" % e, flush=True)
        return 1
    print(__doc__.split("\n\n")[1], file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
