#include "tools/kpf/plain/pgm_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "tools/kpf/files/image_files.h"

namespace KPF_TOOL {
namespace {

class PgmOutput : public PictureOutput {
 public:
  PgmOutput(const Destination& destination, const PictureFormat& format)
      : files_(destination, format.firstNumber, format.frames), deep_(bytesOf(format.samples) > 1) {
    const auto header =
        fmt::format("P5\n{} {}\n{}\n", format.width, format.height, deep_ ? 65535 : 255);
    image_.assign(header.begin(), header.end());
    pixels_ = image_.size();
    image_.resize(pixels_ + format.rowSize() * format.height);
  }

  void add(const unsigned char* rows) override {
    std::copy_n(rows, image_.size() - pixels_, image_.begin() + static_cast<long long>(pixels_));
    // Two bytes of a sample begin with the high one here.
    for (std::size_t i = pixels_; deep_ && i < image_.size(); i += 2) {
      std::swap(image_[i], image_[i + 1]);
    }
    files_.add(image_);
  }

  void pass() override { files_.pass(); }

  void finish() override { files_.finish(); }

 private:
  ImageFiles files_;
  bool deep_;
  std::vector<unsigned char> image_;  // a whole file
  std::size_t pixels_ = 0;            // where they begin in it
};

}  // namespace

std::unique_ptr<PictureOutput> openPgmOutput(const Destination& destination,
                                             const PictureFormat& format) {
  return std::make_unique<PgmOutput>(destination, format);
}

}  // namespace KPF_TOOL
