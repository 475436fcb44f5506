// The list of commands.
#ifndef KPF_COMMANDS_H
#define KPF_COMMANDS_H

#include "tools/kpf/commands/command.h"

namespace KPF_TOOL {

/// Adds one command, with all that its help says, to the command line.
using AddCommand = void(CLI::App& app, Job& job);

// A command more is a file in this folder and its name in these two lines; CMakeLists.txt takes
// every file there is. The order is that of the help.
AddCommand addRecord, addCameras, addInfo, addVerify, addChecksum, addCut, addExport, addAmplify,
    addView, addProbe, addSpeed, addSheet;
constexpr AddCommand* kCommands[] = {addRecord,   addCameras, addInfo,   addVerify,
                                     addChecksum, addCut,     addExport, addAmplify,
                                     addView,     addProbe,   addSpeed,  addSheet};

}  // namespace KPF_TOOL

#endif
