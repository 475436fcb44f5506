"""kpf view: what the server holds when its work is done."""
import pathlib
import unittest

from recordings import header, record
from viewer import ViewTest

WIDTH, HEIGHT, FRAMES = 1280, 1024, 8
ANSWER = FRAMES * WIDTH * HEIGHT * 2


class Memory(ViewTest):
    def own(self):
        """Bytes that are the server's alone."""
        status = pathlib.Path("/proc/%d/status" % self.process.pid).read_text(encoding="ascii")
        return int(dict(line.split(":", 1) for line in status.splitlines())["RssAnon"].split()[0]) * 1024

    def test_many_connections_hold_no_more_than_few(self):
        """Each has a thread of its own; what one of them gives back serves the next."""
        self.write("clip.kpf", header(width=WIDTH, height=HEIGHT, bits=12, frames=FRAMES))
        size = 16 + WIDTH * HEIGHT * 3 // 2
        self.write("clip/clip_0001.div", b"")
        for n in range(FRAMES):  # the pixels are holes, which read as 0
            self.patch("clip/clip_0001.div", n * size, record(n, b""))
        self.cut("clip/clip_0001.div", FRAMES * size)
        self.view("clip.kpf")
        before = self.own()
        for _ in range(12):  # none is closed before the end
            self.assertEqual([frame.state for frame in self.frames(count=FRAMES)], [0] * FRAMES)
        self.assertLess(self.own() - before, 3 * ANSWER)


if __name__ == "__main__":
    unittest.main()
