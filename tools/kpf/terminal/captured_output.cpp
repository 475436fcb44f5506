#include "tools/kpf/terminal/captured_output.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "tools/kpf/terminal/system.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kMostLines = 10;

/// @return false at the end of the file.
bool readLine(std::FILE* file, std::string& line) {
  line.clear();
  int letter = 0;
  while ((letter = std::fgetc(file)) != EOF && letter != '\n') line += static_cast<char>(letter);
  return letter != EOF || !line.empty();
}

}  // namespace

CapturedOutput::CapturedOutput() : captured_(openScratchFile()), output_(-1) {
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
  std::string line;
  std::uint64_t lines = 0;
  for (; readLine(captured_, line); ++lines) {
    if (lines >= kMostLines) continue;
    tell("kpf: log of the library: {}\n", escaped(line));
  }
  if (lines <= kMostLines) return;
  const std::string more = countText(lines - kMostLines, "line");
  tell("kpf: log of the library: {} more\n", more);
}

}  // namespace KPF_TOOL
