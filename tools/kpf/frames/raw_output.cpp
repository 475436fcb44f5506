#include "tools/kpf/frames/raw_output.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <system_error>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

class RawOutput : public PictureOutput {
 public:
  // A descriptor of its own: while the library is at work standard output is captured.
  explicit RawOutput(const PictureFormat& format)
      : size_(format.rowSize() * format.height), output_(dup(STDOUT_FILENO)) {}
  ~RawOutput() override {
    if (output_ >= 0) close(output_);
  }
  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;

  // A frame that is begun is completed, also when Ctrl-C interrupts the wait for a full pipe:
  // whoever reads it counts in frames.
  void add(const unsigned char* rows) override {
    for (std::size_t done = 0; done < size_;) {
      const ssize_t written = write(output_, rows + done, size_ - done);
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail();
      done += static_cast<std::size_t>(written);
    }
  }

  void finish() override {
    if (output_ < 0) fail();
  }

 private:
  [[noreturn]] static void fail() {
    const std::string why = std::generic_category().message(errno);
    throw ToolError(Outcome::kWriteFailed, "cannot write to standard output: " + why,
                    "Check what reads the pipe, or the disk that it goes to.");
  }

  std::size_t size_;
  int output_;  // -1 when standard output is closed
};

}  // namespace

std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format) {
  return std::make_unique<RawOutput>(format);
}

}  // namespace KPF_TOOL
