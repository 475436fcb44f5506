"""Recordings made by hand, byte by byte, for the tests of the tool."""
import contextlib
import os
import pty
import re
import resource
import signal
import struct
import subprocess
import tempfile
import threading
import unittest

KPF = os.environ["KPF"]  # the program under test
ON_WINDOWS = os.environ.get("ON_WINDOWS") == "1"  # it is one for Windows
# What the system, or Wine, says of a file that is not there.
NOT_THERE = "File not found" if ON_WINDOWS else "No such file or directory"
CONVERTED = b"Converted"
# Root may read and write everything, but for these two rights. Who is not root has neither.
RIGHTS = "-dac_override,-dac_read_search"
AS_ANYBODY = ([] if os.geteuid() != 0 else
              ["setpriv", "--bounding-set=" + RIGHTS, "--inh-caps=" + RIGHTS])


def slashes(said):
    """Names as they are written elsewhere: Windows puts its own separator between folder and file."""
    return re.sub(r"\\(?=(clip|walk)[\\_]|notes)", "/", said) if ON_WINDOWS else said


def header(width=4, height=2, bits=8, rate=25.0, frames=5, per_file=None, text2=b"", text5=b""):
    """The 2998 bytes of a header file."""
    size = width * height if bits == 8 else width * height * 3 // 2
    image = bytearray(2998)

    def put(offset, data):
        image[offset:offset + len(data)] = data

    put(0, b"v3.0")
    put(5, text5)
    put(156, struct.pack("<dd", 7.0, 1.0))
    put(176, struct.pack("<HHId", width, height, 0 if bits == 8 else 1, rate))
    put(200, struct.pack("<d", 3.0))
    for offset in (208, 278, 308, 384, 444):
        put(offset, CONVERTED)
    put(324, text2)
    put(464, struct.pack("<II", per_file or 2147483647 // (16 + size), frames))
    put(473, b"\x01")
    put(483, struct.pack("<d", 60.0))
    put(491, b"v3.0")
    put(1698, bytes(range(16)) * 2)
    put(1766, struct.pack("<Id", 1, rate))
    return bytes(image)


def record(number, pixels=b"\x55" * 8, start=1700000000, rate=25):
    """One frame record; its time is cut to the microsecond."""
    micro = number * 1000000 // rate
    return struct.pack("<IqI", number, start + micro // 1000000, micro % 1000000) + pixels


def run(numbers, **how):
    return b"".join(record(number, **how) for number in numbers)


class RecordingTest(unittest.TestCase):
    """Starts from clip.kpf with five frames in one data file, in a current folder of its own."""

    maxDiff = None
    runner = ()  # what runs the command

    def give_up_rights(self):
        """From here on the command may do what the modes of files allow."""
        if subprocess.run([*AS_ANYBODY, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("root cannot give up its rights here")
        self.runner = AS_ANYBODY

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        os.mkdir(self.path("clip"))
        self.write("clip.kpf", header())
        self.write("clip/clip_0001.div", run(range(5)))

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)

    def patch(self, name, offset, data):
        with open(self.path(name), "r+b") as file:
            file.seek(offset)
            file.write(data)

    def cut(self, name, size):
        os.truncate(self.path(name), size)

    def split(self, frames=5):
        """The same recording, two frames a data file."""
        self.write("clip.kpf", header(per_file=2, frames=frames))
        for first in range(0, frames, 2):
            self.write("clip/clip_%04d.div" % (first // 2 + 1),
                       run(range(first, min(first + 2, frames))))

    def kpf(self, *arguments, file_size=resource.RLIM_INFINITY):
        """Exit code, standard output, standard error.

        No file may grow beyond `file_size` bytes: what a full disk is for root, anybody can try."""
        def limit():
            hard = resource.getrlimit(resource.RLIMIT_FSIZE)[1]
            resource.setrlimit(resource.RLIMIT_FSIZE, (file_size, hard))
            if ON_WINDOWS:  # kpf knows nothing of the signal there
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)

        limited = limit if file_size != resource.RLIM_INFINITY else None
        done = subprocess.run([*self.runner, KPF, *arguments], cwd=self.folder,
                              capture_output=True, text=True, errors="surrogateescape", timeout=60,
                              check=False, preexec_fn=limited)
        return done.returncode, slashes(done.stdout), slashes(done.stderr)

    def kpf_bytes(self, *arguments):
        """The same for output that is no text."""
        return subprocess.run([KPF, *arguments], cwd=self.folder, capture_output=True, timeout=60,
                              check=False)


class Terminal:
    """A command whose standard error is a terminal, fed as long as the test wants."""

    def __init__(self, test, *arguments):
        ours, theirs = pty.openpty()
        self.shown = b""
        self.process = subprocess.Popen([KPF, *arguments], cwd=test.folder, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=theirs)
        os.close(theirs)
        self.reader = threading.Thread(target=self._read, args=(ours,))
        self.reader.start()
        test.addCleanup(self.reader.join)
        test.addCleanup(self.process.kill)

    def _read(self, descriptor):
        with contextlib.suppress(OSError):  # the terminal is gone when the command has ended
            while data := os.read(descriptor, 4096):
                self.shown += data
        os.close(descriptor)

    def feed(self, data):
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def end(self):
        """Exit code, standard output, and all that the terminal was sent."""
        out, _ = self.process.communicate(timeout=60)
        self.reader.join(60)
        return self.process.returncode, out, self.shown
