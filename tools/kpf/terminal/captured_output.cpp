#include "tools/kpf/terminal/captured_output.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kMostLines = 10;

}  // namespace

// A file in memory: the folder for temporary ones may be read-only or full.
CapturedOutput::CapturedOutput()
    : captured_(fdopen(memfd_create("log lines", MFD_CLOEXEC), "w+")), output_(-1) {
  if (captured_ == nullptr) {
    throw ToolError(Outcome::kFailed, "the system gives no memory for the library's log lines",
                    "Close other programs.");
  }
  // What was printed before belongs to the real output.
  std::fflush(stdout);
  output_ = dup(STDOUT_FILENO);
  dup2(fileno(captured_), STDOUT_FILENO);
}

CapturedOutput::~CapturedOutput() {
  release();
  std::fclose(captured_);
}

bool CapturedOutput::any() const {
  struct stat status {};
  return fstat(fileno(captured_), &status) == 0 && status.st_size > 0;
}

void CapturedOutput::drop() {
  std::fflush(stdout);
  std::rewind(captured_);
  // What cannot be forgotten is told: more than is needed, but nothing wrong.
  [[maybe_unused]] const int told = ftruncate(fileno(captured_), 0);
}

void CapturedOutput::release() {
  if (output_ < 0) return;
  std::fflush(stdout);
  dup2(output_, STDOUT_FILENO);
  close(output_);
  output_ = -1;
  // The descriptors share one position, which stands behind the last line.
  std::rewind(captured_);
  pass();
}

/// Names in them come from files that nobody vouches for, and there may be a line for each frame.
void CapturedOutput::pass() {
  char* line = nullptr;
  std::size_t room = 0;
  std::uint64_t lines = 0;
  for (ssize_t size = 0; (size = getline(&line, &room, captured_)) > 0; ++lines) {
    if (lines >= kMostLines) continue;
    std::string text(line, static_cast<std::size_t>(size));
    if (text.ends_with('\n')) text.pop_back();
    tell("kpf: log of the library: {}\n", escaped(text));
  }
  std::free(line);
  if (lines <= kMostLines) return;
  const std::string more = countText(lines - kMostLines, "line");
  tell("kpf: log of the library: {} more\n", more);
}

}  // namespace KPF_TOOL
