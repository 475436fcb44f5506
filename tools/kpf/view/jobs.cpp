#include "tools/kpf/view/jobs.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostAtOnce = 4;
constexpr std::size_t kLongestText = 2000;

/// What a process is begun with: no input, both outputs in one file.
class Descriptors {
 public:
  explicit Descriptors(int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, output, STDERR_FILENO);
  }
  ~Descriptors() { posix_spawn_file_actions_destroy(&actions_); }
  Descriptors(const Descriptors&) = delete;
  Descriptors& operator=(const Descriptors&) = delete;

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

pid_t startSelf(const std::vector<std::string>& arguments, int output) {
  std::vector<std::string> words{"kpf"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t process = 0;
  const Descriptors descriptors(output);
  const int failed =
      posix_spawn(&process, "/proc/self/exe", descriptors.get(), nullptr, pointers.data(), environ);
  if (failed != 0) {
    throw ToolError(Outcome::kFailed, "no process can be started", "Close other programs.");
  }
  return process;
}

}  // namespace

Jobs::~Jobs() {
  for (auto& [id, job] : jobs_) {
    look(job);
    if (job.code >= 0) continue;
    kill(job.process, SIGTERM);
    waitpid(job.process, nullptr, 0);
  }
}

void Jobs::look(Running& job) {
  int status = 0;
  if (job.code >= 0 || waitpid(job.process, &status, WNOHANG) != job.process) return;
  job.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

unsigned Jobs::start(const std::vector<std::string>& arguments) {
  const std::lock_guard lock(mutex_);
  std::size_t running = 0;
  for (auto& [id, job] : jobs_) {
    look(job);
    running += job.code < 0 ? 1U : 0U;
  }
  if (running >= kMostAtOnce) {
    throw ToolError(Outcome::kRefused, "four jobs are at work", "Wait until one of them is done");
  }
  Running job;
  job.output.reset(std::tmpfile());
  if (job.output == nullptr) {
    throw ToolError(Outcome::kWriteFailed, "no temporary file can be made", "Set TMPDIR");
  }
  job.process = startSelf(arguments, fileno(job.output.get()));
  jobs_.emplace(++last_, std::move(job));
  return last_;
}

/// The end of it, which says how it ended.
std::string Jobs::textOf(const Running& job) {
  const int file = fileno(job.output.get());
  const off_t size = lseek(file, 0, SEEK_END);
  std::array<char, kLongestText> text{};
  const off_t from = std::max<off_t>(size - static_cast<off_t>(text.size()), 0);
  const ssize_t read = pread(file, text.data(), text.size(), from);
  return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(read, 0))};
}

Json Jobs::tell(unsigned id) {
  const std::lock_guard lock(mutex_);
  const auto found = jobs_.find(id);
  if (found == jobs_.end()) {
    throw ToolError(Outcome::kWrongUsage, "there is no such job", "Load the page again");
  }
  look(found->second);
  const int code = found->second.code;
  return {{"state", code < 0 ? "running" : "done"},
          {"code", code},
          {"text", code < 0 ? "" : textOf(found->second)}};
}

}  // namespace KPF_TOOL
