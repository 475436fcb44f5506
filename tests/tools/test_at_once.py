"""Two processes and one recording: nobody writes into, or reads from, another's by mistake."""
import contextlib
import os
import subprocess
import unittest

from recordings import KPF, header, record
from videos import VideoTest

HEAD = b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n"
RECORD = 16 + 64 * 64  # bytes
EVENT = ("--trigger", "motion:100")


def frames(count, level):
    return (b"FRAME\n" + bytes([level]) * (64 * 64)) * count


class Writers(VideoTest):
    @contextlib.contextmanager
    def recording(self, *arguments):
        """A recording of a pipe that has begun, and waits for more."""
        with subprocess.Popen([KPF, "record", "-", "out.kpf", *arguments], cwd=self.folder,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            process.stdin.write(HEAD + frames(40, 30) + frames(20, 230))
            process.stdin.flush()
            while not os.path.exists(self.path("out/out_0001.div")):
                self.assertIsNone(process.poll())
            yield process

    def test_nobody_begins_anew_what_is_being_recorded(self):
        said = ("kpf: ./out.kpf is being written\n"
                "Wait until the other kpf has ended, or choose another name.\n")
        for how, recorded in (((), 100), (EVENT, 60)):
            with self.recording("--force", "--quiet", *how) as process:
                for command in (("record", "eight.y4m"), ("cut", "clip.kpf")):
                    self.assertEqual(self.kpf(*command, "out.kpf", "--force"), (2, "", said))
                self.assertEqual(self.kpf("checksum", "out.kpf", "--force"), (2, "", said))
                _, err = process.communicate(frames(40, 230), timeout=60)
            self.assertEqual((process.returncode, err), (0, b""))
            self.check_complete(recorded)
        # Nobody has it any more.
        self.record("eight.y4m", "out.kpf", "--force")
        self.check_complete(5)

    def test_who_waited_for_a_first_frame_finds_what_began_meanwhile(self):
        os.mkfifo(self.path("later.y4m"))
        with subprocess.Popen([KPF, "record", "later.y4m", "out.kpf", "--force"], cwd=self.folder,
                              stderr=subprocess.PIPE) as waiting:
            with open(self.path("later.y4m"), "wb") as later:  # as soon as the other end is open
                with self.recording() as process:
                    later.write(HEAD + frames(5, 30))
                    later.close()
                    _, err = waiting.communicate(timeout=60)
                    self.assertEqual((waiting.returncode, err.splitlines()[0]),
                                     (2, b"kpf: ./out.kpf is being written"))
                    process.communicate(frames(40, 230), timeout=60)
                self.assertEqual(process.returncode, 0)
        self.check_complete(100)

    def test_an_event_does_not_begin_anew_what_is_being_recorded(self):
        """Neither when it comes, nor, with a loss that could be known, when it is waited for."""
        self.write("event.y4m", HEAD + frames(40, 30) + frames(5, 230))
        with subprocess.Popen([KPF, "record", "-", "out.kpf", "--force", *EVENT], cwd=self.folder,
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE) as waiting:
            waiting.stdin.write(HEAD + frames(40, 30))
            waiting.stdin.flush()
            self.assertIn(b"nothing is written until", waiting.stderr.readline())
            with self.recording() as process:
                code, out, err = self.kpf("record", "event.y4m", "out.kpf", "--force", *EVENT)
                self.assertEqual((code, out, err.splitlines()[0]),
                                 (2, "", "kpf: ./out.kpf is being written"))
                _, err = waiting.communicate(frames(5, 230), timeout=60)
                self.assertEqual(waiting.returncode, 1)
                self.assertIn(b"kpf: ./out.kpf is being written; Wait until the other kpf", err)
                process.communicate(frames(40, 230), timeout=60)
            self.assertEqual(process.returncode, 0)
        self.check_complete(100)

    def test_what_bears_the_name_in_the_end_is_left_alone(self):
        for how, recorded in (((), 100), (EVENT, 60)):
            with self.recording(*how) as process:
                os.rename(self.path("out"), self.path("moved"))
                os.rename(self.path("out.kpf"), self.path("moved.kpf"))
                self.assertEqual(self.kpf("cut", "clip.kpf", "out.kpf")[0], 0)
                _, err = process.communicate(frames(40, 230), timeout=60)
            self.assertEqual(process.returncode, 1)
            if not how:
                self.assertIn(b"kpf: ./out.kpf: 0 of 100 frames are on disk: its files were moved "
                              b"or removed meanwhile\n", err)
            self.assertEqual(self.read("out.kpf"), self.read("clip.kpf"))
            self.assertEqual(self.read("out/out_0001.div"), self.read("clip/clip_0001.div"))
            self.assertEqual(len(self.read("moved/out_0001.div")), recorded * RECORD)
            for name in ("out.kpf", "out.kpf.incomplete.txt", "out/out_0001.div", "moved.kpf",
                         "moved/out_0001.div"):
                os.remove(self.path(name))
            os.rmdir(self.path("out"))
            os.rmdir(self.path("moved"))

    def test_a_refusal_leaves_no_folder(self):
        self.write("new.kpf.incomplete.txt", b"whose?")
        for command in (("record", "eight.y4m"), ("cut", "clip.kpf")):
            self.assertEqual(self.kpf(*command, "new.kpf")[0], 2)
        self.assertFalse(os.path.exists(self.path("new")))


class Readers(VideoTest):
    FRAMES = 3000
    PER_FILE = 1000

    def make(self, pixel, identifier):
        """A recording of three data files, where a pipe is full long before the end of the first."""
        image = bytearray(header(width=64, height=64, frames=self.FRAMES, per_file=self.PER_FILE))
        image[1698:1730] = identifier * 32
        self.write("clip.kpf", image)
        for number in range(3):
            self.write("clip/clip_%04d.div" % (number + 1), b"".join(
                record(n, pixels=pixel * 4096)
                for n in range(number * self.PER_FILE, (number + 1) * self.PER_FILE)))

    def test_frames_of_two_recordings_are_no_success(self):
        for command in (("export",), ("amplify", "--frequency", "12", "--gain", "0")):
            self.make(b"\x07", b"\x01")
            with subprocess.Popen([KPF, *command, "clip.kpf", "-"], cwd=self.folder,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
                first = process.stdout.read(4096)
                for number in range(3):
                    os.remove(self.path("clip/clip_%04d.div" % (number + 1)))
                self.make(b"\x09", b"\x02")
                rest, err = process.communicate(timeout=60)
            self.assertEqual(process.returncode, 1)
            self.assertEqual(
                err, b"kpf: clip.kpf: another recording has taken its place meanwhile\n")
            self.assertEqual(len(first + rest), self.FRAMES * 4096)
            self.assertEqual(set(rest), {7, 9})


if __name__ == "__main__":
    unittest.main()
