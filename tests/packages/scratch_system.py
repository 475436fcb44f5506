"""A system of one's own: commands see empty folders where they would change the machine's."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

UNSHARE = ["unshare", "--mount"] if os.getuid() == 0 else ["unshare", "--mount", "--map-root-user"]
# Written by `cmake --install`, by ldconfig, and by ldconfig again.
REPLACED = ("usr/local", "etc", "var/cache/ldconfig")


def environment():
    """That of a newcomer: nothing in it helps programs and libraries to be found."""
    kept = {name: os.environ[name] for name in ("HOME", "LC_ALL", "TMPDIR") if name in os.environ}
    return {**kept, "PATH": "/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"}


class ScratchSystem(unittest.TestCase):
    """self.folder is a scratch folder; self.run_as_root runs a script in a system of its own."""

    def setUp(self):
        if not shutil.which("unshare") or subprocess.run([*UNSHARE, "true"], check=False,
                                                         stderr=subprocess.DEVNULL).returncode:
            self.skipTest("the kernel gives no mounts of one's own here")
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        for name in REPLACED:
            (self.folder / "system" / name).mkdir(parents=True)
        # What only root may read is not needed, and left out when another user runs this.
        subprocess.run(["cp", "-a", "/etc/.", str(self.folder / "system/etc")], check=False,
                       stderr=subprocess.DEVNULL)

    def run_as_root(self, script, path=()):
        """Runs the lines of a bash script, and gives what it wrote."""
        mounts = ["mount --bind %s/system/%s /%s" % (self.folder, name, name)
                  for name in REPLACED if os.path.isdir("/" + name)]
        variables = environment()
        variables["PATH"] = ":".join([*map(str, path), variables["PATH"]])
        done = subprocess.run([*UNSHARE, "bash", "-euc", "\n".join([*mounts, script])],
                              check=False, cwd=self.folder, env=variables, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout
