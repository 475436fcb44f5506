#include "tools/kpf/media/image_output.h"

#include <cstddef>
#include <memory>

#include "tools/kpf/files/image_files.h"

namespace KPF_TOOL {
namespace {

/// Each packet of the encoder is a whole file.
class ImageOutput : public PictureOutput {
 public:
  ImageOutput(const Destination& destination, const PictureFormat& format, const Encoding& encoding)
      : files_(destination, format.firstNumber, format.frames),
        encoder_(destination.name, format, encoding, 0) {}

  void add(const unsigned char* rows) override {
    encoder_.encode(rows, [this](AVPacket& packet) { write(packet); });
  }

  void pass() override { files_.pass(); }

  void finish() override {
    encoder_.finish([this](AVPacket& packet) { write(packet); });
    files_.finish();
  }

 private:
  void write(const AVPacket& packet) {
    files_.add({packet.data, static_cast<std::size_t>(packet.size)});
  }

  ImageFiles files_;
  Encoder encoder_;
};

}  // namespace

std::unique_ptr<PictureOutput> openImageOutput(const Destination& destination,
                                               const PictureFormat& format,
                                               const Encoding& encoding) {
  return std::make_unique<ImageOutput>(destination, format, encoding);
}

}  // namespace KPF_TOOL
