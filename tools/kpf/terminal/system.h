// What the tool asks of the operating system for its standard streams; a file a system.
#ifndef KPF_SYSTEM_H
#define KPF_SYSTEM_H

#include <cstdio>

namespace KPF_TOOL {

/// To be called first. Where standard input, output or error is closed its descriptor is taken, or
/// the next file that is opened would have it, and results would be printed into a recording. On
/// Windows results are the same bytes as elsewhere: no line end becomes two bytes, texts are UTF-8.
/// A write that a limit on the size of files refuses fails as others do.
void holdStandardStreams();

/// Whether standard error is a terminal where a line can be written again.
bool errorIsTerminal();

/// A file for what is wanted for a moment only; nobody else sees it. @return null where there is no
/// room for one.
std::FILE* openScratchFile();

}  // namespace KPF_TOOL

#endif
