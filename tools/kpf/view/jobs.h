// Work that the page asks for, done by the tool's own commands.
#ifndef KPF_JOBS_H
#define KPF_JOBS_H

#include <sys/types.h>

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tools/kpf/terminal/json.h"

namespace KPF_TOOL {

/// Runs commands of this very program, each in a process of its own: what they write and how they
/// fail is the same as on a command line, and none of it disturbs the pictures.
class Jobs {
 public:
  Jobs() = default;
  /// Ends what still runs, as Ctrl-C would.
  ~Jobs();
  Jobs(const Jobs&) = delete;
  Jobs& operator=(const Jobs&) = delete;

  /// @param arguments of kpf. @return the number to ask about it. @throws ToolError.
  unsigned start(const std::vector<std::string>& arguments);

  /// `state` (running or done), `code`, and `text`: what it wrote. @throws ToolError.
  Json tell(unsigned id);

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  struct Running {
    pid_t process = 0;
    std::unique_ptr<std::FILE, CloseFile> output;  // its standard output and error
    int code = -1;                                 // -1 while it runs
  };

  static void look(Running& job);
  static std::string textOf(const Running& job);

  std::mutex mutex_;
  std::map<unsigned, Running> jobs_;
  unsigned last_ = 0;
};

}  // namespace KPF_TOOL

#endif
