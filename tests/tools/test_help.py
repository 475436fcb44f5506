"""--help of every command: what it says is complete, and true."""
import re
import shlex
import unittest

from recordings import RecordingTest
from videos import VideoTest, y4m


def parsed(text):
    """Usage line, positionals, options and the lines of EXIT STATUS."""
    usage = re.search(r"^Usage: (.*)$", text, re.MULTILINE).group(1)
    entries = re.findall(r"^  (-?[A-Za-z-][^\s]*)(?: [^\n]*?)?(?:\s{2,}|\n\s+)(\S[^\n]*)$",
                         text.split("EXIT STATUS")[0], re.MULTILINE)
    status = re.findall(r"^  (\d)  (.+)$", text.split("EXIT STATUS")[-1], re.MULTILINE)
    example = re.search(r"^Example: (.*)$", text, re.MULTILINE)
    return usage, dict(entries), dict(status), example and example.group(1)


class Help(RecordingTest):
    """What can be learned without running anything but --help."""

    def commands(self):
        code, out, err = self.kpf("--help")
        self.assertEqual((code, err), (0, ""))
        return re.findall(r"^  ([a-z]+) {2,}\S", out.split("Subcommands:")[1], re.MULTILINE)

    def help_of(self, command):
        code, out, err = self.kpf(command, "--help")
        self.assertEqual((code, err), (0, ""), command)
        return out

    def test_there_are_commands(self):
        self.assertGreaterEqual(set(self.commands()),
                                {"record", "info", "verify", "export", "amplify"})

    def test_every_argument_is_described(self):
        for command in self.commands():
            with self.subTest(command):
                out = self.help_of(command)
                usage, entries, _, _ = parsed(out)
                for name in re.findall(r"\b[A-Z]{2,}\b", usage.replace("OPTIONS", "")):
                    self.assertIn(name, entries)
                named = re.findall(r"^  (?:-\w,)?(--[a-z-]+)", out, re.MULTILINE)
                self.assertIn("--help", named)
                for line in out.splitlines():
                    if re.match(r"^  (-|[A-Z]{2,}\b)", line):
                        # The description follows on the line, or on the next one.
                        following = out.split(line, 1)[1].split("\n")[1]
                        self.assertTrue(re.search(r"\S {2,}\S", line[2:]) or
                                        re.match(r"^ {20,}\S", following), line)

    def test_every_command_says_what_its_exit_codes_mean(self):
        for command in self.commands():
            with self.subTest(command):
                status = parsed(self.help_of(command))[2]
                self.assertLessEqual({"0", "2"}, set(status))
                self.assertLessEqual(set(status), {"0", "1", "2"})

    def test_every_command_has_an_example_of_itself(self):
        for command in self.commands():
            with self.subTest(command):
                example = parsed(self.help_of(command))[3]
                self.assertTrue(example.startswith("kpf %s " % command), example)

    def test_lines_fit_a_terminal(self):
        for command in self.commands():
            for line in self.help_of(command).splitlines():
                self.assertLessEqual(len(line), 110, line)

    def test_help_does_not_depend_on_where_the_program_lies(self):
        self.assertIn("Usage: kpf info [OPTIONS] FILE", self.help_of("info"))


class Examples(VideoTest):
    """Each example runs as it stands, with files of the names that it uses."""

    def setUp(self):
        super().setUp()
        frames = self.eight * 41
        self.write_video("street.avi", frames)
        self.assertEqual(self.kpf("record", "street.avi", "clip.kpf", "--force", "--quiet",
                                  *self.start), (0, "", ""))

    def write_video(self, name, frames):
        """What FFmpeg opens by its content, whatever the name says."""
        self.write(name, y4m(frames, 6, 4))

    def test_every_example_runs(self):
        _, out, _ = self.kpf("--help")
        for command in re.findall(r"^  ([a-z]+) {2,}\S", out.split("Subcommands:")[1],
                                  re.MULTILINE):
            with self.subTest(command):
                if command == "view":
                    continue  # it serves until somebody ends it: see test_view.py
                example = parsed(self.kpf(command, "--help")[1])[3]
                words = shlex.split(example.split("&&")[0])[1:]
                if "--force" not in words and command == "record":
                    words.append("--force")  # the recording of that name is the one made above
                code, _, err = self.kpf(*words)
                self.assertEqual((code, err), (0, ""), example)


if __name__ == "__main__":
    unittest.main()
