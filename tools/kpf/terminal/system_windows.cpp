#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "tools/kpf/terminal/system.h"

namespace KPF_TOOL {
namespace {

UINT codePageBefore = 0;

// The window belongs to whoever started the program.
void restoreCodePage() { SetConsoleOutputCP(codePageBefore); }

}  // namespace

void holdStandardStreams() {
  for (std::FILE* const stream : {stdin, stdout, stderr}) {
    // Without a descriptor there is nothing that a file could be given instead.
    if (_fileno(stream) >= 0) _setmode(_fileno(stream), _O_BINARY);
  }
  codePageBefore = GetConsoleOutputCP();
  if (codePageBefore == 0 || codePageBefore == CP_UTF8) return;
  if (SetConsoleOutputCP(CP_UTF8) != 0) std::atexit(restoreCodePage);
}

// Windows from before 2016 cannot rewrite a line this way.
bool errorIsTerminal() {
  const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(error, &mode) != 0 &&
         SetConsoleMode(error, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

// Gone when it is closed, or when the process ends.
std::FILE* openScratchFile() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t name[MAX_PATH + 1];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0) return nullptr;
  if (GetTempFileNameW(folder, L"kpf", 0, name) == 0) return nullptr;
  const int descriptor =
      _wopen(name, _O_RDWR | _O_BINARY | _O_TEMPORARY | _O_NOINHERIT | _O_SHORT_LIVED);
  return descriptor < 0 ? nullptr : _fdopen(descriptor, "w+b");
}

}  // namespace KPF_TOOL
