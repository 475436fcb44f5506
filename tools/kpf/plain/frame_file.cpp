#include "tools/kpf/plain/frame_file.h"

#include <cerrno>
#include <cstddef>
#include <fstream>
#include <ios>
#include <string>

#include "paths/native_path.h"

namespace KPF_TOOL {
namespace {

class FrameFile : public PictureOutput {
 public:
  FrameFile(const Destination& destination, const PictureFormat& format, const Framing& framing)
      : destination_(destination),
        newFile_(destination_.name, destination_),
        out_(PATHS::nativePath(newFile_.path()), std::ios::binary),
        size_(format.rowSize() * format.height),
        eachFrame_(framing.eachFrame) {
    put(framing.before.data(), framing.before.size());
  }

  void add(const unsigned char* rows) override {
    put(eachFrame_.data(), eachFrame_.size());
    put(reinterpret_cast<const char*>(rows), size_);
  }

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
  std::string eachFrame_;
};

}  // namespace

std::unique_ptr<PictureOutput> openFrameFile(const Destination& destination,
                                             const PictureFormat& format, const Framing& framing) {
  return std::make_unique<FrameFile>(destination, format, framing);
}

}  // namespace KPF_TOOL
