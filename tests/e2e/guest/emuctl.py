#!/usr/bin/python3
"""Client of the emulator's control channel, for scripts running in the guest.

    emuctl.py [-t SECONDS] WORD...      e.g. emuctl.py wait-out tab1 60 02b0

Prints the reply line; exit 0 for "ok ...", 1 for "err ...", 2 when there is
no reply (channel missing, or nothing within the time limit).
"""
import os
import select
import sys
import time


def main(argv):
    limit = None
    if len(argv) > 2 and argv[0] == "-t":
        limit = float(argv[1])
        argv = argv[2:]
    if not argv:
        print("usage: emuctl.py [-t SECONDS] COMMAND...", file=sys.stderr)
        return 2
    if limit is None:
        # waiting verbs carry their own timeout; leave the emulator time to answer it
        limit = 30.0
        if argv[0] in ("wait-out", "wait-mark") and len(argv) > 2:
            limit += float(argv[2])
        elif argv[0] == "wait-listen" and len(argv) > 3:
            limit += float(argv[3])
        elif argv[0] == "connect" and len(argv) > 2:
            limit += float(argv[2])
    path = os.environ.get("E2E_CTL") or "/dev/virtio-ports/usbemu.ctl"
    try:
        fd = os.open(path, os.O_RDWR | os.O_NOCTTY)
    except OSError as e:
        print("emuctl: open %s: %s" % (path, e), file=sys.stderr)
        return 2
    os.write(fd, (" ".join(argv) + "\n").encode())
    reply = b""
    deadline = time.monotonic() + limit
    while not reply.endswith(b"\n"):
        left = deadline - time.monotonic()
        if left <= 0:
            print("emuctl: no reply to '%s'" % " ".join(argv), file=sys.stderr)
            return 2
        ready, _, _ = select.select([fd], [], [], left)
        if not ready:
            continue
        chunk = os.read(fd, 1)  # byte by byte: the reply ends at the first newline
        if not chunk:
            # the host end is not connected yet; an empty read does not mean EOF here
            time.sleep(0.05)
            continue
        reply += chunk
    line = reply.decode("utf-8", "replace").strip()
    print(line)
    return 0 if line.startswith("ok") else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
