"""kpf without a job: help, version, wrong usage."""
import unittest

from recordings import RecordingTest


class CommandLine(RecordingTest):
    def test_version(self):
        code, out, err = self.kpf("--version")
        self.assertEqual((code, err), (0, ""))
        self.assertRegex(out, r"^kpf \d+\.\d+\.\d+\n$")

    def test_help_names_every_command_and_hides_the_demos_own(self):
        code, out, err = self.kpf("--help")
        self.assertEqual((code, err), (0, ""))
        for command in ("record", "info", "verify", "export", "amplify"):
            self.assertIn("\n  " + command + " ", out)
        self.assertNotIn("sheet", out)

    def test_wrong_usage(self):
        for arguments in ((), ("unknown",), ("info",), ("info", "clip.kpf", "--unknown")):
            code, out, err = self.kpf(*arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn("--help", err)


if __name__ == "__main__":
    unittest.main()
