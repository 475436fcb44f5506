"""kpf record: however it ends, by the wish of a user or by a disk, what there is is known."""
import contextlib
import os
import pty
import shutil
import signal
import subprocess
import time
import unittest

from recordings import KPF
from videos import VideoTest, y4m


class Ends(VideoTest):
    @contextlib.contextmanager
    def recording(self, *arguments):
        """A recording of a pipe that has begun, and waits for more."""
        with subprocess.Popen([KPF, "record", "-", "out.kpf", *arguments, *self.start],
                              cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            frame = b"FRAME\n" + bytes(64 * 64)
            process.stdin.write(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + frame * 60)
            process.stdin.flush()
            while not os.path.exists(self.path("out/out_0001.div")):
                self.assertIsNone(process.poll())
            yield process

    def test_interrupt_ends_a_complete_recording(self):
        for wish, limit in ((signal.SIGINT, ()), (signal.SIGINT, ("--frames", "100")),
                            (signal.SIGTERM, ()), (signal.SIGHUP, ())):
            with self.recording("--force", *limit) as process:
                process.send_signal(wish)
                out, err = process.communicate(timeout=60)
            self.assertEqual((process.returncode, err), (0, b""))
            self.assertRegex(out, rb"out.kpf: \d+ frames? recorded, 0 placeholders\n")
            size = os.path.getsize(self.path("out/out_0001.div"))
            self.assertEqual(size % (16 + 64 * 64), 0)
            self.check_complete(size // (16 + 64 * 64))
            shutil.rmtree(self.path("out"))

    def test_nobody_need_listen_to_remarks(self):
        """What cannot be told ends no recording: a full disk behind standard error, a pipe whose
        reader has gone, a descriptor that is closed."""
        self.write("odd.y4m", y4m(self.eight, 6, 4).replace(b" F25:1 ", b" F30000:1001 "))
        with open("/dev/full", "wb") as full:
            self.assertEqual(self.told_to(full), 0)
        reader, gone = os.pipe()
        os.close(reader)
        with os.fdopen(gone, "wb") as pipe:
            self.assertEqual(self.told_to(pipe), 0)
        done = subprocess.run(["sh", "-c", '"$0" record odd.y4m out.kpf --force 2>&-', KPF],
                              cwd=self.folder, stdout=subprocess.DEVNULL, timeout=60, check=False)
        self.assertEqual(done.returncode, 0)
        self.check_complete(5)

    def told_to(self, stream):
        """The exit code of a recording that has something to say."""
        done = subprocess.run([KPF, "record", "odd.y4m", "out.kpf", "--force"], cwd=self.folder,
                              stdout=subprocess.DEVNULL, stderr=stream, timeout=60, check=False)
        self.check_complete(5)
        return done.returncode

    def test_a_terminal_that_goes_away_ends_no_recording(self):
        ours, theirs = pty.openpty()
        frame = b"FRAME\n" + bytes(64 * 64)
        with subprocess.Popen([KPF, "record", "-", "out.kpf"], cwd=self.folder, stderr=theirs,
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
            os.close(theirs)
            process.stdin.write(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + frame * 60)
            process.stdin.flush()
            while not os.path.exists(self.path("out/out_0001.div")):
                self.assertIsNone(process.poll())
            os.close(ours)
            frames, end = 60, time.monotonic() + 0.3  # there is a line of progress every 0.1 s
            while time.monotonic() < end:
                process.stdin.write(frame)
                frames += 1
            process.stdin.close()
            self.assertEqual(process.wait(60), 0)
        self.check_complete(frames)

    def test_recording_outlives_its_terminal_where_that_is_wanted(self):
        with subprocess.Popen(["nohup", KPF, "record", "-", "out.kpf"], cwd=self.folder,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            video = self.read("eight.y4m")
            process.stdin.write(video[:-10])
            process.stdin.flush()
            # It has its own handlers once it has read what it is to record.
            while b"kpf" not in self.name_of(process.pid) or not self.waits(process.pid):
                self.assertIsNone(process.poll())
            process.send_signal(signal.SIGHUP)
            out, _ = process.communicate(video[-10:], timeout=60)
        self.assertEqual(process.returncode, 0)
        self.assertIn(b"5 frames recorded", out)

    @staticmethod
    def name_of(pid):
        with open("/proc/%d/comm" % pid, "rb") as file:
            return file.read()

    @staticmethod
    def waits(pid):
        """Whether SIGINT is caught, and nothing is left to do but to wait."""
        with open("/proc/%d/status" % pid, "rb") as file:
            status = dict(line.split(b":", 1) for line in file.read().splitlines())
        caught = int(status[b"SigCgt"], 16) >> (signal.SIGINT - 1) & 1
        return caught and status[b"State"].split()[0] == b"S"

    def test_files_of_limited_size_are_a_failed_write(self):
        self.write("large.y4m", y4m([[n] * 4096 for n in range(10)], 64, 64))
        done = subprocess.run(["bash", "-c", 'ulimit -f 20; exec "$0" "$@"', KPF, "record",
                               "large.y4m", "out.kpf"], cwd=self.folder, capture_output=True,
                              timeout=60, check=False)
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertRegex(done.stderr, rb"4 of \d+ frames are on disk: the system did not take the "
                                      rb"others, see the lines above\n")
        self.assertIn(b"queueFrame: io stream write failed.", done.stderr)
        self.assertEqual(self.kpf("verify", "--strict", "out.kpf")[0], 1)

    def test_files_that_are_taken_away_are_told(self):
        with self.recording() as process:
            shutil.rmtree(self.path("out"))
            os.remove(self.path("out.kpf"))
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out), (1, b""))
        self.assertIn(b"its files were moved or removed meanwhile", err)

    def test_killed_recording_lacks_frames(self):
        with self.recording() as process:
            process.kill()
            process.communicate(timeout=60)
        self.assertEqual(self.announced(), 0xFFFFFFFF)
        self.assertEqual(self.kpf("verify", "--strict", "out.kpf")[0], 1)

    @unittest.skipUnless(hasattr(os, "geteuid") and os.geteuid() == 0, "only root may mount")
    def test_disk_that_fills_up_is_an_error(self):
        disk = self.path("disk")
        os.mkdir(disk)
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", disk],
                          stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("no mounting here")
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        frames = [[n] * 4096 for n in range(10)]
        self.write("large.y4m", y4m(frames, 64, 64))
        with subprocess.Popen([KPF, "record", "-", "disk/out.kpf", "--frames", "10"],
                              cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            video = self.read("large.y4m")
            process.stdin.write(video[:20000])
            process.stdin.flush()
            while not os.path.exists(self.path("disk/out/out_0001.div")):
                self.assertIsNone(process.poll())
            with contextlib.suppress(OSError):  # takes the room that was there at the beginning
                self.write("disk/in_the_way", bytes(65536))
            out, err = process.communicate(video[20000:], timeout=60)
        self.assertEqual((process.returncode, out), (1, b""))
        self.assertIn(b"are on disk: the disk is full", err)
        self.assertIn(b"queueFrame: io stream write failed.", err)
        self.assertEqual(self.kpf("verify", "disk/out.kpf")[0], 1)


if __name__ == "__main__":
    unittest.main()
