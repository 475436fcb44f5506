#include "tools/kpf/frames/raw_output.h"

#include <unistd.h>

#include <cstddef>
#include <cstdio>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

class RawOutput : public PictureOutput {
 public:
  // A descriptor of its own: while the library is at work standard output is captured.
  explicit RawOutput(const PictureFormat& format)
      : size_(format.rowSize() * format.height), file_(fdopen(dup(STDOUT_FILENO), "wb")) {}
  ~RawOutput() override {
    if (file_ != nullptr) std::fclose(file_);
  }
  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;

  void add(const unsigned char* rows) override {
    if (file_ == nullptr || std::fwrite(rows, 1, size_, file_) != size_) fail();
  }

  void finish() override {
    if (file_ == nullptr || std::fflush(file_) != 0) fail();
  }

 private:
  [[noreturn]] static void fail() {
    throw ToolError(Outcome::kWriteFailed, "cannot write to standard output",
                    "Check what reads the pipe.");
  }

  std::size_t size_;
  std::FILE* file_;  // null when standard output is closed
};

}  // namespace

std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format) {
  return std::make_unique<RawOutput>(format);
}

}  // namespace KPF_TOOL
