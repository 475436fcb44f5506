"""What kpf must do on Windows, where there is no FFmpeg: names in every script, frames to the byte.

The same holds elsewhere, and is tried there with the tool that was built without FFmpeg.
"""
import os
import subprocess
import unittest

import recordings
from recordings import ON_WINDOWS, RecordingTest, header, run

BARE = os.environ["KPF_WITHOUT_FFMPEG"]

NAME = "Zürich-дом-屋-🏠"
HEAD = b"YUV4MPEG2 W4 H2 F25:1 Ip A1:1 Cmono\n"


class Windows(RecordingTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(setattr, recordings, "KPF", recordings.KPF)
        recordings.KPF = BARE
        os.mkdir(self.path(NAME))
        self.write(NAME + ".kpf", header())
        self.write("%s/%s_0001.div" % (NAME, NAME), run(range(4)) + run([4], pixels=b"\n\r\x1a\0\xff" * 2)[:24])

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def test_recording_is_described_and_checked(self):
        code, out, err = self.kpf("info", NAME + ".kpf")
        self.assertEqual((code, err), (0, ""))
        self.assertTrue(out.startswith("file        %s.kpf\nframe       4 x 2 pixels" % NAME), out)
        self.assertTrue(out.endswith("complete    yes\n"), out)
        self.assertEqual(self.kpf("verify", NAME + ".kpf"),
                         (0, NAME + ".kpf: 5 of 5 frames, 0 placeholders, no problems\n", ""))

    def test_frames_come_out_as_they_are(self):
        frames = b"\x55" * 32 + b"\n\r\x1a\0\xff\n\r\x1a"
        piped = self.kpf_bytes("export", NAME + ".kpf", "-")
        self.assertEqual((piped.returncode, piped.stdout, piped.stderr), (0, frames, b""))
        video = HEAD + b"".join(b"FRAME\n" + frames[i:i + 8] for i in range(0, 40, 8))
        self.assertEqual(self.kpf_bytes("export", NAME + ".kpf", "-", "--y4m").stdout, video)
        for name, expected in ((NAME + ".raw", frames), (NAME + ".y4m", video)):
            self.assertEqual(self.kpf("export", NAME + ".kpf", name), (0, "", ""))
            self.assertEqual(self.read(name), expected)
        self.assertEqual(self.kpf("export", NAME + ".kpf", NAME + "_%02d.pgm"), (0, "", ""))
        self.assertEqual(self.read(NAME + "_04.pgm"), b"P5\n4 2\n255\n" + frames[32:])

    def test_amplified_frames_come_out_too(self):
        arguments = ("amplify", NAME + ".kpf", "--frequency", "12", "--gain", "0")
        self.assertEqual(self.kpf(*arguments, "moving.y4m"), (0, "", ""))
        self.assertEqual(self.read("moving.y4m"),
                         self.kpf_bytes("export", NAME + ".kpf", "-", "--y4m").stdout)

    def test_nothing_is_overwritten_unasked_and_the_input_never(self):
        self.write(NAME + ".raw", b"mine")
        code, _, err = self.kpf("export", NAME + ".kpf", NAME + ".raw")
        self.assertEqual(code, 2)
        self.assertIn(NAME + ".raw is there already", err)
        self.assertEqual(self.read(NAME + ".raw"), b"mine")
        self.assertEqual(self.kpf("export", NAME + ".kpf", NAME + ".raw", "--force"), (0, "", ""))
        self.assertEqual(len(self.read(NAME + ".raw")), 40)
        os.link(self.path("%s/%s_0001.div" % (NAME, NAME)), self.path("link.raw"))
        code, _, err = self.kpf("export", NAME + ".kpf", "link.raw", "--force")
        self.assertEqual(code, 2)
        self.assertIn("is what is read", err)
        self.assertEqual(sorted(os.listdir(self.folder)),
                         sorted(["clip", "clip.kpf", "link.raw", NAME, NAME + ".kpf", NAME + ".raw"]))

    def files(self):
        return sorted(os.path.relpath(os.path.join(folder, name), self.folder)
                      for folder, _, names in os.walk(self.folder) for name in names)

    def test_frames_are_cut_out(self):
        part = "часть-" + NAME
        self.assertEqual(self.kpf("cut", NAME + ".kpf", part + ".kpf", "--from", "1", "--to", "3"),
                         (0, part + ".kpf: 3 frames\n", ""))
        self.assertEqual(self.read(part + ".kpf"), header(frames=3))
        self.assertEqual(self.read("%s/%s_0001.div" % (part, part)), run(range(1, 4)))

    def test_checksums_are_kept_and_compared(self):
        code, _, err = self.kpf("checksum", NAME + ".kpf")
        self.assertEqual((code, err), (0, ""))
        self.assertIn(NAME + ".kpf.checksums.txt", self.files())
        self.assertEqual(self.kpf("verify", "--strict", NAME + ".kpf")[0], 0)
        self.patch("%s/%s_0001.div" % (NAME, NAME), 20, b"\x54")
        code, out, _ = self.kpf("verify", NAME + ".kpf")
        self.assertEqual(code, 1)
        self.assertIn("not the record whose checksum was kept", out)

    def test_what_cannot_be_written_leaves_no_half_file(self):
        self.write(NAME + ".kpf", header(width=64, height=64, frames=50))
        self.write("%s/%s_0001.div" % (NAME, NAME), run(range(50), pixels=bytes(range(256)) * 16))
        self.write("older.raw", b"mine")
        before = self.files()
        for arguments in (("export", NAME + ".kpf", "new.raw"),
                          ("export", NAME + ".kpf", "older.raw", "--force"),
                          ("amplify", NAME + ".kpf", "new.y4m", "--frequency", "12"),
                          ("cut", NAME + ".kpf", "new.kpf")):
            code, out, err = self.kpf(*arguments, "--quiet", file_size=100000)
            self.assertEqual((code, out), (1, ""), arguments)
            self.assertRegex(err, "^kpf: cannot write ")
        self.assertEqual(self.files(), before)
        self.assertEqual(self.read("older.raw"), b"mine")

    def test_killed_export_leaves_no_file_of_that_name(self):
        self.write(NAME + ".kpf", header(width=1024, height=1024, frames=1500))
        os.truncate(self.path("%s/%s_0001.div" % (NAME, NAME)), 1500 * (16 + 1024 * 1024))
        self.write("older.raw", b"mine")
        with subprocess.Popen([BARE, "export", NAME + ".kpf", "older.raw", "--force", "--quiet"],
                              cwd=self.folder) as process:
            while process.poll() is None and not self.halves():
                pass
            process.kill()
        self.assertEqual((len(self.halves()), self.read("older.raw")), (1, b"mine"))

    def halves(self):
        return [name for name in os.listdir(self.folder) if name.endswith(".part")]

    def test_what_needs_ffmpeg_says_so(self):
        for arguments in (("record", "in.avi", NAME + "2.kpf"), ("export", NAME + ".kpf", "out.mkv"),
                          ("amplify", "in.avi", "-")):
            code, out, err = self.kpf(*arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn("this kpf is built without FFmpeg\n", err)

    @unittest.skipUnless(ON_WINDOWS, "elsewhere the libraries may be there")
    def test_what_needs_a_library_that_is_not_to_be_had_says_where_it_is(self):
        for arguments, library in ((("probe", NAME + ".kpf", "--at", "1,1"), "libkissfft-dev"),
                                   (("view", NAME + ".kpf"), "libcpp-httplib-dev"),
                                   (("record", "genicam:", "out.kpf"), "libaravis-dev")):
            code, out, err = self.kpf(*arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertRegex(err, "\nOn Linux .*" + library)

    def test_missing_name_is_told_as_it_was_written(self):
        code, _, err = self.kpf("info", "нет.kpf")
        self.assertEqual(code, 2)
        self.assertIn("kpf: нет.kpf, byte 0: ", err)
        code, _, err = self.kpf("export", NAME + ".kpf", "нет/out.raw")
        self.assertEqual(code, 1)
        self.assertIn("cannot write нет/out.raw: ", err)
        self.assertIn("Make the folder first.", err)

    def test_pipe_that_nobody_reads(self):
        self.write(NAME + ".kpf", header(width=64, height=64, frames=4000))
        with open(self.path("%s/%s_0001.div" % (NAME, NAME)), "r+b") as file:
            file.truncate(4000 * (16 + 4096))
        with subprocess.Popen([BARE, "export", NAME + ".kpf", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdout.close()
            err = process.stderr.read()
            self.assertEqual(process.wait(timeout=60), 1)
        self.assertIn(b"cannot write to standard output", err)


if __name__ == "__main__":
    unittest.main()
