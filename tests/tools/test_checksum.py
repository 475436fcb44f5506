"""Checksums: kept by record and checksum, compared by verify."""
import os
import subprocess
import unittest

from recordings import KPF, RecordingTest, header, record, run
from videos import VideoTest

KEPT = "clip.kpf.checksums.txt"
FIRST = "kpf checksums 1 xxh3-64 000102030405060708090a0b0c0d0e0f\n"


class Checksum(RecordingTest):
    def keep(self, *arguments):
        self.assertEqual(self.kpf("checksum", "clip.kpf", *arguments),
                         (0, KEPT + ": 5 checksums\n", ""))

    def read(self, name=KEPT):
        with open(self.path(name), encoding="ascii") as file:
            return file.read()

    def problems(self):
        code, out, err = self.kpf("verify", "clip.kpf")
        self.assertEqual((code, err), (1, ""), out)
        return out.splitlines()[:-1]

    def test_one_line_a_record(self):
        self.keep()
        lines = self.read().splitlines(keepends=True)
        self.assertEqual((lines[0], len(lines)), (FIRST, 6))
        for place, line in enumerate(lines[1:]):
            self.assertRegex(line, "^%d [0-9a-f]{16}\n$" % place)
        # Of the records: equal ones have equal checksums.
        self.write("clip/clip_0001.div", record(7) * 5)
        self.keep("--force")
        self.assertEqual(len({line.split()[1] for line in self.read().splitlines()[1:]}), 1)

    def test_known_checksum(self):
        # XXH3 of 24 zero bytes, by another program: head -c 24 /dev/zero | xxhsum -H3
        self.write("clip/clip_0001.div", bytes(24))
        self.write("clip.kpf", header(frames=1))
        self.assertEqual(self.kpf("checksum", "clip.kpf", "--quiet"), (0, "", ""))
        self.assertEqual(self.read().splitlines()[1], "0 743df94ee4c78a2a")

    def test_sound_recording_stays_sound(self):
        self.keep()
        self.assertEqual(self.kpf("verify", "--strict", "clip.kpf")[0], 0)

    def test_one_flipped_pixel_is_found_and_named(self):
        self.keep()
        self.patch("clip/clip_0001.div", 3 * 24 + 20, b"\x54")
        self.assertEqual(self.problems(), [
            "clip/clip_0001.div, record 3, byte 72: not the record whose checksum was kept",
            "The first missing or damaged record is 3 (clip/clip_0001.div, byte 72)."])

    def test_record_that_became_a_hole(self):
        self.keep()
        self.cut("clip/clip_0001.div", 48)
        self.cut("clip/clip_0001.div", 120)
        self.assertEqual(len([line for line in self.problems() if "checksum" in line]), 3)

    def test_records_that_went_missing(self):
        self.keep()
        self.cut("clip/clip_0001.div", 48)
        self.assertEqual(self.problems()[0],
                         KEPT + ", record 2, byte 0: 3 records of which the checksum was kept "
                         "cannot be read")

    def test_recorder_that_was_killed_has_kept_the_first_ones(self):
        self.keep()
        os.truncate(self.path(KEPT), len(FIRST) + 2 * 19 + 7)
        note = "note: %s, record 2, byte 0: no checksum was kept of 3 records\n" % KEPT
        code, out, _ = self.kpf("verify", "clip.kpf")
        self.assertEqual((code, out[:len(note)]), (0, note))
        self.assertEqual(self.kpf("verify", "--strict", "clip.kpf")[0], 1)

    def test_recording_without_frames(self):
        for frames, data in ((0, run(range(5))), (5, b"")):
            self.write("clip.kpf", header(frames=frames))
            self.write("clip/clip_0001.div", data)
            code, out, err = self.kpf("checksum", "clip.kpf")
            self.assertEqual((code, out), (2, ""))
            self.assertIn("it has none at all", err)
            self.assertFalse(os.path.exists(self.path(KEPT)))

    def test_checksums_of_another_recording_are_a_note(self):
        self.keep()
        self.patch("clip.kpf", 1698, b"\xff")
        self.patch("clip.kpf", 1714, b"\xff")
        code, out, _ = self.kpf("verify", "clip.kpf")
        self.assertEqual((code, out.splitlines()[0]), (
            0, "note: " + KEPT + ", byte 0: the checksums are those of another recording of this "
               "name"))

    def test_files_that_are_none(self):
        for text, said in (("", "not a file of checksums"), ("x" * 5000, "not a file of checksums"),
                           (FIRST + "0 12345\n", "line 2 is no checksum"),
                           (FIRST + "1 %016x\n0 %016x\n" % (0, 0), "line 3 is no checksum"),
                           (FIRST + "x" * 5000, "line 2 is no checksum"),
                           (FIRST + "4294967296 %016x\n" % 0, "line 2 is no checksum")):
            self.write(KEPT, text.encode())
            self.assertIn("%s, byte 0: %s" % (KEPT, said), self.problems(), text[:80])
        os.remove(self.path(KEPT))
        os.mkfifo(self.path(KEPT))
        self.assertIn(KEPT + ", byte 0: not a file of checksums", self.problems())

    def test_older_checksums_are_kept_unless_told(self):
        self.keep()
        code, _, err = self.kpf("checksum", "clip.kpf")
        self.assertEqual(code, 2)
        self.assertIn("is there already", err)

    def test_missing_records_are_no_success(self):
        self.split()
        os.remove(self.path("clip/clip_0002.div"))
        self.assertEqual(self.kpf("checksum", "clip.kpf"),
                         (1, "", "kpf: clip.kpf: 2 frames are missing, the first is 2\n"))
        self.assertEqual([line.split()[0] for line in self.read().splitlines()[1:]],
                         ["0", "1", "4"])

    def test_recording_that_ends_early_is_no_success(self):
        self.cut("clip/clip_0001.div", 72)
        self.assertEqual(self.kpf("checksum", "clip.kpf"), (
            1, "", "kpf: clip.kpf: the recording ends after 3 of 5 announced frames\n"))
        self.assertEqual(len(self.read().splitlines()), 4)

    def test_what_cannot_be_written_leaves_nothing(self):
        self.write("clip.kpf", header(frames=5000))
        self.write("clip/clip_0001.div", run(range(5000)))
        code, _, err = self.kpf("checksum", "clip.kpf", file_size=20000)
        self.assertEqual(code, 1)
        self.assertIn("kpf: cannot write " + KEPT, err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["clip", "clip.kpf"])


