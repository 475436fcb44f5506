"""The man page and the completions, against the help that they are made from."""
import os
import pathlib
import re
import shutil
import subprocess
import unittest

KPF = os.environ["KPF"]
PAGES = pathlib.Path(os.environ["PAGES"])


def output(*command, **more):
    return subprocess.run(command, check=True, capture_output=True, text=True, **more)


def commands():
    """Read from the help without the maker's own reader, so that one holds the other."""
    return re.findall(r"^  ([a-z][\w-]*)  ", output(KPF, "--help").stdout, re.M)


def options(command):
    return re.findall(r"^  (?:-\w,)?(--[\w-]+)", output(KPF, command, "--help").stdout, re.M)


def completed(line, shell="bash"):
    """What bash offers for a line of which the last word is being written."""
    script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); compopt() { :; }; '
              '_kpf; printf "%s\\n" "${COMPREPLY[@]}"')
    words = output(shell, "-c", script, shell, str(PAGES / "kpf.bash"), *line).stdout.split()
    return sorted(words)


class ManPage(unittest.TestCase):
    def test_it_names_every_command_and_option(self):
        page = (PAGES / "kpf.1").read_text(encoding="utf-8").replace("\\-", "-")
        self.assertTrue(commands())
        for command in commands():
            part = re.search(r'^\.SS "kpf %s .*?(?=^\.S[SH])' % command, page, re.M | re.S)
            self.assertTrue(part, command)
            for option in set(options(command)) - {"--help"}:
                self.assertIn(r"\fB%s\fR" % option, part[0], command)

    def check_silent(self, program, *arguments):
        if not shutil.which(program):
            self.skipTest("no " + program)
        done = output(program, *arguments, str(PAGES / "kpf.1"))
        self.assertEqual(done.stderr, "")
        return done.stdout

    def test_groff_renders_it_without_a_warning(self):
        self.assertIn("SYNOPSIS", self.check_silent("groff", "-ww", "-man", "-Tutf8", "-P-cbou"))

    def test_mandoc_finds_nothing(self):
        self.assertEqual(self.check_silent("mandoc", "-T", "lint"), "")


class Completion(unittest.TestCase):
    def test_bash_offers_every_command(self):
        self.assertEqual(completed(["kpf", ""]), sorted(commands()))
        self.assertEqual(completed(["kpf", "rec"]), ["record"])

    def test_bash_offers_every_option_of_a_command(self):
        for command in commands():
            self.assertEqual(completed(["kpf", command, "--"]), sorted(options(command)), command)

    def test_bash_offers_choices_and_leaves_numbers_alone(self):
        self.assertEqual(completed(["kpf", "record", "a.avi", "--bits", ""]), ["12", "8"])
        self.assertEqual(completed(["kpf", "record", "a.avi", "--frames", ""]), [])

    def test_the_other_shells_can_read_theirs(self):
        for shell, file in (("zsh", "_kpf"), ("fish", "kpf.fish")):
            if shutil.which(shell):
                self.assertEqual(output(shell, "-n", str(PAGES / file)).stderr, "")
            text = (PAGES / file).read_text(encoding="utf-8")
            for command in commands():
                self.assertIn(command, text)


if __name__ == "__main__":
    unittest.main()
