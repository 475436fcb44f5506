"""kpf without a job: help, version, wrong usage."""
import os
import pathlib
import re
import subprocess
import unittest

from recordings import KPF, RecordingTest, header

PAGE = (pathlib.Path(__file__).resolve().parents[2] / "docs" / "tool.md").read_text(encoding="utf-8")


class CommandLine(RecordingTest):
    def test_version(self):
        code, out, err = self.kpf("--version")
        self.assertEqual((code, err), (0, ""))
        self.assertRegex(out, r"^kpf \d+\.\d+\.\d+\n$")

    def commands(self):
        code, out, err = self.kpf("--help")
        self.assertEqual((code, err), (0, ""))
        return re.findall(r"^  (\w+) ", out.split("Subcommands:\n", 1)[1], re.M)

    def test_help_and_page_name_every_command_but_the_demos_own(self):
        self.assertEqual(sorted(self.commands()), sorted(re.findall(r"^\| `kpf (\w+)", PAGE, re.M)))
        self.assertNotIn("sheet", self.commands())

    def test_page_tells_which_commands_have_json(self):
        told = PAGE.split(" have `--json`")[0].rsplit(". ", 1)[1]
        self.assertEqual(re.findall(r"`(\w+)`", told),
                         [one for one in self.commands() if "--json" in self.kpf(one, "--help")[1]])

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs a device that is always full")
    def test_results_that_cannot_be_written_are_no_success(self):
        for arguments in (("info", "clip.kpf"), ("info", "clip.kpf", "--json"),
                          ("verify", "clip.kpf"), ("export", "clip.kpf", "-"),
                          ("amplify", "clip.kpf", "-", "--frequency", "12"), ("--version",), ("--help",)):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([KPF, *arguments], cwd=self.folder, stdout=full,
                                      stderr=subprocess.PIPE, timeout=60, check=False)
            self.assertEqual(done.returncode, 1, arguments)
            self.assertIn(b"kpf: cannot write to standard output: ", done.stderr)

    def test_long_results_that_cannot_be_written_are_told_once(self):
        self.write("clip.kpf", header(per_file=1, frames=400))
        with open("/dev/full", "wb") as full:
            done = subprocess.run([KPF, "verify", "clip.kpf"], cwd=self.folder, stdout=full,
                                  stderr=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"kpf: "), 1, done.stderr)

    def test_closed_output_does_not_end_in_a_file(self):
        for close in (">&-", "<&- >&-", "<&- >&- 2>&-"):
            done = subprocess.run(["sh", "-c", 'exec "$0" export clip.kpf out.png --to 0 --force '
                                   + close, KPF], cwd=self.folder, timeout=60, check=False)
            self.assertEqual(done.returncode, 0)
            done = subprocess.run(["sh", "-c", 'exec "$0" info clip.kpf ' + close, KPF],
                                  cwd=self.folder, timeout=60, stderr=subprocess.DEVNULL,
                                  check=False)
            self.assertEqual(done.returncode, 1)

    def test_closed_output_costs_no_frame(self):
        """Nothing that is opened meanwhile may get its descriptor: what is said goes there."""
        self.assertEqual(self.kpf("export", "clip.kpf", "in.mkv"), (0, "", ""))
        for name, close in (("open", ""), ("shut", ">&-")):
            subprocess.run(["sh", "-c", 'exec "$0" record in.mkv %s.kpf %s' % (name, close), KPF],
                           cwd=self.folder, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, timeout=60, check=False)
            self.assertEqual(self.kpf("verify", name + ".kpf", "--strict")[0], 0)

    def test_mistyped_command_is_named_with_the_nearest(self):
        for typed, meant in (("exprot", "export"), ("inof", "info"), ("amplfy", "amplify"),
                             ("verfiy", "verify"), ("Record", "record"), ("infoo", "info")):
            code, out, err = self.kpf(typed, "clip.kpf")
            self.assertEqual((code, out), (2, ""), typed)
            self.assertEqual(err, 'kpf: "%s" is no command\nDid you mean %s? See kpf --help.\n'
                             % (typed, meant))
        for typed in ("sheets", "x", "", "clip.kpf"):
            code, out, err = self.kpf(typed)
            self.assertEqual((code, out), (2, ""), typed)
            self.assertIn("is no command\nSee kpf --help", err)

    def test_short_help_is_no_mistyped_command(self):
        code, out, err = self.kpf("-h")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("record", out)

    def test_closed_input_is_none(self):
        done = subprocess.run(["sh", "-c", 'exec "$0" record - out.kpf <&-', KPF],
                              cwd=self.folder, timeout=60, capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertIn(b"kpf: cannot open -: Bad file descriptor\n", done.stderr)
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_wrong_usage(self):
        for arguments in ((), ("unknown",), ("info",), ("info", "clip.kpf", "--unknown")):
            code, out, err = self.kpf(*arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn("--help", err)


if __name__ == "__main__":
    unittest.main()
