// What the tool asks of the operating system about this machine; a file a system.
#ifndef KPF_MACHINE_H
#define KPF_MACHINE_H

#include <string>

namespace KPF_TOOL {

/// Bytes of memory that this machine has.
double machineMemory();

/// How a user makes StartSignal come from elsewhere: "SIGUSR1 to process 4711"; empty where nothing
/// does.
std::string startSignalText();

}  // namespace KPF_TOOL

#endif
