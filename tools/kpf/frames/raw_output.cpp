#include "tools/kpf/frames/raw_output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string>
#include <system_error>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;  // bytes; Windows counts in 32 bits

class RawOutput : public PictureOutput {
 public:
  // A descriptor of its own: while the library is at work standard output is captured.
  RawOutput(const PictureFormat& format, const Framing& framing)
      : size_(format.rowSize() * format.height), framing_(framing), output_(dup(STDOUT_FILENO)) {}
  ~RawOutput() override {
    if (output_ >= 0) close(output_);
  }
  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;

  // A frame that is begun is completed, also when Ctrl-C interrupts the wait for a full pipe:
  // whoever reads it counts in frames.
  void add(const unsigned char* rows) override {
    if (!began_) put(framing_.before.data(), framing_.before.size());
    began_ = true;
    put(framing_.eachFrame.data(), framing_.eachFrame.size());
    put(rows, size_);
  }

  bool tellsRate() const override { return framing_.tellsRate(); }

  void finish() override {
    if (output_ < 0) fail();
  }

 private:
  void put(const void* data, std::size_t size) const {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    for (std::size_t done = 0; done < size;) {
      const auto part = static_cast<unsigned>(std::min(size - done, kMostAtOnce));
      const auto written = write(output_, bytes + done, part);
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail();
      done += static_cast<std::size_t>(written);
    }
  }

  [[noreturn]] static void fail() {
    const std::string why = std::generic_category().message(errno);
    throw ToolError(Outcome::kWriteFailed, "cannot write to standard output: " + why,
                    "Check what reads the pipe, or the disk that it goes to.");
  }

  std::size_t size_;
  Framing framing_;
  bool began_ = false;
  int output_;  // -1 when standard output is closed
};

}  // namespace

std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format, const Framing& framing) {
  return std::make_unique<RawOutput>(format, framing);
}

}  // namespace KPF_TOOL
