"""Nothing that is there is overwritten unasked, and the input never."""
import os
import signal
import subprocess
import unittest

from recordings import KPF, header, run
from videos import VideoTest, y4m


class Overwrite(VideoTest):
    def setUp(self):
        super().setUp()
        self.record("eight.y4m", "eight.kpf", "--quiet")
        self.before = self.everything()

    def everything(self):
        """Each file below the folder with its bytes."""
        return {os.path.relpath(os.path.join(folder, name), self.folder):
                self.read(os.path.join(folder, name))
                for folder, _, names in os.walk(self.folder) for name in names}

    def refused(self, what, *arguments):
        code, out, err = self.kpf(*arguments)
        self.assertEqual((code, out), (2, ""), (arguments, err))
        self.assertIn(what, err, arguments)

    def keeps(self, what, *arguments):
        """The command is refused with `what`, and nothing is other than it was."""
        before = self.everything()
        self.refused(what, *arguments)
        self.assertEqual(self.everything(), before, arguments)

    def test_existing_files_are_kept_unless_forced(self):
        for command, name in (("export", "old.mkv"), ("export", "old.png"), ("amplify", "old.mp4"),
                              ("amplify", "old.png")):
            self.write(name, b"mine")
            one = () if name.endswith(("mkv", "mp4")) else ("--from", "4", "--to", "4")
            if command == "amplify":
                one += ("--frequency", "12")
            self.keeps(name + " is there already", command, "eight.kpf", name, *one)
            self.assertEqual(self.kpf(command, "eight.kpf", name, *one, "--force"), (0, "", ""))
            self.assertNotEqual(self.read(name), b"mine")
        self.write("page.png", b"mine")
        self.keeps("is there already", "sheet", "eight.y4m", "eight.kpf", "page.png")

    def test_one_image_in_the_way_keeps_all(self):
        self.write("f_003.png", b"mine")
        self.keeps("f_003.png is there already", "export", "eight.kpf", "f_%03d.png")
        self.keeps("f_003.png is there already", "amplify", "eight.y4m", "f_%03d.png",
                   "--frequency", "12")
        self.assertEqual(self.kpf("export", "eight.kpf", "f_%03d.png", "--to", "2"), (0, "", ""))
        self.assertEqual(self.kpf("export", "eight.kpf", "f_%03d.png", "--from", "4"), (0, "", ""))
        self.assertEqual(self.read("f_003.png"), b"mine")

    def test_input_is_never_replaced(self):
        self.assertEqual(self.kpf("export", "eight.kpf", "own.mkv")[0], 0)
        self.assertEqual(self.kpf("export", "eight.kpf", "i_%02d.png")[0], 0)
        os.symlink("own.mkv", self.path("symbolic.mkv"))
        os.link(self.path("own.mkv"), self.path("hard.mkv"))
        os.link(self.path("eight/eight_0001.div"), self.path("data.mkv"))
        for source, target in (("own.mkv", "own.mkv"), ("own.mkv", "./own.mkv"),
                               ("own.mkv", self.path("own.mkv")), ("own.mkv", "symbolic.mkv"),
                               ("own.mkv", "hard.mkv"),
                               ("i_%02d.png", "i_%02d.png"), ("i_%2d.png", "i_%02d.png"),
                               ("eight.kpf", "data.mkv")):
            for force in ((), ("--force",)):
                self.keeps("is what is read", "amplify", source, target, "--frequency",
                           "12", *force)
        self.keeps("is what is read", "export", "eight.kpf", "data.mkv", "--force")
        self.keeps("is what is read", "record", "own.mkv", "own.mkv", "--force")

    def test_standard_output_is_not_the_input_either(self):
        for name, command in (("eight/eight_0001.div", ("export",)),
                              ("eight.kpf", ("amplify", "--frequency", "12"))):
            with open(self.path(name), "ab") as appended:
                done = subprocess.run([KPF, *command, "eight.kpf", "-"], cwd=self.folder, timeout=60,
                                      stdout=appended, stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 2)
            self.assertIn(b"standard output is what is read", done.stderr)
        self.assertEqual(self.everything(), self.before)

    def test_standard_input_is_the_input_too(self):
        self.assertEqual(self.kpf("export", "eight.kpf", "own.mkv")[0], 0)
        before = self.everything()
        for source, arguments in (
                ("eight/eight_0001.div", ("record", "-", "eight.kpf", "--raw", "6x4:gray8")),
                ("own.mkv", ("amplify", "-", "own.mkv", "--frequency", "12"))):
            with open(self.path(source), "rb") as read:
                done = subprocess.run([KPF, *arguments, "--force"], cwd=self.folder, timeout=60,
                                      stdin=read, capture_output=True, check=False)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn(b"is what is read", done.stderr)
        self.assertEqual(self.everything(), before)

    def test_what_the_system_hides_may_be_in_the_way(self):
        circles = ("round.kpf", "data")
        for circle in circles:
            os.symlink(circle, self.path(circle))
        for name in ("round.kpf", "data.kpf", "data/new.kpf", "x" * 300 + ".kpf"):
            for command in (("record", "eight.y4m"), ("cut", "eight.kpf")):
                self.refused("kpf: cannot look at ", *command, name)
                self.refused("Choose another name or another folder.\n", *command, name)
        for circle in circles:
            os.remove(self.path(circle))
        self.assertEqual(self.everything(), self.before)

    def test_folders_of_somebody_else_are_told(self):
        self.give_up_rights()
        self.addCleanup(os.chmod, self.path("eight"), 0o755)
        os.mkdir(self.path("theirs"))
        os.chmod(self.path("theirs"), 0)
        denied = "kpf: cannot look at %s: Permission denied\n"
        self.keeps(denied % "theirs/new.kpf", "record", "eight.y4m", "theirs/new.kpf")
        os.chmod(self.path("eight"), 0)
        self.keeps(denied % "./eight/", "record", "eight.y4m", "eight.kpf", "--force")

    def test_record_replaces_recordings_only(self):
        self.write("notes.txt", b"v3.0 of my notes")
        self.keeps("no recording", "record", "eight.y4m", "notes.txt", "--force")
        os.link(self.path("clip/clip_0001.div"), self.path("linked.y4m"))
        self.write("linked.y4m", y4m(self.eight, 6, 4))
        self.keeps("clip_0001.div is what is read", "record", "linked.y4m", "clip.kpf", "--force")

    def test_data_files_of_another_header_are_not_replaced(self):
        """Only their extensions tell them apart, and data files know none."""
        for name in ("eight.rec", "eight.KPF"):
            for command in (("record", "sixteen.y4m"), ("cut", "clip.kpf"),
                            ("record", "sixteen.y4m", "--before", "1")):
                for force in ((), ("--force",)):
                    self.keeps("kpf: the data files would be those of ./eight.kpf\n", *command[:2],
                               name, *command[2:], *force)
        # A header by another name is the same one.
        os.link(self.path("eight.kpf"), self.path("eight.old"))
        self.record("eight.y4m", "eight.kpf", "--force")

    def test_recording_that_is_not_begun_keeps_the_older_one(self):
        for arguments in (("missing.y4m",), ("eight.y4m", "--start", "never")):
            self.keeps("", "record", arguments[0], "clip.kpf", "--force", *arguments[1:])

    def test_wrong_ranges_cost_nobody_a_file(self):
        self.write("old.mkv", b"mine")
        for source in ("eight.kpf", "eight.y4m"):
            for wrong in (("--from", "99"), ("--from", "3", "--to", "2")):
                self.keeps("no such frames", "amplify", source, "old.mkv", "--force", *wrong)
        self.keeps("no such frames", "export", "eight.kpf", "old.mkv", "--force", "--from", "99")

    def test_several_frames_want_a_pattern(self):
        self.keeps("5 frames do not go into one image", "amplify", "eight.kpf", "one.png",
                   "--frequency", "12")
        self.keeps("do not go into one image", "amplify", "eight.y4m", "one.png",
                   "--frequency", "12")
        self.keeps("2 frames do not go into one image", "amplify", "eight.y4m", "one.png", "--from",
                   "3", "--to", "4", "--frequency", "12")
        self.assertEqual(self.kpf("amplify", "eight.y4m", "one.png", "--from", "4", "--to", "4",
                                  "--frequency", "12"), (0, "", ""))

    def test_pattern_is_one_padded_number(self):
        for name in ("f_%d.png", "f_%3d.png", "f_%03d_%03d.png", "f_%s.png", "f_%.tif", "f_%%.png"):
            self.keeps("is no pattern", "export", "eight.kpf", name)

    def test_failure_on_the_way_leaves_nothing_and_keeps_what_was_there(self):
        # The second data file cannot be read when its turn comes.
        self.write("two.y4m", y4m(self.eight, 6, 4) + b"FRAME\n")
        self.write("old.mkv", b"mine")
        done = subprocess.run(["bash", "-c", 'ulimit -f 1; trap "" XFSZ; exec "$0" "$@"', KPF,
                               "export", "big.kpf", "old.mkv", "--force"], cwd=self.make_big(),
                              capture_output=True, timeout=60, check=False)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn(b"cannot write old.mkv: File too large", done.stderr)
        self.assertEqual(self.read("old.mkv"), b"mine")
        self.assertFalse([name for name in os.listdir(self.folder) if name.endswith(".part")])

    def make_big(self):
        """big.kpf, which takes more than a kilobyte as a video."""
        frame = bytes((i * i * 7919 >> 3) % 256 for i in range(64 * 64))
        os.mkdir(self.path("big"))
        self.write("big.kpf", header(width=64, height=64))
        self.write("big/big_0001.div", run(range(5), pixels=frame))
        return self.folder

    def test_interrupted_video_gets_its_name_with_the_frames_it_has(self):
        frames = b"FRAME\n" + bytes(64 * 64)
        with subprocess.Popen([KPF, "amplify", "-", "out.mkv"], cwd=self.folder,
                              stdin=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdin.write(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + 400 * frames)
            process.stdin.flush()
            while not any(name.endswith(".part") for name in os.listdir(self.folder)):
                self.assertIsNone(process.poll())
            self.assertNotIn("out.mkv", os.listdir(self.folder))
            process.stdin.write(400 * frames)
            process.stdin.flush()
            process.send_signal(signal.SIGINT)
            _, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertIn(b"interrupted after", err)
        self.assertIn("out.mkv", os.listdir(self.folder))
        self.assertFalse([name for name in os.listdir(self.folder) if name.endswith(".part")])


if __name__ == "__main__":
    unittest.main()
