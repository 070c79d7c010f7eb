#!/usr/bin/python3
"""Checks what the emulated USB devices saw during one e2e run.

    check_events.py RUN_DIR [--window START_MARK STOP_MARK] CHECK...

Checks (repeatable, run in the order given):
  --string-read DEV IDX      a GET_DESCRIPTOR request for string IDX, answered
  --no-string-read DEV IDX   no GET_DESCRIPTOR request for string IDX
  --out DEV HEX              an output report of exactly these bytes, and no other
                             output report beginning with the same two bytes
  --no-out DEV IFACE         no output report on interface IFACE
  --not-opened DEV IFACE     nobody polled the IN endpoint of interface IFACE
  --enumerated DEV           string descriptors were requested from the device
                             (hidapi's enumeration reads them from every device it lists)
  --app-clean NAME           $E2E_OUT/NAME.log has no crash message, NAME.status shows
                             it ran until stopped and ended by SIGTERM or with 0,
                             and the guest kernel logged no fault of it
  --stopped-within NAME SEC  NAME.status shows it ended within SEC seconds of the SIGTERM

With --window, only the events between the two marks count (marks are logged
through the control channel, e.g. by scribora_start/scribora_stop).
Prints PASS/FAIL lines; exit 0 when every check passed, 1 otherwise.
"""
import argparse
import json
import os
import re
import sys

CRASH_PATTERNS = [
    r"Segmentation fault", r"\bSIGSEGV\b", r"\bSIGABRT\b", r"\bAborted\b", r"core dumped",
    r"terminate called", r"AddressSanitizer", r"LeakSanitizer", r"UndefinedBehaviorSanitizer",
    r"runtime error:", r"ASSERT failure", r"ASSERT:", r"double free", r"stack smashing",
    r"free\(\): invalid", r"malloc\(\): ", r"Illegal instruction", r"Bus error",
]


