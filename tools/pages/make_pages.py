#!/usr/bin/python3
"""Makes the man page and the shell completions of kpf from its own help.

make_pages.py KPF FOLDER DATE: KPF is the program, DATE that of its release.
Leaves kpf.1, kpf.bash, _kpf (zsh) and kpf.fish in FOLDER.
"""
import pathlib
import subprocess
import sys

from command_line import read_command
from completions import bash, fish, zsh
from man_page import man_page


def main(program, folder, date):
    tool = read_command(program)
    if not tool.commands:
        sys.exit("make_pages.py: no commands in the help of %s" % program)
    version = subprocess.run([program, "--version"], check=True, capture_output=True,
                             text=True).stdout.split()[-1]
    pages = {"kpf.1": man_page(tool, version, date), "kpf.bash": bash(tool), "_kpf": zsh(tool),
             "kpf.fish": fish(tool)}
    for name, lines in pages.items():
        pathlib.Path(folder, name).write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
