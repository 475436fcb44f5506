"""What cannot be written is no success: what a full disk does, without the right to mount one."""
import os
import subprocess
import unittest

from recordings import KPF, header, record
from videos import VideoTest, y4m

LIMIT = 300000  # bytes that a file may have; each job here would write more


class FullDisk(VideoTest):
    def setUp(self):
        """Sixty frames of 100 x 100 pixels that no encoder makes small."""
        super().setUp()
        os.remove(self.path("eight.y4m"))
        os.remove(self.path("sixteen.y4m"))
        self.frames = [list(os.urandom(10000)) for _ in range(60)]
        self.write("in.y4m", y4m(self.frames, 100, 100))
        self.write("clip.kpf", header(width=100, height=100, frames=60))
        self.write("clip/clip_0001.div",
                   b"".join(record(n, pixels=bytes(f)) for n, f in enumerate(self.frames)))
        self.before = self.files()

    def files(self):
        return sorted(os.path.join(folder, name)
                      for folder, _, names in os.walk(self.folder) for name in names)

    def meet_limit(self, *arguments):
        """What a job says that meets the limit."""
        code, out, err = self.kpf(*arguments, file_size=LIMIT)
        self.assertEqual((code, out), (1, ""), arguments)
        return err

    def test_videos(self):
        for arguments in (("export", "clip.kpf", "out.mkv"), ("export", "clip.kpf", "out.mp4"),
                          ("amplify", "clip.kpf", "out.avi", "--frequency", "12")):
            self.assertIn(arguments[2], self.meet_limit(*arguments))
            self.assertEqual(self.files(), self.before, arguments)

    def test_recordings(self):
        said = self.meet_limit("record", "in.y4m", "new.kpf")
        self.assertIn("29 of 30 frames are on disk", said)
        code, out, _ = self.kpf("verify", "new.kpf")
        self.assertEqual(code, 0, out)
        self.assertIn("29 of 30 frames", out)

    def test_checksums(self):
        """A line is longer than the smallest record, so that the recording fits and they do not."""
        self.write("in.y4m", y4m([[n, n + 1] for n in range(200)], 2, 1))
        code, out, err = self.kpf("record", "in.y4m", "new.kpf", "--checksums", file_size=3800)
        self.assertEqual((code, out), (1, ""))
        self.assertEqual(err, "kpf: ./new.kpf: 200 of 200 frames are on disk: not all of their "
                              "checksums are\n"
                              "What is there can be read; kpf verify tells what is missing.\n")
        self.assertFalse(os.path.exists(self.path("new.kpf.incomplete.txt")))
        self.assertIn("checksum", self.kpf("verify", "new.kpf")[1])

    def test_results(self):
        """No limit ends a command in the midst of its work: what it had begun is taken away."""
        for arguments in (("probe", "clip.kpf", "--box", "10,10,20,20", "--map", "map.raw",
                           "--waveform", "waveform.csv"),
                          ("sheet", "in.y4m", "clip.kpf", "page.png")):
            code, out, err = self.kpf(*arguments, file_size=4000)
            self.assertEqual((code, out), (1, ""), arguments)
            self.assertRegex(err, r"(?m)^kpf: cannot write (map.raw|page.png): File too large$")
            self.assertFalse([name for name in self.files() if name.endswith(".part")])
        for command in ("info", "verify"):
            with open(self.path("said.txt"), "wb") as said:
                said.truncate(4096)
                said.seek(4096)
                done = subprocess.run(["bash", "-c", 'ulimit -f 4; exec "$0" "$@"', KPF, command,
                                       "clip.kpf"], cwd=self.folder, stdout=said, timeout=60,
                                      stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 1)
            self.assertIn(b"cannot write to standard output: File too large", done.stderr)

    def test_cuts(self):
        said = self.meet_limit("cut", "clip.kpf", "new.kpf")
        self.assertIn("cannot write ./new/new_0001.div: File too large", said)
        self.assertEqual(self.files(), self.before)


if __name__ == "__main__":
    unittest.main()
