#!/usr/bin/python3
"""Guest side of e2e_hotplug: plugs tab1 in, draws a short stroke, unplugs it,
and does it again, reading the driver's virtual pen through the guest kernel.

    hotplug_probe.py ROUND NODE LOG    ROUND 1 or 2: plug in, stroke, unplug

The mapping is exact at these positions (see pen_probe.py): x 13081, 26162,
39243 and y 148*j come out unchanged; pressure p comes out as p. Each round
starts where the last one left no value, so every expected frame is complete.
Prints PASS/FAIL lines; exit 0 when every check passed.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from emuctl import Channel, NoReply  # noqa: E402
from pen_probe import (ABS_PRESSURE, ABS_X, ABS_Y, BTN_TOOL_PEN, BTN_TOUCH, DEVICE,  # noqa: E402
                       FRAME_TIMEOUT_S, LEAVE, PEN, PenNode, Results, abs_, check_frame, key,
                       pen_report, send)

# Hover point and end point of each round; the second differs in x and y from
# where the first ended, so the kernel passes both axes again.
ROUNDS = {"1": ((13081, 7400), (26162, 14800)), "2": ((39243, 22200), (13081, 7400))}
PLUG_TIMEOUT_S = 60
DOWN_PRESSURE, MOVE_PRESSURE = 1000, 2000


def stroke(a, b):
    (ax, ay), (bx, by) = a, b
    return [
        ("hover enters", pen_report(PEN, ax, ay),
         [key(BTN_TOOL_PEN, 1), abs_(ABS_X, ax), abs_(ABS_Y, ay)]),
        ("tip down", pen_report(PEN, ax, ay, DOWN_PRESSURE),
         [abs_(ABS_PRESSURE, DOWN_PRESSURE), key(BTN_TOUCH, 1)]),
        ("move", pen_report(PEN, bx, by, MOVE_PRESSURE),
         [abs_(ABS_X, bx), abs_(ABS_Y, by), abs_(ABS_PRESSURE, MOVE_PRESSURE)]),
        ("tip up", pen_report(PEN, bx, by),
         [abs_(ABS_PRESSURE, 0), key(BTN_TOUCH, 0)]),
        ("pen leaves", pen_report(LEAVE, bx, by), [key(BTN_TOOL_PEN, 0)]),
    ]


def run_round(name, node, log_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    try:
        # only a start packet of this attachment counts
        channel.ok(["skip-outs", DEVICE])
        reply = channel.request(["connect", DEVICE, str(PLUG_TIMEOUT_S)])
        res.check(reply.startswith("ok"), "round %s: tab1 plugged in (%s)" % (name, reply))
        reply = channel.request(["wait-out", DEVICE, str(PLUG_TIMEOUT_S), "02b0"])
        if res.check(reply.startswith("ok"),
                     "round %s: the driver opened tab1 and sent its start packet (%s)"
                     % (name, reply)):
            for what, report, want in stroke(*ROUNDS[name]):
                send(channel, report)
                check_frame(res, "round %s: %s" % (name, what), pen.next_frame(FRAME_TIMEOUT_S),
                            want)
        reply = channel.request(["disconnect", DEVICE])
        res.check(reply.startswith("ok"), "round %s: tab1 unplugged (%s)" % (name, reply))
        res.check(pen.dropped == 0, "round %s: no SYN_DROPPED (%d)" % (name, pen.dropped))
    except NoReply as e:
        res.check(False, "round %s: control channel: %s" % (name, e))
    finally:
        channel.close()
        pen.close()
    return res.exit_status("hotplug round %s" % name)


def main(argv):
    if len(argv) == 3 and argv[0] in ROUNDS:
        return run_round(*argv)
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
