#!/usr/bin/python3
"""Client of the emulator's control channel, for scripts running in the guest.

    emuctl.py [-t SECONDS] WORD...      e.g. emuctl.py wait-out tab1 60 02b0

Prints the reply line; exit 0 for "ok ...", 1 for "err ...", 2 when there is
no reply (channel missing, or nothing within the time limit).

Python scripts in the guest use Channel, which keeps the port open across
requests (the port takes one opener at a time).
"""
import os
import select
import sys
import time


class NoReply(Exception):
    pass


class Channel:
    def __init__(self):
        path = os.environ.get("E2E_CTL") or "/dev/virtio-ports/usbemu.ctl"
        try:
            self.fd = os.open(path, os.O_RDWR | os.O_NOCTTY)
        except OSError as e:
            raise NoReply("open %s: %s" % (path, e))

    def close(self):
        os.close(self.fd)

    @staticmethod
    def default_limit(words):
        # waiting verbs carry their own timeout; leave the emulator time to answer it
        limit = 30.0
        if words[0] in ("wait-out", "wait-mark") and len(words) > 2:
            limit += float(words[2])
        elif words[0] == "wait-listen" and len(words) > 3:
            limit += float(words[3])
        elif words[0] == "connect" and len(words) > 2:
            limit += float(words[2])
        return limit

    def request(self, words, limit=None):
        """Sends one request line; returns the reply line (raises NoReply)."""
        if limit is None:
            limit = self.default_limit(words)
        self.write(" ".join(words) + "\n")
        return self.reply(words, limit)

    def pipeline(self, requests):
        """Sends all request lines at once, so that the emulator acts on them
        back to back; returns their replies in order."""
        self.write("".join(" ".join(words) + "\n" for words in requests))
        return [self.reply(words, self.default_limit(words)) for words in requests]

    def write(self, text):
        data = text.encode()
        while data:
            data = data[os.write(self.fd, data):]

    def reply(self, words, limit):
        reply = b""
        deadline = time.monotonic() + limit
        while not reply.endswith(b"\n"):
            left = deadline - time.monotonic()
            if left <= 0:
                raise NoReply("no reply to '%s'" % " ".join(words))
            ready, _, _ = select.select([self.fd], [], [], left)
            if not ready:
                continue
            chunk = os.read(self.fd, 1)  # byte by byte: the reply ends at the first newline
            if not chunk:
                # the host end is not connected yet; an empty read does not mean EOF here
                time.sleep(0.05)
                continue
            reply += chunk
        return reply.decode("utf-8", "replace").strip()

    def ok(self, words, limit=None):
        """request() that raises NoReply unless the reply is "ok ..."."""
        line = self.request(words, limit)
        if not line.startswith("ok"):
            raise NoReply("'%s' answered '%s'" % (" ".join(words), line))
        return line


def main(argv):
    limit = None
    if len(argv) > 2 and argv[0] == "-t":
        limit = float(argv[1])
        argv = argv[2:]
    if not argv:
        print("usage: emuctl.py [-t SECONDS] COMMAND...", file=sys.stderr)
        return 2
    try:
        channel = Channel()
        try:
            line = channel.request(argv, limit)
        finally:
            channel.close()
    except NoReply as e:
        print("emuctl: %s" % e, file=sys.stderr)
        return 2
    print(line)
    return 0 if line.startswith("ok") else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
