// Everything that can be said to kpf.
#ifndef KPF_COMMAND_LINE_H
#define KPF_COMMAND_LINE_H

#include <CLI/CLI.hpp>

#include "tools/kpf/commands/command.h"

namespace KPF_TOOL {

/**
 * Declares the program and all of its commands: names, options, defaults, help, examples, exit
 * codes. This is the one table of them: the parser works by it, and whatever else describes the
 * tool is made by walking `app`.
 *
 * @param job receives what the user asked for when `app` has parsed a line; must outlive `app`.
 */
void buildCommandLine(CLI::App& app, Job& job);

}  // namespace KPF_TOOL

#endif
