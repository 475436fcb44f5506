"""The tool without FFmpeg: recordings stay within reach, videos and images are refused."""
import os
import shutil
import subprocess
import unittest

from recordings import ON_WINDOWS, RecordingTest, slashes

BARE = os.environ["KPF_WITHOUT_FFMPEG"]


class WithoutFFmpeg(RecordingTest):
    """Everything here is run by the tool that was built without it."""

    def bare(self, *arguments):
        done = subprocess.run([BARE, *arguments], cwd=self.folder, capture_output=True, timeout=60,
                              check=False)
        return done.returncode, done.stdout, done.stderr.decode()

    @unittest.skipUnless(shutil.which("ldd") and not ON_WINDOWS, "needs ldd")
    def test_no_library_of_ffmpeg_is_loaded(self):
        out = subprocess.run(["ldd", BARE], capture_output=True, text=True, check=True).stdout
        self.assertIn("libvlm_internal", out)
        for library in ("libav", "libsw"):
            self.assertNotIn(library, out)

    def test_recordings_are_described_and_checked(self):
        for command in ("info", "verify"):
            code, out, err = self.bare(command, "clip.kpf")
            self.assertEqual((code, slashes(out.decode()), err), self.kpf(command, "clip.kpf"))
            self.assertEqual((code, err), (0, ""))

    def test_frames_go_into_a_pipe(self):
        self.assertEqual(self.bare("export", "clip.kpf", "-", "--to", "1"), (0, b"\x55" * 16, ""))

    def test_plain_files_are_made(self):
        head = b"YUV4MPEG2 W4 H2 F25:1 Ip A1:1 Cmono\n"
        frame = b"\x55" * 8
        for name, expected in (("out.raw", frame * 2), ("out.y4m", head + 2 * (b"FRAME\n" + frame)),
                               ("out.pgm", b"P5\n4 2\n255\n" + frame)):
            last = "0" if name == "out.pgm" else "1"
            self.assertEqual(self.bare("export", "clip.kpf", name, "--to", last), (0, b"", ""))
            with open(self.path(name), "rb") as file:
                self.assertEqual(file.read(), expected)

    def test_recordings_are_amplified(self):
        self.assertEqual(self.bare("amplify", "clip.kpf", "-", "--frequency", "12", "--gain", "0"),
                         (0, b"\x55" * 40, ""))

    def test_videos_and_images_are_refused(self):
        for arguments in (("record", "in.avi", "out.kpf"), ("amplify", "in.avi", "-"),
                          ("export", "clip.kpf", "out.mkv"), ("export", "clip.kpf", "f_%d.png"),
                          ("amplify", "clip.kpf", "out.mp4", "--frequency", "12")):
            code, out, err = self.bare(*arguments)
            self.assertEqual((code, out), (2, b""), arguments)
            self.assertIn("this kpf is built without FFmpeg\n", err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["clip", "clip.kpf"])

    def test_help_is_the_same(self):
        for command in ("record", "export"):
            code, out, err = self.bare(command, "--help")
            self.assertEqual((code, out.decode(), err), self.kpf(command, "--help"))


if __name__ == "__main__":
    unittest.main()
