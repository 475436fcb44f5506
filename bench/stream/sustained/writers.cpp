#include "bench/stream/sustained/writers.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "vlm_internal.h"

namespace BENCH {
namespace {

constexpr std::size_t kFramesOfMaterial = 12;
constexpr std::size_t kHeader = 16;

class Library : public FrameWriter {
 public:
  Library(const std::string& folder, const Material& material, unsigned frames)
      : material_(material) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = material.size.width;
    configuration.height = material.size.height;
    configuration.bitsPerPixel = material.bitsPerPixel;
    configuration.frameRate = 60;
    configuration.frameCount = frames;
    stream_ = vxCreatePackStreamer(folder + "/library.kpf", configuration);
    require(stream_ != 0, "vxCreatePackStreamer");
  }
  ~Library() override { vxClosePackStreamer(stream_); }

  void write(unsigned n) override {
    const auto& image = material_.images[n % material_.images.size()];
    require(vxAddTiffImageData(stream_, image.data()) >= 3, "vxAddTiffImageData");
  }

 private:
  const Material& material_;
  unsigned stream_ = 0;
};

class File {
 public:
  File(const std::string& path, int flags)
      : descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | flags, 0666)) {
    require(descriptor_ >= 0, "open");
  }
  ~File() { close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  int descriptor() const { return descriptor_; }
  void write(const unsigned char* bytes, std::size_t size) const {
    require(::write(descriptor_, bytes, size) == static_cast<ssize_t>(size), "write");
  }

 private:
  int descriptor_;
};

class Plain : public FrameWriter {
 public:
  Plain(const std::string& folder, const Material& material)
      : material_(material), file_(folder + "/plain.data", 0) {}

  void write(unsigned n) override {
    const auto& record = material_.records[n % material_.records.size()];
    file_.write(record.data(), record.size());
  }

 private:
  const Material& material_;
  File file_;
};

/// Whole blocks go out; what is left over of a record waits for the next one.
class Direct : public FrameWriter {
 public:
  Direct(const std::string& folder, const Material& material, unsigned frames)
      : material_(material), file_(folder + "/direct.data", O_DIRECT) {
    const std::size_t size = (material.recordSize() / kBlock + 2) * kBlock;
    staging_.reset(static_cast<unsigned char*>(std::aligned_alloc(kBlock, size)));
    require(staging_ != nullptr, "aligned_alloc");
    std::memset(staging_.get(), 0, size);
    const auto whole = static_cast<off_t>(material.recordSize()) * frames;
    require(posix_fallocate(file_.descriptor(), 0, whole) == 0, "posix_fallocate");
  }

  void write(unsigned n) override {
    const auto& record = material_.records[n % material_.records.size()];
    std::memcpy(staging_.get() + held_, record.data(), record.size());
    held_ += record.size();
    const std::size_t whole = held_ / kBlock * kBlock;
    file_.write(staging_.get(), whole);
    held_ -= whole;
    std::memmove(staging_.get(), staging_.get() + whole, held_);
  }

 private:
  struct Free {
    void operator()(unsigned char* block) const { std::free(block); }
  };
  static constexpr std::size_t kBlock = 4096;

  const Material& material_;
  File file_;
  std::unique_ptr<unsigned char, Free> staging_;
  std::size_t held_ = 0;
};

}  // namespace

Material::Material(FrameSize frameSize, int bits) : size(frameSize), bitsPerPixel(bits) {
  const std::size_t packed = bits == 8 ? size.pixels() : size.pixels() * 3 / 2;
  for (std::size_t n = 0; n < kFramesOfMaterial; ++n) {
    images.push_back(randomBytes(size.pixels() * 2, static_cast<unsigned>(n) + 1));
    records.emplace_back(images[n].begin(),
                         images[n].begin() + static_cast<std::ptrdiff_t>(packed));
    records[n].resize(packed + kHeader);
  }
}

std::unique_ptr<FrameWriter> openLibrary(const std::string& folder, const Material& material,
                                         unsigned frames) {
  return std::make_unique<Library>(folder, material, frames);
}

std::unique_ptr<FrameWriter> openPlain(const std::string& folder, const Material& material,
                                       unsigned /*frames*/) {
  return std::make_unique<Plain>(folder, material);
}

std::unique_ptr<FrameWriter> openDirect(const std::string& folder, const Material& material,
                                        unsigned frames) {
  return std::make_unique<Direct>(folder, material, frames);
}

std::vector<NamedWriter> allWriters() {
  return {
      {"library", openLibrary}, {"write", openPlain}, {"O_DIRECT", openDirect},
#ifdef VLM_BENCH_PEERS
      {"libtiff", openTiff},    {"HDF5", openHdf5},
#endif
  };
}

}  // namespace BENCH
