"""The benchmark of long recordings leaves nothing behind, also when it is interrupted."""
import os
import signal
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["SUSTAINED"]


class Sustained(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.environment = dict(os.environ, TMPDIR=self.folder)

    def test_writers_take_their_turns_and_clean_up(self):
        done = subprocess.run(
            [PROGRAM, "--gigabytes", "0.04", "--rate", "200", "--turns", "1", "--small", "0",
             "--trace", "2", "--picture", os.path.join(self.folder, "calls.svg")],
            env=self.environment, capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for writer in ("library", "write", "O_DIRECT"):
            rows = [line for line in done.stdout.splitlines() if line.startswith(writer + " ")]
            self.assertEqual(len(rows), 3, writer)
        self.assertEqual(os.listdir(self.folder), ["calls.svg"])
        with open(os.path.join(self.folder, "calls.svg"), encoding="utf-8") as picture:
            self.assertIn(">library</tspan>", picture.read())

    def test_an_interrupted_one_cleans_up(self):
        with subprocess.Popen([PROGRAM, "--gigabytes", "0.04", "--rate", "1", "--turns", "1",
                               "--only", "library"],
                              env=self.environment, stdout=subprocess.PIPE, text=True) as child:
            for line in child.stdout:  # paced at a frame in 4.7 s, it is in the middle now
                if line.startswith("One stream"):
                    break
            child.send_signal(signal.SIGTERM)
            child.stdout.read()
            self.assertEqual(child.wait(), 130)
        self.assertEqual(os.listdir(self.folder), [])

    def test_what_cannot_be_is_told(self):
        for arguments in (["--frobnicate", "1"], ["--gigabytes"], ["--gigabytes", "-1"],
                          ["--gigabytes", "1e9"]):
            done = subprocess.run([PROGRAM, *arguments], env=self.environment, text=True,
                                  capture_output=True, check=False)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertTrue(done.stderr.startswith("sustained: "), done.stderr)


if __name__ == "__main__":
    unittest.main()
