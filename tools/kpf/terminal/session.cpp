#include "tools/kpf/terminal/session.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void noteInterrupt(int) { interrupted = 1; }

std::string clockText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(seconds);
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

// Not restarted: a command that waits for a camera or a pipe returns from its wait.
Interrupt::Interrupt() {
  struct sigaction action {};
  action.sa_handler = noteInterrupt;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool Interrupt::requested() { return interrupted != 0; }

Progress::Progress(bool quiet, std::uint64_t total, const char* unit)
    : visible_(!quiet && isatty(STDERR_FILENO) != 0),
      total_(total),
      unit_(unit),
      begin_(Clock::now()),
      shown_(begin_) {}

Progress::~Progress() {
  if (visible_) std::fputs("\r\033[K", stderr);
}

void Progress::show(std::uint64_t done) {
  using std::chrono::duration;
  const auto now = Clock::now();
  if (!visible_ || now - shown_ < std::chrono::milliseconds(100)) return;
  shown_ = now;
  const double rate = static_cast<double>(done) / duration<double>(now - begin_).count();
  if (total_ < done) {
    fmt::print(stderr, "\r\033[K{} {}, {:.0f} {}/s", done, unit_, rate, unit_);
  } else {
    fmt::print(stderr, "\r\033[K{} of {} {}, {:.0f} {}/s, {} left", done, total_, unit_, rate,
               unit_, clockText(static_cast<double>(total_ - done) / rate));
  }
}

LibraryWords::LibraryWords() : heard_(std::tmpfile()), output_(-1) {
  if (heard_ == nullptr) {
    throw ToolError(kProblems, "no temporary file can be made",
                    "Make room in the folder for temporary files, or set TMPDIR.");
  }
  std::fflush(stdout);
  output_ = dup(STDOUT_FILENO);
  dup2(fileno(heard_), STDOUT_FILENO);
}

LibraryWords::~LibraryWords() {
  release();
  std::fclose(heard_);
}

bool LibraryWords::any() const {
  struct stat status {};
  return fstat(fileno(heard_), &status) == 0 && status.st_size > 0;
}

void LibraryWords::release() {
  if (output_ < 0) return;
  std::fflush(stdout);
  dup2(output_, STDOUT_FILENO);
  close(output_);
  output_ = -1;
  std::rewind(heard_);
  char line[2048];
  while (std::fgets(line, sizeof line, heard_) != nullptr) std::fputs(line, stderr);
}

}  // namespace KPF_TOOL
