"""The commands and options of a program, read from its own --help.

The help is made from the tables that parse the command line, so what is read here cannot differ from
what the program takes: man page and completions need no list of their own.
"""
import dataclasses
import re
import subprocess

# Entries of the help: two blanks, the name, and from the 30th column on what it means, on the next
# line where the name is too long.
ENTRY = re.compile(r"^  (\S.*?)(?:  +(\S.*))?$")
CONTINUED = re.compile(r"^ {20,}(\S.*)$")
HEADING = re.compile(r"^([A-Z][\w ]*):$")
# What follows an option's name: its type, what restricts it, the value that it has by itself.
VALUE = re.compile(r"^(?P<type>[A-Z]\w*)(?::(?P<check>.*?))?(?:=(?P<default>\S+))?$")


@dataclasses.dataclass
class Option:
    names: list[str]
    meaning: str
    type: str = ""  # empty for flags
    choices: list[str] = dataclasses.field(default_factory=list)
    default: str = ""


@dataclasses.dataclass
class Command:
    name: str
    about: str = ""
    usage: str = ""
    positionals: list[Option] = dataclasses.field(default_factory=list)
    options: list[Option] = dataclasses.field(default_factory=list)
    commands: list["Command"] = dataclasses.field(default_factory=list)
    notes: list[str] = dataclasses.field(default_factory=list)  # examples and other closing lines


def read_option(name, meaning):
    names, _, rest = name.partition(" ")
    rest = rest.split(" Needs:")[0].split(" Excludes:")[0].replace("REQUIRED", "").strip()
    option = Option(names.split(","), meaning)
    value = VALUE.match(rest)
    if value:
        option.type, option.default = value["type"], value["default"] or ""
        braces = re.search(r"\{(.*?)\}", value["check"] or "")
        if braces:
            option.choices = [choice.split("->")[0] for choice in braces[1].split(",")]
    return option


def blocks(lines):
    """Yields (heading, its entries) and, for all other lines, (None, the line)."""
    heading, entries = None, []
    for line in lines:
        entry, continued = ENTRY.match(line), CONTINUED.match(line)
        if heading and continued and entries:
            entries[-1][1] = (entries[-1][1] + " " + continued[1]).strip()
        elif heading and entry:
            entries.append([entry[1], entry[2] or ""])
        else:
            if heading:
                yield heading, entries
            title = HEADING.match(line)
            heading, entries = (title[1], []) if title else (None, [])
            if not title:
                yield None, line
    if heading:
        yield heading, entries


def add_entries(command, heading, entries):
    """Puts the entries of one heading where they belong; tables of other things are notes."""
    names = [name for name, _ in entries]
    if all(name.startswith("-") for name in names):
        command.options += [read_option(*entry) for entry in entries]
    elif heading == "Positionals":
        command.positionals += [read_option(*entry) for entry in entries]
    elif command.usage.endswith("SUBCOMMAND") and all(re.match(r"[a-z][\w-]*$", n) for n in names):
        command.commands += [Command(name, meaning) for name, meaning in entries]
    else:
        command.notes += [heading + ":"] + ["  %s  %s" % tuple(entry) for entry in entries]


def read_command(program, words=()):
    """The command that `program words...` is, with those below it."""
    text = subprocess.run([program, *words, "--help"], check=True, capture_output=True,
                          text=True).stdout.replace(program, "kpf")
    about, _, rest = text.partition("\nUsage: ")
    usage, _, rest = rest.partition("\n")
    command = Command(words[-1] if words else "kpf", about.strip(), usage.strip())
    for heading, found in blocks(rest.splitlines()):
        if heading:
            add_entries(command, heading, found)
        else:
            command.notes.append(found)
    command.commands = [read_command(program, (*words, below.name)) for below in command.commands]
    return command
