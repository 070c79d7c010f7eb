#!/usr/bin/python3
"""Checks what the emulated USB devices saw during one e2e run (events.jsonl).

    check_events.py RUN_DIR [--window START_MARK STOP_MARK] CHECK...

  --string-read DEV IDX     a GET_DESCRIPTOR request for string IDX, answered
  --enumerated DEV          string descriptors were requested (hidapi's enumeration reads them)
  --left-alone DEV          no request for string 100, no output report on interface 2, nobody polled it
  --out DEV HEX             an output report of exactly these bytes, no other beginning with its first two
  --log-lines NAME N TEXT   out/NAME.log has at least N lines with TEXT
  --app-clean NAME SEC      out/NAME.log has no crash message, NAME.status shows it ran until
                            stopped and ended by SIGTERM or with 0 within SEC s, no kernel fault of it

With --window, only the events between the two marks count. Exit 0 when every check passed.
"""
import json
import os
import re
import sys

CRASH = re.compile(r"Segmentation fault|\bSIGSEGV\b|\bSIGABRT\b|\bAborted\b|core dumped|terminate called|"
    r"AddressSanitizer|LeakSanitizer|UndefinedBehaviorSanitizer|runtime error:|ASSERT failure|"
    r"ASSERT:|double free|stack smashing|free\(\): invalid|malloc\(\): |Illegal instruction|Bus error")
ARITY = {"--window": 2, "--string-read": 2, "--enumerated": 1, "--left-alone": 1, "--out": 2, "--app-clean": 2, "--log-lines": 3}
IFACE = 2


