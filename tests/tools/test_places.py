"""A frame's number is its place, whatever is missing before it."""
import os
import subprocess
import unittest

from recordings import KPF, RecordingTest, header, record


class Places(RecordingTest):
    def setUp(self):
        """Six frames of the samples 1, 2, 3 ..., two a data file."""
        super().setUp()
        self.write("clip.kpf", header(per_file=2, frames=6))
        for first in (0, 2, 4):
            self.write("clip/clip_%04d.div" % (first // 2 + 1),
                       self.record(first) + self.record(first + 1))

    def record(self, number):
        return record(number, pixels=bytes([number + 1]) * 8)

    def lose_the_second_file(self):
        os.remove(self.path("clip/clip_0002.div"))

    def frames(self, *arguments, command="export", code=0, err=b""):
        """The first sample of each frame that goes out, 0 where it is lost."""
        done = self.kpf_bytes(command, "clip.kpf", "-", *arguments)
        self.assertEqual((done.returncode, done.stderr), (code, err))
        self.assertEqual(len(done.stdout) % 8, 0)
        return list(done.stdout[::8])

    @staticmethod
    def lost(how_many, which):
        return b"kpf: clip.kpf: %s lost (%s), black is shown instead\n" % (how_many, which)

    def test_missing_data_file_keeps_its_places(self):
        self.lose_the_second_file()
        frames = self.frames(code=1, err=self.lost(b"2 of 6 frames were", b"2-3") +
                             b"kpf: clip.kpf: 2 frames are missing, the first is 2\n")
        self.assertEqual(len(frames), 6)
        self.assertEqual(frames[:2] + frames[4:], [1, 2, 5, 6])

    def test_ranges_are_places(self):
        self.lose_the_second_file()
        self.assertEqual(self.frames("--from", "4"), [5, 6])
        self.assertEqual(self.frames("--to", "1"), [1, 2])
        self.assertEqual(self.frames("--from", "5", "--to", "5"), [6])

    def test_ranges_that_begin_in_a_hole(self):
        self.lose_the_second_file()
        frames = self.frames("--from", "3", code=1, err=self.lost(b"1 of 3 frames was", b"3") +
                             b"kpf: clip.kpf: 1 frame is missing, the first is 3\n")
        self.assertEqual((len(frames), frames[1:]), (3, [5, 6]))

    def test_numbers_are_decimal(self):
        """Whatever zeros stand before them, as in the names of images."""
        self.write("clip.kpf", header(per_file=12, frames=12))
        self.write("clip/clip_0001.div", b"".join(self.record(n) for n in range(12)))
        self.assertEqual(self.frames("--from", "0010", "--to", "00011"), [11, 12])
        self.assertEqual(self.frames("--from", "008", "--to", "0000000000000000000009"), [9, 10])
        self.assertEqual(self.frames("--from", "00", "--to", "000"), [1])
        self.assertEqual(self.kpf("export", "clip.kpf", "frames.y4m"), (0, "", ""))
        self.assertEqual(self.kpf("record", "frames.y4m", "ten.kpf", "--frames", "010"),
                         (0, "./ten.kpf: 10 frames recorded, 0 placeholders\n", ""))

    def test_images_bear_their_places(self):
        self.lose_the_second_file()
        self.assertEqual(self.kpf("export", "clip.kpf", "f_%02d.png", "--from", "4"), (0, "", ""))
        self.assertEqual(sorted(name for name in os.listdir(self.folder) if name[:2] == "f_"),
                         ["f_04.png", "f_05.png"])

    def test_short_data_file_moves_nothing(self):
        self.cut("clip/clip_0002.div", 24 + 9)
        frames = self.frames(code=1, err=self.lost(b"1 of 6 frames was", b"3") +
                             b"kpf: clip.kpf: 1 frame is missing, the first is 3\n")
        self.assertEqual((len(frames), frames[:3] + frames[4:]), (6, [1, 2, 3, 5, 6]))

    def test_recording_that_ends_early(self):
        self.cut("clip/clip_0003.div", 24 + 9)
        self.assertEqual(
            self.frames(code=1, err=b"kpf: clip.kpf: the recording ends after 5 of 6 announced "
                                    b"frames\n"), [1, 2, 3, 4, 5])
        self.assertEqual(self.frames("--to", "3"), [1, 2, 3, 4])

    def test_frames_behind_the_announced_end(self):
        """A header that tells too few: what it does not tell of is not there for anybody."""
        self.write("clip.kpf", header(per_file=8, frames=6))
        self.write("clip/clip_0001.div", b"".join(self.record(n) for n in range(8)))
        line = b"kpf: clip.kpf: 2 frames are behind the announced end\n"
        self.assertEqual(self.frames(code=1, err=line), [1, 2, 3, 4, 5, 6])
        self.assertEqual(self.frames("--to", "2"), [1, 2, 3])
        self.assertEqual(self.frames("--frequency", "12.5", "--gain", "0", command="amplify", code=1,
                                     err=line), [1, 2, 3, 4, 5, 6])
        for command in (("checksum", "clip.kpf"), ("cut", "clip.kpf", "part.kpf")):
            code, _, err = self.kpf(*command)
            self.assertEqual((code, err), (1, line.decode()), command)

    def test_bytes_that_are_of_no_frame(self):
        """Frames that are narrower than they were recorded are none that anybody saw."""
        self.patch("clip.kpf", 176, b"\x02")
        for arguments in ((), ("--to", "1")):
            done = self.kpf_bytes("export", "clip.kpf", "-", *arguments)
            self.assertEqual((done.returncode, done.stderr), (
                1, b"kpf: clip.kpf: 24 bytes in its data files are of no frame\n"))

    def test_recorder_that_never_told_an_end(self):
        self.write("clip.kpf", header(per_file=2, frames=0xFFFFFFFF))
        self.assertEqual(self.frames(code=1, err=b"kpf: clip.kpf: the recording ends after 6 frames, "
                                                 b"and was never closed\n"), [1, 2, 3, 4, 5, 6])

    def test_amplified_frames_keep_their_places(self):
        self.write("clip.kpf", header(per_file=2, frames=8))
        self.write("clip/clip_0004.div", self.record(6) + self.record(7))
        self.lose_the_second_file()
        arguments = ("--gain", "0", "--frequency", "12.5")
        line = b"kpf: clip.kpf: 2 frames are missing, the first is 2\n"
        frames = self.frames(*arguments, command="amplify", code=1,
                             err=self.lost(b"2 of 8 frames were", b"2-3") + line)
        self.assertEqual((len(frames), frames[:2] + frames[4:]), (8, [1, 2, 5, 6, 7, 8]))
        self.assertEqual(self.frames("--from", "6", *arguments, command="amplify", code=1,
                                     err=line), [7, 8])

    def test_file_that_shrinks_while_it_is_read(self):
        self.write("clip.kpf", header(width=64, height=64, frames=2000))
        self.write("clip/clip_0001.div",
                   b"".join(record(n, pixels=b"\x07" * 4096) for n in range(2000)))
        with subprocess.Popen([KPF, "export", "clip.kpf", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            first = process.stdout.read(4096)  # at work; the pipe is full long before the end
            self.cut("clip/clip_0001.div", 10 * 4112)
            rest, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertRegex(err, rb"\nkpf: clip.kpf: \d+ frames are unreadable \(clip/clip_0001.div, "
                              rb"byte \d+: the file has become shorter\)\n$")
        self.assertEqual(len(first + rest), 2000 * 4096)
        self.assertEqual(first, b"\x07" * 4096)

    def test_header_alone_takes_no_memory_and_begins_nothing(self):
        self.write("clip.kpf", header(width=65535, height=32000, frames=1))
        for name in os.listdir(self.path("clip")):
            os.remove(self.path("clip/" + name))
        for command in ("export", "amplify"):
            code, out, err = self.kpf(command, "clip.kpf", "out.mkv")
            self.assertEqual((code, out), (2, ""))
            self.assertIn("kpf: clip.kpf holds no such frames: it has none at all\n", err)
        self.assertFalse(os.path.exists(self.path("out.mkv")))

    def test_frames_beyond_the_memory_are_told(self):
        self.write("clip.kpf", header(width=65535, height=32000, frames=1))
        for name in os.listdir(self.path("clip")):
            os.remove(self.path("clip/" + name))
        self.write("clip/clip_0001.div", b"\x01")
        os.truncate(self.path("clip/clip_0001.div"), 16 + 65535 * 32000)
        limited = ["bash", "-c", 'ulimit -v 1500000; exec "$0" "$@"', KPF]
        if subprocess.run([*limited, "--version"], capture_output=True, check=False).returncode != 0:
            self.skipTest("sanitizers want more")
        done = subprocess.run([*limited, "verify", "clip.kpf"], cwd=self.folder, timeout=60,
                              capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (
            1, b"kpf: the system gives no more memory\nThe job was cut short. Close other "
               b"programs.\n"))

    def test_millions_of_records_that_take_no_room(self):
        self.write("clip.kpf", header(width=0, frames=134217727))
        self.cut("clip/clip_0001.div", 0)
        self.cut("clip/clip_0001.div", 16 * 134217727)
        code, out, err = self.kpf("info", "clip.kpf")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("134217727 announced, 134217727 written, 134217727 placeholders", out)
        code, out, err = self.kpf("verify", "clip.kpf")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("record 0, byte 0: 134217727 placeholders, the last is record 134217726", out)
        for command in ("export", "amplify"):
            code, _, err = self.kpf(command, "clip.kpf", "-")
            self.assertEqual(code, 2)
            self.assertIn("its frames have no pixels", err)

    def test_numbers_beyond_the_end_are_told_with_the_places(self):
        self.lose_the_second_file()
        code, _, err = self.kpf("export", "clip.kpf", "-", "--from", "6")
        self.assertEqual(code, 2)
        self.assertIn("it has 6, from 0 on", err)


if __name__ == "__main__":
    unittest.main()
