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
from pen_probe import (DEVICE, PenNode, Results, plug_in, play, short_stroke)  # noqa: E402

# Hover point and end point of each round; the second differs in x and y from
# where the first ended, so the kernel passes both axes again.
ROUNDS = {"1": ((13081, 7400), (26162, 14800)), "2": ((39243, 22200), (13081, 7400))}


def run_round(name, node, log_path):
    res = Results()
    pen = PenNode(node, log_path)
    channel = Channel()
    what = "round %s" % name
    try:
        if plug_in(res, channel, DEVICE, what):
            play(res, channel, pen, short_stroke(*ROUNDS[name]), what + ": ")
        reply = channel.request(["disconnect", DEVICE])
        res.check(reply.startswith("ok"), "%s: tab1 unplugged (%s)" % (what, reply))
        res.check(pen.dropped == 0, "%s: no SYN_DROPPED (%d)" % (what, pen.dropped))
    except NoReply as e:
        res.check(False, "%s: control channel: %s" % (what, e))
    finally:
        channel.close()
        pen.close()
    return res.exit_status("hotplug " + what)


def main(argv):
    if len(argv) == 3 and argv[0] in ROUNDS:
        return run_round(*argv)
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