class Checker:
    def __init__(self, run_dir):
        self.run_dir, self.passed, self.failed = run_dir, 0, 0
        with open(os.path.join(run_dir, "events.jsonl")) as f:
            self.events = [json.loads(line) for line in f if line.strip()]
        self.devices = {d for e in self.events if e["ev"] == "started" for d in e["devices"]}
        self.lo, self.hi, self.where = -1, float("inf"), "in the whole run"

    def result(self, ok, text):
        print(("PASS: " if ok else "FAIL: ") + text)
        self.passed += bool(ok)
        self.failed += not ok
        return ok

    def none(self, found, text):
        return self.result(not found, "%s %s%s" % (text, self.where, "" if not found else
                                                   " (seq %s)" % [e["seq"] for e in found]))

    def window(self, start, stop):
        seqs = [next((e["seq"] for e in self.events if e["ev"] == "mark" and e["name"] == m), None)
                for m in (start, stop)]
        ok = None not in seqs and seqs[0] < seqs[1]
        self.result(ok, "marks %s (seq %s) and %s (seq %s) logged in that order" % (start, seqs[0], stop, seqs[1]))
        if ok:
            (self.lo, self.hi), self.where = seqs, "between %s and %s" % (start, stop)
        return ok

    def of(self, dev, kind, match=lambda e: True):
        """The device's events of this kind in the window that match."""
        if dev not in self.devices:
            raise ValueError("device %s is not one of %s" % (dev, sorted(self.devices)))
        return [e for e in self.events if e["dev"] == dev and e["ev"] == kind
                and self.lo < e["seq"] < self.hi and match(e)]

    def string_reads(self, dev, idx):
        # setup "80 06 0364 0409 0200": bmRequestType, bRequest, wValue, wIndex, wLength
        return self.of(dev, "control", lambda e: e["setup"].split()[:3] == ["80", "06", "03%02x" % idx])

    def string_read(self, dev, idx):
        reads = self.string_reads(dev, int(idx, 0))
        self.result(any(e["status"] == 0 for e in reads), "%s: GET_DESCRIPTOR string %s requested and "
                    "answered %s (%s)" % (dev, idx, self.where, [(e["setup"], e["status"]) for e in reads]))

    def enumerated(self, dev):
        strings = self.of(dev, "control", lambda e: e["setup"].startswith("80 06 03"))
        self.result(bool(strings), "%s: string descriptors requested %s (%d requests)"
                    % (dev, self.where, len(strings)))

    def left_alone(self, dev):
        self.none(self.string_reads(dev, 100), "%s: no GET_DESCRIPTOR string 100 request" % dev)
        # other interfaces may get some, e.g. usbhid's keyboard LED report
        self.none(self.of(dev, "out_report", lambda e: e.get("iface") == IFACE),
                  "%s: no output report on interface %d" % (dev, IFACE))
        self.none(self.of(dev, "irq_start", lambda e: e.get("iface") == IFACE),
                  "%s: interface %d never polled (not opened)" % (dev, IFACE))

    def out(self, dev, hexdata):
        want = hexdata.lower().replace(" ", "")
        outs = self.of(dev, "out_report")
        exact = [e for e in outs if e["data"] == want]
        self.result(bool(exact), "%s: output report %s %s, %d time(s)%s"
                    % (dev, want, self.where, len(exact), "" if exact else "; saw %s"
                       % [(e.get("iface"), e["data"]) for e in outs]))
        others = [e["data"] for e in outs if e["data"].startswith(want[:4]) and e["data"] != want]
        self.result(not others, "%s: no other output report beginning with %s%s"
                    % (dev, want[:4], "" if not others else " (saw %s)" % others))

    def read(self, *path):
        try:
            with open(os.path.join(self.run_dir, *path), errors="replace") as f:
                return f.read()
        except OSError as e:
            self.result(False, "cannot read %s (%s)" % (os.path.join(*path), e))
            return ""

    def log_lines(self, name, least, text):
        count = sum(text in line for line in self.read("out", name + ".log").splitlines())
        self.result(count >= int(least), "%s: %d lines with '%s' (want %s or more)" % (name, count, text, least))

    def app_clean(self, name, seconds):
        lines = self.read("out", name + ".log").splitlines()
        hits = [line for line in lines if CRASH.search(line)]
        self.result(not hits, "%s: no crash message in its output (%d lines)%s"
                    % (name, len(lines), "" if not hits else ": " + " | ".join(hits[:5])))
        status = dict(line.partition("=")[::2] for line in self.read("out", name + ".status").splitlines())
        self.result(status.get("alive_before_stop") == "1", "%s: still running when it was stopped" % name)
        # 143 = killed by the SIGTERM it was sent; 0 = it handled SIGTERM and quit
        self.result(status.get("exit_status") in ("0", "143"), "%s: ended by SIGTERM or with "
                    "status 0 (status %s)" % (name, status.get("exit_status")))
        took = status.get("stop_seconds", "nan")
        self.result(float(took) <= float(seconds), "%s: ended %s s after SIGTERM (limit %s s)" % (name, took, seconds))
        faults = [line for line in self.read("dmesg.txt").splitlines()
                  if name in line and re.search(r"segfault|trap|general protection", line)]
        self.result(not faults, "%s: no fault in the guest kernel log%s"
                    % (name, "" if not faults else ": " + " | ".join(faults[:3])))


def main(argv):
    if len(argv) < 2:
        sys.exit(__doc__)
    c, args = Checker(argv[0]), argv[1:]
    while args:
        n = ARITY.get(args[0], 0)
        opt, values, args = args[0], args[1:1 + n], args[1 + n:]
        if opt not in ARITY or len(values) != n:
            c.result(False, "bad check %s %s" % (opt, values))
            break
        try:
            ok = getattr(c, opt[2:].replace("-", "_"))(*values)
        except (ValueError, KeyError) as e:
            ok = c.result(False, "%s %s: %s" % (opt, " ".join(values), e))
        if opt == "--window" and not ok:
            # without the window, "nothing happened" checks would pass on the wrong events
            c.result(False, "checks not run: the run has no such window")
            break
    print("check_events: %d passed, %d failed (%s)" % (c.passed, c.failed, argv[0]))
    return 0 if c.failed == 0 and c.passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
