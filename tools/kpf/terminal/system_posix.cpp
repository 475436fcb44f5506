#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <initializer_list>

#include "tools/kpf/terminal/system.h"

namespace KPF_TOOL {

// Opened the wrong way round, so that reading and writing fail as they would have.
void holdStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest that is free, which is this one.
    open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
  // A limit on the size of files is a write that fails, and is told: not the end of the program in
  // the midst of its work.
  std::signal(SIGXFSZ, SIG_IGN);
}

bool errorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

// In memory: the folder for temporary files may be read-only or full.
std::FILE* openScratchFile() {
  const int descriptor = memfd_create("scratch", MFD_CLOEXEC);
  return descriptor < 0 ? nullptr : fdopen(descriptor, "w+");
}

}  // namespace KPF_TOOL
