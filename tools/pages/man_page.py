"""The man page of the tool."""
import textwrap


def escaped(text):
    """Text as troff prints it: a hyphen of a command line, no dot or quote at the head of a line."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text.startswith((".", "'")) else text


def flowed(text):
    """Lines of at most 80 bytes, which troff joins again."""
    for line in textwrap.wrap(text, 76, break_long_words=False, break_on_hyphens=False):
        yield from textwrap.wrap(escaped(line), 80, break_long_words=False,
                                 break_on_hyphens=False)


def sentence(text):
    """Short texts of the help begin small and end without a dot."""
    return text if text.endswith((".", ")")) or not text else text + "."


def option_lines(option):
    names = ", ".join("\\fB%s\\fR" % escaped(name) for name in option.names)
    value = " \\fI%s\\fR" % escaped(option.type) if option.names[0].startswith("-") and option.type else ""
    yield ".TP"
    yield names + value
    extras = ["One of %s." % ", ".join(option.choices)] if option.choices else []
    if option.default:
        extras.append("Default: %s." % option.default)
    yield from list(flowed(" ".join([sentence(option.meaning), *extras]).strip())) or ["\\&"]


def note_lines(notes):
    """Examples and tables, line by line as they stand in the help."""
    while notes and not notes[0].strip():
        notes = notes[1:]
    while notes and not notes[-1].strip():
        notes = notes[:-1]
    if notes:
        yield from (".PP", ".nf", *(escaped(note) if note else ".sp" for note in notes), ".fi")


def command_lines(command):
    yield '.SS "%s"' % escaped(command.usage.replace('"', ""))
    yield escaped(sentence(command.about))
    for option in command.positionals + command.options:
        if "--help" not in option.names:
            yield from option_lines(option)
    yield from note_lines(command.notes)
    for below in command.commands:
        yield from command_lines(below)


def man_page(tool, version, date):
    about = tool.about.rstrip(".")
    yield '.TH KPF 1 "%s" "vlm_internal %s" "User Commands"' % (date, version)
    yield from (".SH NAME", "kpf \\- " + escaped(about[0].lower() + about[1:]))
    yield from (".SH SYNOPSIS", ".nf")
    for command in tool.commands:
        yield escaped(command.usage)
    yield from (escaped("kpf --help"), ".fi", ".SH DESCRIPTION")
    yield escaped(sentence(tool.about))
    yield "Results go to standard output, errors to standard error with what to do next."
    yield ".SH COMMANDS"
    for command in tool.commands:
        yield from command_lines(command)
    yield ".SH OPTIONS"
    for option in tool.options:
        yield from option_lines(option)
    if any(note.strip() for note in tool.notes):
        yield from (".SH NOTES", *note_lines(tool.notes))
