"""kpf verify: each kind of damage, its place and its words."""
import os
import struct
import unittest

from recordings import NOT_THERE, ON_WINDOWS, RecordingTest, Terminal, header, record, run

DIV = "clip/clip_0001.div"
STATUS = (b"Packed stream is incomplete and was not fully processed.\n"
          b"Please review log data for possible error conditions.\n"
          b"Status:\n")
NO_STATUS = (", and no status file: the recorder was stopped, ran out of space, or is still at "
             "work")


class Verify(RecordingTest):
    def problems(self):
        """What is found, the line that sums up left out."""
        code, out, err = self.kpf("verify", "./clip.kpf")
        self.assertEqual((code, err), (1, ""))
        return out.splitlines()[:-1]

    def notes(self):
        """What is worth knowing of a recording without problems: no failure, unless it is asked to
        be one."""
        code, out, err = self.kpf("verify", "./clip.kpf")
        self.assertEqual((code, err), (0, ""))
        lines = out.splitlines()[:-1]
        self.assertEqual(self.kpf("verify", "--strict", "./clip.kpf"), (1 if lines else 0, out, ""))
        self.assertEqual([line[:6] for line in lines], ["note: "] * len(lines))
        return [line[6:] for line in lines]

    def check_sound(self):
        code, out, err = self.kpf("verify", "./clip.kpf")
        self.assertEqual((code, err), (0, ""), out)

    def test_sound_recording(self):
        self.assertEqual(self.kpf("verify", "./clip.kpf"),
                         (0, "./clip.kpf: 5 of 5 frames, 0 placeholders, no problems\n", ""))

    def test_placeholders_are_counted_and_told(self):
        self.patch(DIV, 48, bytes(24))
        self.assertEqual(self.notes(), ["./clip/clip_0001.div, record 2, byte 48: a placeholder"])
        self.patch(DIV, 24, bytes(24))
        self.assertEqual(self.kpf("verify", "./clip.kpf"), (
            0, "note: ./clip/clip_0001.div, record 1, byte 24: 2 placeholders, the last is record 2\n"
               "./clip.kpf: 5 of 5 frames, 2 placeholders, no problems, 1 note\n", ""))

    def test_placeholders_apart_are_told_apart(self):
        self.patch(DIV, 0, bytes(24))
        self.patch(DIV, 96, bytes(24))
        self.assertEqual(self.notes(), ["./clip/clip_0001.div, record 0, byte 0: a placeholder",
                                        "./clip/clip_0001.div, record 4, byte 96: a placeholder"])

    def test_sound_recordings_of_other_forms(self):
        self.write("clip.kpf", header(width=3, height=3, bits=12))
        self.write(DIV, run(range(5), pixels=bytes.fromhex("010101000101010000010101 00")))
        self.check_sound()
        self.write("clip.kpf", header(rate=0.0))
        self.write(DIV, b"".join(record(n, rate=1 + n % 2) for n in range(5)))
        self.assertEqual(self.notes(), [])
        self.write("clip.kpf", header(text2=b"t" * 60))
        self.patch("clip.kpf", 393, b"t" * 51)
        self.write(DIV, run(range(5)))
        self.check_sound()

    def test_full_disk_leaves_a_short_file(self):
        self.cut(DIV, 76)
        self.assertEqual(self.problems(), [
            "./clip/clip_0001.div, record 3, byte 72: the file ends after 3 of 5 records and 4 of "
            "the 24 bytes of the next",
            "note: ./clip.kpf, byte 468: 3 of 5 announced frames are there" + NO_STATUS,
            "The first missing or damaged record is 3 (./clip/clip_0001.div, byte 72).",
        ])

    def test_recording_that_was_closed_early(self):
        self.cut(DIV, 72)
        self.write("clip.kpf.incomplete.txt", STATUS)
        self.assertEqual(self.notes(), [
            "./clip.kpf.incomplete.txt, byte 0: the recording was closed before it was complete",
            "./clip.kpf, byte 468: 3 of 5 announced frames are there",
        ])

    def test_recorder_that_was_killed_before_it_knew_the_number(self):
        self.write("clip.kpf", header(frames=0xFFFFFFFF))
        self.assertEqual(self.notes(), [
            "./clip.kpf, byte 468: 5 frames on disk, and the recorder never told how many there "
            "would be" + NO_STATUS])
        self.assertEqual(self.kpf("verify", "clip.kpf")[1].splitlines()[-1],
                         "clip.kpf: 5 of an unknown number of frames, 0 placeholders, no problems, "
                         "1 note")
        self.assertIn("frames      an unknown number announced, 5 written",
                      self.kpf("info", "clip.kpf")[1])

    def test_recorder_that_was_killed(self):
        self.cut(DIV, 72)
        self.assertEqual(self.notes(), [
            "./clip.kpf, byte 468: 3 of 5 announced frames are there" + NO_STATUS])

    def test_recording_that_ends_with_a_data_file(self):
        self.split()
        os.remove(self.path("clip/clip_0003.div"))
        self.write("clip.kpf.incomplete.txt", STATUS)
        self.assertEqual(self.problems()[1:], [
            "note: ./clip.kpf.incomplete.txt, byte 0: the recording was closed before it was "
            "complete",
            "note: ./clip.kpf, byte 468: 4 of 5 announced frames are there"])
        # A frame that is refused may leave an empty file.
        self.write("clip/clip_0003.div", b"")
        self.assertEqual(len(self.problems()), 3)

    def test_summary_of_a_short_recording(self):
        self.cut(DIV, 72)
        _, out, _ = self.kpf("verify", "./clip.kpf")
        self.assertEqual(out.splitlines()[-1],
                         "./clip.kpf: 3 of 5 frames, 0 placeholders, no problems, 1 note")

    def test_missing_data_file(self):
        self.split()
        os.remove(self.path("clip/clip_0002.div"))
        self.assertEqual(self.problems(), [
            "./clip.kpf, byte 464: 2 frames a data file, where 89478485 fit",
            "./clip/clip_0002.div, record 2, byte 0: the data file is missing",
            "note: ./clip.kpf, byte 468: 3 of 5 announced frames are there" + NO_STATUS,
            "The first missing or damaged record is 2 (./clip/clip_0002.div, byte 0).",
        ])

    def test_missing_data_files_are_one_finding(self):
        self.write("clip.kpf", header(per_file=5, frames=0xFFFFFFFF))
        os.rename(self.path(DIV), self.path("clip/clip_800000000.div"))
        self.assertEqual(self.problems()[1],
                         "./clip/clip_0001.div, record 0, byte 0: this and the next 799999998 "
                         "data files are missing")

    def test_short_file_before_another_is_a_problem(self):
        self.split()
        self.cut("clip/clip_0001.div", 24)
        self.assertEqual(self.problems()[1],
                         "./clip/clip_0001.div, record 1, byte 24: the file ends after 1 of 2 "
                         "records")

    def test_bytes_behind_the_last_record(self):
        self.write(DIV, run(range(5)) + b"x")
        self.assertEqual(self.problems(),
                         ["./clip/clip_0001.div, byte 120: 1 byte behind the last record"])

    def test_stray_and_extra_files(self):
        self.write("clip/clip_0002.div", run(range(5)))
        self.write("clip/notes.txt", b"")
        self.assertEqual(sorted(self.notes()), [
            "./clip/clip_0002.div, byte 0: does not belong to the recording",
            "./clip/notes.txt, byte 0: does not belong to the recording",
        ])

    def test_data_files_of_a_longer_recording_of_this_name(self):
        self.write("clip/clip_0003.div", run(range(10, 15), start=1600000000))
        self.assertEqual(self.notes(), [
            "./clip/clip_0003.div, byte 0: left by another recording of this name: it begins with "
            "frame 10, of 1600000000.400000 (2020-09-13 12:26:40.400000 UTC)"])

    def test_older_data_files_behind_a_recording_that_was_cut_short(self):
        self.split()
        self.write("clip/clip_0002.div", run((2, 3), start=1600000000))
        self.write("clip/clip_0003.div", run((4,), start=1600000000))
        self.cut("clip/clip_0001.div", 24)
        self.assertEqual(self.problems()[1:], [
            "./clip/clip_0001.div, record 1, byte 24: the file ends after 1 of 2 records",
            "./clip/clip_0002.div, record 2, byte 0: left by an older recording of this name: its "
            "frame 2 is of 1600000000.080000 (2020-09-13 12:26:40.080000 UTC), before the first "
            "one",
            "./clip/clip_0003.div, record 4, byte 0: left by an older recording of this name: its "
            "frame 4 is of 1600000000.160000 (2020-09-13 12:26:40.160000 UTC), before the first "
            "one",
            "note: ./clip.kpf, byte 468: 4 of 5 announced frames are there" + NO_STATUS,
            "The first missing or damaged record is 1 (./clip/clip_0001.div, byte 24)."])

    def test_header_that_was_renamed(self):
        os.rename(self.path("clip"), self.path("walk"))
        os.rename(self.path("walk/clip_0001.div"), self.path("walk/walk_0001.div"))
        self.assertEqual(self.problems()[0],
                         "./clip/clip_0001.div, record 0, byte 0: no data file is there, and "
                         "./walk/walk_0001.div has no header: if it is of this recording, rename "
                         "the header to walk.kpf")
        self.write("walk.kpf", header())
        self.assertEqual(self.notes(), [
            "./clip.kpf, byte 468: 0 of 5 announced frames are there" + NO_STATUS])

    def test_header_and_folder_that_were_renamed(self):
        os.rename(self.path(DIV), self.path("clip/walk_0001.div"))
        self.assertEqual(self.problems()[0],
                         "./clip/clip_0001.div, record 0, byte 0: no data file is there, but "
                         "./clip/walk_0001.div: if it is of this recording, rename the header to "
                         "walk.kpf and its folder to walk")

    @unittest.skipIf(ON_WINDOWS, "a backslash is no letter there")
    def test_data_files_beside_the_header_have_neighbours(self):
        os.rename(self.path(DIV), self.path("clip\\clip_0001.div"))
        os.rmdir(self.path("clip"))
        self.write("other.txt", b"")
        self.check_sound()
        self.write("clip\\clip_0009.div", b"")
        self.assertEqual(self.notes(), [
            "./clip\\clip_0009.div, byte 0: does not belong to the recording"])

    def test_numbers_of_the_callers_own(self):
        self.patch(DIV, 72, b"\x09")
        self.assertEqual(self.notes(), [
            "./clip/clip_0001.div, record 3, byte 72: the record says number 9"])

    def test_run_of_numbers_is_one_note(self):
        self.write(DIV, b"".join(record(n)[4:].join((bytes([n + 100, 0, 0, 0]), b""))
                                 for n in range(5)))
        self.patch(DIV, 48, bytes(24))
        self.assertEqual(self.notes(), [
            "./clip/clip_0001.div, record 2, byte 48: a placeholder",
            "./clip/clip_0001.div, record 0, byte 0: the records up to 4 say numbers from 100 to "
            "104"])

    def test_record_whose_header_was_wiped(self):
        self.patch(DIV, 72, bytes(16))
        self.assertEqual(self.notes()[1],
                         "./clip/clip_0001.div, record 3, byte 72: the record says number 0")

    def test_time_that_runs_backwards(self):
        self.patch(DIV, 24 * 2 + 4, (1699999999).to_bytes(8, "little"))
        self.assertEqual(self.notes()[0],
                         "./clip/clip_0001.div, record 2, byte 52: the time is earlier than that "
                         "of record 1")

    def test_time_that_jumps(self):
        self.write(DIV, run(range(3)) + run(range(3, 5), start=1700000001))
        self.assertEqual(self.notes(), [
            "./clip/clip_0001.div, record 3, byte 76: 1.040000 s after record 2, where 0.040000 s "
            "were due"])

    def test_time_may_pass_over_placeholders_and_gaps(self):
        self.patch(DIV, 24, bytes(48))
        self.assertEqual(len(self.notes()), 1)

    def test_rates_that_no_recorder_writes(self):
        for rate in (5e-324, 0.5, 29.97, -1e300, 2147483648.0):
            self.write("clip.kpf", header(rate=rate))
            self.assertEqual(self.problems()[0], "./clip.kpf, byte 184: not a whole number of 32 "
                             "bits, as recorders write", rate)
        for rate in (0.0, -25.0):
            self.write("clip.kpf", header(rate=rate))
            self.check_sound()

    def test_microseconds_of_more_than_a_second(self):
        self.patch(DIV, 24 + 12, (1000000).to_bytes(4, "little"))
        self.assertEqual(self.notes()[0],
                         "./clip/clip_0001.div, record 1, byte 28: 1000000 microseconds are more "
                         "than a second")

    def test_bytes_between_rows(self):
        self.write("clip.kpf", header(width=3, height=3, bits=12, frames=1))
        self.write(DIV, record(0, pixels=bytes(8) + b"\x01" + bytes(4)))
        self.assertEqual(self.notes()[0],
                         "./clip/clip_0001.div, record 0, byte 24: not zero, where no pixel is "
                         "stored")

    def test_header_bytes(self):
        self.patch("clip.kpf", 164, b"\x01")
        self.patch("clip.kpf", 1714, b"\x01")
        self.assertEqual(self.problems(), [
            "./clip.kpf, byte 164: a fixed number has another value",
            "./clip.kpf, byte 1714: the identifier differs from the one at byte 1698",
        ])

    def test_status_file_beside_a_complete_recording(self):
        self.write("clip.kpf.incomplete.txt", STATUS)
        self.assertEqual(self.notes(), [
            "./clip.kpf.incomplete.txt, byte 0: says that frames are missing, and none is"])

    def test_status_file_with_windows_line_ends(self):
        self.cut(DIV, 96)
        self.write("clip.kpf.incomplete.txt", STATUS.replace(b"\n", b"\r\n"))
        self.assertIn("./clip.kpf.incomplete.txt, byte 0: the recording was closed before it was "
                      "complete", self.notes())

    def test_status_file_of_another_text(self):
        self.write("clip.kpf.incomplete.txt", b"all well")
        self.assertEqual(self.problems(), [
            "./clip.kpf.incomplete.txt, byte 0: not the text that a recorder leaves"])

    def test_many_findings_are_counted(self):
        self.write("clip.kpf", header(frames=300))
        self.write(DIV, run(range(300, 0, -1)))
        lines = self.notes()
        self.assertEqual(len(lines), 201)
        self.assertEqual(lines[200], "... and 398 more")

    def test_cut_header_is_a_problem_of_the_recording(self):
        self.cut("clip.kpf", 1000)
        self.assertEqual(self.problems(),
                         ["./clip.kpf, byte 1000: the header ends after 1000 of 2998 bytes"])

    def test_unreadable_data_file_is_told_record_by_record(self):
        os.remove(self.path(DIV))
        os.symlink("/sys/devices/system/cpu/online", self.path(DIV))  # shorter than it says
        if not os.path.exists(self.path(DIV)):
            self.skipTest("needs Linux")
        self.assertIn("./clip/clip_0001.div, record 0, byte", self.problems()[1])
        self.assertIn(": the file has become shorter", self.problems()[1])

    @unittest.skipIf(ON_WINDOWS, "no such circles there")
    def test_folder_that_cannot_be_read_is_not_missing(self):
        os.rename(self.path("clip"), self.path("data"))
        os.symlink("clip", self.path("clip"))  # a circle; for root, too
        self.assertEqual(self.problems(), [
            "./clip, byte 0: Too many levels of symbolic links"])
        for command in ("info", "export"):
            code, out, err = self.kpf(command, "clip.kpf", *["-"][:command == "export"])
            self.assertEqual((code, out), (2, ""), command)
            self.assertIn("Too many levels of symbolic links", err)

    @unittest.skipIf(ON_WINDOWS, "other rights there")
    def test_no_permission_is_not_missing(self):
        self.give_up_rights()
        self.addCleanup(os.chmod, self.path("clip"), 0o755)
        os.chmod(self.path("clip"), 0)
        self.assertEqual(self.problems(), ["./clip, byte 0: Permission denied"])
        os.chmod(self.path("clip"), 0o755)
        os.chmod(self.path(DIV), 0)
        self.assertIn("./clip/clip_0001.div, record 0, byte 0: Permission denied",
                      self.problems()[0])
        for command, code in ((("info",), 1), (("export", "-"), 1), (("checksum",), 1),
                              (("cut", "out.kpf"), 1)):
            got, _, err = self.kpf(command[0], "clip.kpf", *command[1:])
            self.assertEqual(got, code, command)
        os.chmod(self.path("clip.kpf"), 0)
        code, _, err = self.kpf("verify", "clip.kpf")
        self.assertEqual(code, 2)
        self.assertIn("Permission denied", err)

    def test_folder_in_place_of_a_data_file(self):
        os.remove(self.path(DIV))
        os.mkdir(self.path(DIV))
        self.assertEqual(self.problems(), ["./clip/clip_0001.div, byte 0: not a file"])

    def test_no_recording_at_all(self):
        self.write("clip.kpf", b"text")
        for name in ("none.kpf", "clip", "clip/clip_0001.div"):
            code, out, err = self.kpf("verify", name)
            self.assertEqual((code, out), (2, ""), name)
            self.assertIn("Give the header file (.kpf) of a recording", err)

    @unittest.skipIf(ON_WINDOWS, "a console there draws its line anew in its own way")
    def test_progress_on_a_terminal(self):
        self.write("clip.kpf", header(frames=1500000))
        self.write("clip/clip_0001.div", bytes(24 * 1500000))  # which the disk holds
        code, _, shown = Terminal(self, "verify", "clip.kpf").end()
        self.assertEqual(code, 0)
        self.assertRegex(shown, rb"^\r\x1b\[K\d+ of 36 MB, \d+ MB/s, \d:\d\d left")
        self.assertTrue(shown.endswith(b"\r\x1b[K"), shown)

    def test_the_record_behind_a_hole_is_checked(self):
        """Records of a page each, the first eight of which the disk holds nothing of."""
        self.write("clip.kpf", header(width=80, height=51, frames=10))
        self.write("clip/clip_0001.div", b"")
        self.cut("clip/clip_0001.div", 10 * 4096)
        wrong = struct.pack("<IqI", 8, 1700000000, 2000000) + bytes(4080)
        self.patch("clip/clip_0001.div", 8 * 4096, wrong)
        self.assertIn("note: ./clip/clip_0001.div, record 8, byte 32772: 2000000 microseconds are "
                      "more than a second\n", self.kpf("verify", "./clip.kpf")[1])


if __name__ == "__main__":
    unittest.main()
