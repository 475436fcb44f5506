#include "tools/kpf/frames/raw_output.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstddef>
#include <string>
#include <system_error>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

/// The line that begins a Y4M stream. Rates are fractions there: thousandths tell those that are
/// written with three digits.
std::string y4mHeader(const PictureFormat& format) {
  constexpr double kParts = 1000;
  const bool whole = format.frameRate == std::floor(format.frameRate);
  const std::string rate = whole ? fmt::format("{:.0f}:1", format.frameRate)
                                 : fmt::format("{:.0f}:1000", format.frameRate * kParts);
  return fmt::format("YUV4MPEG2 W{} H{} F{} Ip A1:1 C{}\n", format.width, format.height, rate,
                     format.samples == Samples::k8Bit ? "mono" : "mono16");
}

class RawOutput : public PictureOutput {
 public:
  // A descriptor of its own: while the library is at work standard output is captured.
  explicit RawOutput(const PictureFormat& format)
      : size_(format.rowSize() * format.height), output_(dup(STDOUT_FILENO)) {
    if (!format.y4m) return;
    header_ = y4mHeader(format);
    mark_ = "FRAME\n";
  }
  ~RawOutput() override {
    if (output_ >= 0) close(output_);
  }
  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;

  void add(const unsigned char* rows) override {
    put(header_.data(), header_.size());
    header_.clear();  // once
    put(mark_.data(), mark_.size());
    put(rows, size_);
  }

  void finish() override {
    if (output_ < 0) fail();
  }

 private:
  // A frame that is begun is completed, also when Ctrl-C interrupts the wait for a full pipe:
  // whoever reads it counts in frames.
  void put(const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    for (std::size_t done = 0; done < size;) {
      const ssize_t written = write(output_, bytes + done, size - done);
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
  std::string header_;  // still to be written
  std::string mark_;    // before each frame
  int output_;          // -1 when standard output is closed
};

}  // namespace

std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format) {
  return std::make_unique<RawOutput>(format);
}

}  // namespace KPF_TOOL
