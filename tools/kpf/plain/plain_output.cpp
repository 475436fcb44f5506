#include "tools/kpf/plain/plain_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <ios>
#include <string>
#include <utility>
#include <vector>

#include "paths/native_path.h"
#include "tools/kpf/files/image_files.h"
#include "tools/kpf/frames/framing.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

/// Frames one behind the other in a file.
class FrameFile : public PictureOutput {
 public:
  FrameFile(const Destination& destination, const PictureFormat& format, const Framing& framing)
      : destination_(destination),
        newFile_(destination_.name, destination_),
        out_(PATHS::nativePath(newFile_.path()), std::ios::binary),
        size_(format.rowSize() * format.height),
        framing_(framing) {
    put(framing_.before.data(), framing_.before.size());
  }

  void add(const unsigned char* rows) override {
    put(framing_.eachFrame.data(), framing_.eachFrame.size());
    put(reinterpret_cast<const char*>(rows), size_);
  }

  bool tellsRate() const override { return framing_.tellsRate(); }

  // Here, not in the destructor: a disk may refuse the last bytes when the file is closed.
  void finish() override {
    out_.close();
    check();
    newFile_.commit();
  }

 private:
  void put(const char* bytes, std::size_t size) {
    out_.write(bytes, static_cast<std::streamsize>(size));
    check();
  }

  void check() const {
    if (!out_) throw cannotWriteFile(destination_.name, errno);
  }

  const Destination destination_;
  NewFile newFile_;
  std::ofstream out_;  // closed before newFile_ removes what was not finished
  std::size_t size_;
  Framing framing_;
};

/// Frames as grey images that every program reads.
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

std::unique_ptr<PictureOutput> openPlainOutput(const Destination& destination,
                                               const PictureFormat& format) {
  const std::string name = lowerCase(destination.name);
  if (name.ends_with(".raw")) return std::make_unique<FrameFile>(destination, format, Framing{});
  if (name.ends_with(".y4m")) {
    return std::make_unique<FrameFile>(destination, format, y4mFraming(format));
  }
  if (name.ends_with(".pgm")) return std::make_unique<PgmOutput>(destination, format);
  return nullptr;
}

}  // namespace KPF_TOOL
