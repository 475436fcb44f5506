"""Completions for the shells. Where nothing better is known they offer files."""

NUMBERS = ("INT", "UINT", "FLOAT")


def long_names(options):
    return [name for option in options for name in option.names if name.startswith("-")]


def bash_values(tool):
    """What follows an option: its choices, nothing for numbers, files for other text."""
    for command in tool.commands:
        for option in command.options:
            if not option.choices and option.type not in NUMBERS:
                continue
            yield "    %s)" % " | ".join("%s:%s" % (command.name, name) for name in option.names)
            if option.choices:
                yield '      COMPREPLY=($(compgen -W "%s" -- "$word"))' % " ".join(option.choices)
            yield "      return ;;"


def bash(tool):
    commands = [command.name for command in tool.commands]
    yield "# bash completion for kpf, made from its own help"
    yield "_kpf() {"
    yield "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}"
    yield "  local command= options= given"
    yield '  for given in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do'
    yield "    case $given in %s) command=$given; break ;; esac" % " | ".join(commands)
    yield "  done"
    yield "  COMPREPLY=()"
    yield "  case $command:$before in"
    yield from bash_values(tool)
    yield "  esac"
    yield "  case $command in"
    for command in tool.commands:
        yield '    %s) options="%s" ;;' % (command.name, " ".join(long_names(command.options)))
    yield '    *) options="%s" ;;' % " ".join(long_names(tool.options))
    yield "  esac"
    yield "  if [[ $word == -* ]]; then"
    yield '    COMPREPLY=($(compgen -W "$options" -- "$word"))'
    yield "  elif [[ -z $command ]]; then"
    yield '    COMPREPLY=($(compgen -W "%s" -- "$word"))' % " ".join(commands)
    yield "  else"
    yield "    compopt -o default"
    yield "  fi"
    yield "}"
    yield "complete -F _kpf kpf"


def zsh_text(text):
    return text.replace("'", "'\\''").replace("[", "(").replace("]", ")").replace(":", "\\:")


def zsh_option(option):
    for name in option.names:
        value = ""
        if option.type:
            offer = "(%s)" % " ".join(option.choices) if option.choices else (
                " " if option.type in NUMBERS else "_files")
            value = ":%s:%s" % (option.type.lower(), offer)
        yield "'%s[%s]%s'" % (name, zsh_text(option.meaning), value)


def zsh(tool):
    yield "#compdef kpf"
    yield "# zsh completion for kpf, made from its own help"
    yield "local -a commands"
    yield "local curcontext=$curcontext state line"
    yield "commands=("
    for command in tool.commands:
        yield "  '%s:%s'" % (command.name, zsh_text(command.about))
    yield ")"
    options = [text for option in tool.options for text in zsh_option(option)]
    yield "_arguments -C %s '1:command:->command' '*::argument:->argument'" % " ".join(options)
    yield "case $state in"
    yield "  command) _describe command commands ;;"
    yield "  argument)"
    yield "    case $words[1] in"
    for command in tool.commands:
        texts = [text for option in command.options for text in zsh_option(option)]
        yield "      %s) _arguments %s '*:file:_files' ;;" % (command.name, " ".join(texts))
    yield "    esac ;;"
    yield "esac"


def fish_option(option):
    for name in option.names:
        yield "-l " + name[2:] if name.startswith("--") else "-s " + name[1:]


def fish_lines(condition, options):
    for option in options:
        about = option.meaning.replace("\\", "\\\\").replace("'", "\\'")
        line = "complete -c kpf -n '%s' %s -d '%s'" % (condition, " ".join(fish_option(option)), about)
        if option.choices:
            line += " -x -a '%s'" % " ".join(option.choices)
        elif option.type:
            line += " -x" if option.type in NUMBERS else " -r"
        yield line


def fish(tool):
    yield "# fish completion for kpf, made from its own help"
    for command in tool.commands:
        about = command.about.replace("'", "\\'")
        yield "complete -c kpf -n __fish_use_subcommand -f -a %s -d '%s'" % (command.name, about)
    yield from fish_lines("__fish_use_subcommand", tool.options)
    for command in tool.commands:
        yield from fish_lines("__fish_seen_subcommand_from " + command.name, command.options)