class Recorded(VideoTest):
    def setUp(self):
        super().setUp()
        os.remove(self.path("clip.kpf"))
        os.remove(self.path("clip/clip_0001.div"))

    def test_record_keeps_what_checksum_would(self):
        for arguments in ((), ("--bits", "12"), ("--frames", "3")):
            self.record("sixteen.y4m", "clip.kpf", "--checksums", "--force", *arguments)
            kept = self.read(KEPT)
            self.assertEqual(self.kpf("checksum", "clip.kpf", "--force", "--quiet"), (0, "", ""))
            self.assertEqual(self.read(KEPT), kept)
            self.assertEqual(len(kept.splitlines()), 4 if arguments[:1] == ("--frames",) else 6)
            self.assertEqual(self.kpf("verify", "--strict", "clip.kpf")[0], 0)

    def test_checksums_that_are_being_kept_are_no_problem(self):
        with subprocess.Popen([KPF, "record", "-", "clip.kpf", "--checksums"], cwd=self.folder,
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
            process.stdin.write(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n"
                                + 60 * (b"FRAME\n" + bytes(64 * 64)))
            process.stdin.flush()
            while not (os.path.exists(self.path(KEPT)) and self.read(KEPT)):
                self.assertIsNone(process.poll())
            code, out, _ = self.kpf("verify", "clip.kpf")
            self.assertEqual(code, 0, out)
            process.communicate(timeout=60)

    def test_without_the_wish_there_are_none_and_older_ones_go(self):
        self.record("eight.y4m", "clip.kpf", "--checksums")
        code, _, err = self.kpf("record", "eight.y4m", "clip.kpf")
        self.assertEqual(code, 2, err)
        self.record("eight.y4m", "clip.kpf", "--force")
        self.assertFalse(os.path.exists(self.path(KEPT)))

    def test_checksums_alone_are_in_the_way(self):
        self.write(KEPT, b"whose?")
        code, _, err = self.kpf("record", "eight.y4m", "clip.kpf")
        self.assertEqual(code, 2)
        self.assertIn(KEPT + " is there already", err)


if __name__ == "__main__":
    unittest.main()
