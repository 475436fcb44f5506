"""A recording that is killed at any moment has lost no frame whose add call had returned."""
import os
import random
import signal
import subprocess
import tempfile
import unittest

CHILD = os.environ["CHILD"]
KPF = os.environ.get("KPF", "")
TRIALS = 50


class Killed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def kill_after(self, frames, name, width, height, bits, total):
        """Kills the child after `frames` reports; how many it made in the end."""
        with subprocess.Popen([CHILD, name, str(width), str(height), str(bits), str(total)],
                              cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as child:
            reported = len(child.stderr.read(frames))
            child.send_signal(signal.SIGKILL)
            return reported + len(child.stderr.read())

    def check_bytes(self, name, reported, size):
        with open(os.path.join(self.folder, name, name + "_0001.div"), "rb") as file:
            data = file.read()
        self.assertGreaterEqual(len(data), reported * (16 + size))
        for n in range(reported):
            record = data[n * (16 + size):(n + 1) * (16 + size)]
            self.assertEqual(record[:4], n.to_bytes(4, "little"))
            fill = n % 251 + 1
            shared = (fill & 0xF0) | fill >> 4
            pattern = bytes([fill]) if size % 3 else bytes([fill, shared, fill])
            self.assertEqual(record[16:], pattern * (size // len(pattern)))
        self.torn = len(data) % (16 + size) != 0
        return len(data) // (16 + size)

    def check_tool(self, name, whole, total, size):
        done = subprocess.run([KPF, "verify", name + ".kpf"], cwd=self.folder,
                              capture_output=True, text=True, check=False)
        # A record that the kill cut in two is a problem, a recording that is only shorter is none.
        self.assertEqual(done.returncode, 1 if self.torn else 0, done.stdout)
        self.assertIn("%d of %d frames" % (whole, total), done.stdout.splitlines()[-1])
        # A recording that is only shorter than announced has no problems, and says so.
        self.assertEqual("announced frames are there" in done.stdout, whole != total)
        done = subprocess.run([KPF, "export", name + ".kpf", "-"], cwd=self.folder,
                              capture_output=True, check=False)
        self.assertEqual((done.returncode, len(done.stdout)),
                         (0 if whole == total else 1, whole * size), done.stderr)

    def trial(self, number, width, height, bits, total, randomness):
        name = "trial%d" % number
        reported = self.kill_after(randomness.randint(1, total), "./" + name + ".kpf", width,
                                   height, bits, total)
        self.assertGreater(reported, 0)
        pixels = width * height
        whole = self.check_bytes(name, reported, pixels if bits == 8 else pixels * 3 // 2)
        if KPF:
            self.check_tool(name, whole, total, pixels if bits == 8 else 2 * pixels)

    def test_small_frames(self):
        randomness = random.Random(1)
        for number in range(TRIALS):
            self.trial(number, 64, 64, 8 if number % 2 else 12, 400, randomness)

    def test_large_frames(self):
        randomness = random.Random(2)
        for number in range(TRIALS):
            self.trial(number % 2, 1280, 1024, 8 if number % 2 else 12, 12, randomness)


if __name__ == "__main__":
    unittest.main()