class Checker:
    def __init__(self, run_dir, window):
        self.run_dir = run_dir
        self.passed = 0
        self.failed = 0
        path = os.path.join(run_dir, "events.jsonl")
        self.events = []
        with open(path) as f:
            for n, line in enumerate(f, 1):
                line = line.strip()
                if not line:
                    continue
                try:
                    self.events.append(json.loads(line))
                except ValueError:
                    self.fail("events.jsonl line %d is not JSON: %.80s" % (n, line))
        self.devices = set()
        for e in self.events:
            if e.get("ev") == "started":
                self.devices.update(e.get("devices", []))
        self.lo, self.hi = -1, float("inf")
        self.window_text = "whole run"
        self.window_ok = True
        if window:
            self.window_ok = self.set_window(*window)

    def result(self, ok, text):
        if ok:
            self.passed += 1
            print("PASS: " + text)
        else:
            self.failed += 1
            print("FAIL: " + text)
        return ok

    def fail(self, text):
        return self.result(False, text)

    def set_window(self, start, stop):
        def seq_of(name):
            for e in self.events:
                if e.get("ev") == "mark" and e.get("name") == name:
                    return e["seq"]
            return None
        lo, hi = seq_of(start), seq_of(stop)
        ok = lo is not None and hi is not None and lo < hi
        self.result(ok, "marks %s (seq %s) and %s (seq %s) logged in that order"
                    % (start, lo, stop, hi))
        if ok:
            self.lo, self.hi = lo, hi
            self.window_text = "between %s and %s" % (start, stop)
        return ok

    def dev_events(self, dev, kind):
        if dev not in self.devices:
            self.fail("device %s is not one of the emulated devices %s"
                      % (dev, sorted(self.devices)))
            return None
        return [e for e in self.events
                if e.get("dev") == dev and e.get("ev") == kind and self.lo < e["seq"] < self.hi]

    @staticmethod
    def setup_words(e):
        # "80 06 0364 0409 0200" -> bmRequestType, bRequest, wValue, wIndex, wLength
        return e.get("setup", "").lower().split()

    def string_reads(self, dev, idx):
        ctl = self.dev_events(dev, "control")
        if ctl is None:
            return None
        want = "03%02x" % idx
        return [e for e in ctl if self.setup_words(e)[:3] == ["80", "06", want]]

    def check_string_read(self, dev, idx):
        reads = self.string_reads(dev, int(idx, 0))
        if reads is None:
            return
        answered = [e for e in reads if e.get("status") == 0]
        if answered:
            e = answered[0]
            self.result(True, "%s: GET_DESCRIPTOR string %s requested (setup %s, status 0, %s bytes) %s"
                        % (dev, idx, e["setup"], e.get("reply_len"), self.window_text))
        elif reads:
            self.fail("%s: GET_DESCRIPTOR string %s requested but not answered: %s"
                      % (dev, idx, [(e["setup"], e.get("status")) for e in reads]))
        else:
            self.fail("%s: no GET_DESCRIPTOR string %s request %s" % (dev, idx, self.window_text))

    def check_no_string_read(self, dev, idx):
        reads = self.string_reads(dev, int(idx, 0))
        if reads is None:
            return
        self.result(not reads, "%s: no GET_DESCRIPTOR string %s request %s%s"
                    % (dev, idx, self.window_text,
                       "" if not reads else " (saw %s)" % [e["setup"] for e in reads]))

    def check_out(self, dev, hexdata):
        outs = self.dev_events(dev, "out_report")
        if outs is None:
            return
        want = hexdata.lower().replace(" ", "").replace(":", "")
        exact = [e for e in outs if e.get("data", "").lower() == want
                 and e.get("len") == len(want) // 2]
        if exact:
            e = exact[0]
            self.result(True, "%s: output report %s (%d bytes, interface %s via %s) %s, %d time(s)"
                        % (dev, e["data"], e["len"], e.get("iface"), e.get("via"),
                           self.window_text, len(exact)))
        else:
            self.fail("%s: no output report %s (%d bytes) %s; saw %s"
                      % (dev, want, len(want) // 2, self.window_text,
                         [(e.get("iface"), e.get("data")) for e in outs] or "none"))
        others = [e for e in outs if e.get("data", "").lower().startswith(want[:4])
                  and e not in exact]
        self.result(not others, "%s: no other output report beginning with %s%s"
                    % (dev, want[:4], "" if not others else " (saw %s)"
                       % [(e.get("data"), e.get("len")) for e in others]))

    def check_no_out(self, dev, iface):
        outs = self.dev_events(dev, "out_report")
        if outs is None:
            return
        iface = int(iface, 0)
        bad = [e for e in outs if e.get("iface") == iface]
        elsewhere = [e for e in outs if e.get("iface") != iface]
        note = ""
        if elsewhere:
            # e.g. usbhid's keyboard LED report on the boot keyboard interface
            note = " (other interfaces: %s)" % [(e.get("iface"), e.get("via"), e.get("data"))
                                                for e in elsewhere]
        self.result(not bad, "%s: no output report on interface %d %s%s%s"
                    % (dev, iface, self.window_text,
                       "" if not bad else " (saw %s)" % [e.get("data") for e in bad], note))

    def check_not_opened(self, dev, iface):
        starts = self.dev_events(dev, "irq_start")
        if starts is None:
            return
        iface = int(iface, 0)
        bad = [e for e in starts if e.get("iface") == iface]
        self.result(not bad, "%s: interface %d never polled (not opened) %s%s"
                    % (dev, iface, self.window_text,
                       "" if not bad else " (irq_start at seq %s)" % [e["seq"] for e in bad]))

    def check_enumerated(self, dev):
        ctl = self.dev_events(dev, "control")
        if ctl is None:
            return
        strings = [e for e in ctl if self.setup_words(e)[:2] == ["80", "06"]
                   and self.setup_words(e)[2].startswith("03")]
        self.result(bool(strings), "%s: string descriptors requested %s (%d requests)"
                    % (dev, self.window_text, len(strings)))

    def read_status(self, name):
        status = {}
        try:
            for line in open(os.path.join(self.run_dir, "out", name + ".status")):
                k, _, v = line.strip().partition("=")
                status[k] = v
        except OSError as e:
            self.fail("%s: no status file (%s)" % (name, e))
            return None
        return status

    def check_app_clean(self, name):
        out = os.path.join(self.run_dir, "out")
        log_path = os.path.join(out, name + ".log")
        try:
            text = open(log_path, errors="replace").read()
        except OSError as e:
            self.fail("%s: no output log (%s)" % (name, e))
            text = None
        if text is not None:
            hits = [line for line in text.splitlines()
                    if any(re.search(p, line) for p in CRASH_PATTERNS)]
            self.result(not hits, "%s: no crash message in its output (%d lines)%s"
                        % (name, len(text.splitlines()),
                           "" if not hits else ": " + " | ".join(hits[:5])))
        status = self.read_status(name)
        if status is None:
            return
        self.result(status.get("alive_before_stop") == "1",
                    "%s: still running when it was stopped" % name)
        rc = status.get("exit_status")
        # 143 = killed by the SIGTERM it was sent; 0 = it handled SIGTERM and quit
        self.result(rc in ("0", "143"), "%s: ended by SIGTERM or with status 0 (status %s)"
                    % (name, rc))
        try:
            dmesg = open(os.path.join(self.run_dir, "dmesg.txt"), errors="replace").read()
        except OSError:
            self.fail("no dmesg.txt in the run dir")
            return
        faults = [line for line in dmesg.splitlines()
                  if name in line and re.search(r"segfault|trap|general protection", line)]
        self.result(not faults, "%s: no fault in the guest kernel log%s"
                    % (name, "" if not faults else ": " + " | ".join(faults[:3])))

    def check_stopped_within(self, name, seconds):
        status = self.read_status(name)
        if status is None:
            return
        took = status.get("stop_seconds")
        try:
            ok = float(took) <= float(seconds)
        except (TypeError, ValueError):
            ok = False
        self.result(ok, "%s: ended %s s after SIGTERM (limit %s s)" % (name, took, seconds))


class Ordered(argparse.Action):
    def __call__(self, parser, ns, values, option_string=None):
        ns.checks.append((self.dest, values))


def main():
    p = argparse.ArgumentParser(description="Checks an e2e run's events.jsonl.")
    p.add_argument("run_dir")
    p.add_argument("--window", nargs=2, metavar=("START_MARK", "STOP_MARK"))
    p.set_defaults(checks=[])
    for opt, n in (("--string-read", 2), ("--no-string-read", 2), ("--out", 2),
                   ("--no-out", 2), ("--not-opened", 2), ("--enumerated", 1),
                   ("--app-clean", 1), ("--stopped-within", 2)):
        p.add_argument(opt, nargs=n, action=Ordered, default=argparse.SUPPRESS)
    a = p.parse_args()
    if not a.checks:
        p.error("no check given")
    c = Checker(a.run_dir, a.window)
    run = {"string_read": c.check_string_read, "no_string_read": c.check_no_string_read,
           "out": c.check_out, "no_out": c.check_no_out, "not_opened": c.check_not_opened,
           "enumerated": c.check_enumerated, "app_clean": c.check_app_clean,
           "stopped_within": c.check_stopped_within}
    if c.window_ok:
        for dest, values in a.checks:
            run[dest](*values)
    else:
        # without the window, "nothing happened" checks would pass on the wrong events
        c.fail("%d checks not run: the run has no such window" % len(a.checks))
    print("check_events: %d passed, %d failed (%s)" % (c.passed, c.failed, a.run_dir))
    return 0 if c.failed == 0 and c.passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
