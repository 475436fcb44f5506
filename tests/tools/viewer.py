"""kpf view, started for a test, and what it answers."""
import http.client
import json
import os
import re
import struct
import subprocess
import urllib.parse

from recordings import KPF, RecordingTest

HEAD = struct.Struct("<4Iq7I12x")


class Frame:
    """One frame as the server sends it: the numbers of its head, and its pictures."""

    def __init__(self, data):
        (self.place, self.state, self.sequence, self.microseconds, self.seconds, self.width, self.height,
         self.bytes, count, self.wraps, self.clips, full) = HEAD.unpack(data[:HEAD.size])
        self.full = bool(full)
        size = self.width * self.height * self.bytes
        at = [HEAD.size + i * size for i in range(count)]
        self.pictures = [data[begin:begin + size] for begin in at]
        self.length = HEAD.size + count * size


class ViewTest(RecordingTest):
    def view(self, *arguments, desktop=None):
        """Starts the server; self.host, self.port and self.root lead to it.

        @param desktop the environment of one, where a browser is to be started."""
        quietly = () if desktop else ("--no-browser",)
        process = subprocess.Popen([KPF, "view", *quietly, *arguments], cwd=self.folder,
                                   env={**os.environ, **(desktop or {})}, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        self.process = process
        self.address = process.stdout.readline().strip()
        parts = re.fullmatch(r"http://(127\.0\.0\.1):(\d+)(/[0-9a-f]{32}/)", self.address)
        self.assertTrue(parts, self.address)
        self.host, self.port, self.root = parts[1], int(parts[2]), parts[3]
        self.origin = "http://%s:%d" % (self.host, self.port)
        return self.address

    def ask(self, path="", method="GET", body=None, headers=None, root=None):
        """Status, headers and body of one answer. A header of None is not sent."""
        connection = http.client.HTTPConnection(self.host, self.port, timeout=60)
        self.addCleanup(connection.close)
        sent = {"Host": "%s:%d" % (self.host, self.port), **(headers or {})}
        connection.putrequest(method, (self.root if root is None else root) + path, skip_host=True,
                              skip_accept_encoding=True)
        for name, value in sent.items():
            for one in value if isinstance(value, list) else [value]:
                connection.putheader(name, one)
        if body is not None:
            connection.putheader("Content-Length", str(len(body)))
        connection.endheaders(body)
        response = connection.getresponse()
        return response.status, response.headers, response.read()

    def json(self, path, **values):
        status, _, body = self.ask("api/%s?%s" % (path, urllib.parse.urlencode(values)))
        self.assertEqual(status, 200, body)
        return json.loads(body)

    def frames(self, **values):
        status, _, body = self.ask("api/frames?" + urllib.parse.urlencode(values))
        self.assertEqual(status, 200, body)
        found = []
        while body:
            found.append(Frame(body))
            body = body[found[-1].length:]
        return found

    def post(self, path, **values):
        status, _, body = self.ask("api/" + path, "POST", json.dumps(values).encode(),
                                   {"Origin": self.origin})
        return status, json.loads(body)
