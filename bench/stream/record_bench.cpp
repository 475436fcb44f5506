// Recording into the page cache through the exported functions, beside a plain write of bytes that
// are ready. Both fill new files, a new one for every kFrames frames. (ext4 would send a file that
// had been truncated to the device when it is closed.)
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "bench/support/jobs.h"
#include "format/kpf_sizes.h"
#include "tests/support/files.h"
#include "vlm_internal.h"

namespace BENCH {
namespace {

// Few enough that the system does not begin to write them to the device.
constexpr unsigned kFrames = 32;

using TEST_SUPPORT::TemporaryFolder;
using AddFrame = std::function<int(unsigned stream, const unsigned char* data)>;

std::size_t recordSizeOf(FrameSize size) {
  return KPF_FORMAT::recordSizeOf(KPF_FORMAT::packedSizeOf(size.pixels(), true));
}

/// One recording after the other in the same place.
class Recorder {
 public:
  Recorder(FrameSize size, AddFrame add) : add_(std::move(add)) {
    configuration_.width = size.width;
    configuration_.height = size.height;
    configuration_.frameRate = 30;
    configuration_.bitsPerPixel = 12;
    configuration_.frameCount = kFrames;
  }
  ~Recorder() { close(); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  double add(const unsigned char* data) {
    if (written_++ % kFrames == 0) open();
    return secondsOf([&] { add_(stream_, data); });
  }

 private:
  void open() {
    close();
    folder_.emplace();
    stream_ = vxCreatePackStreamer(*folder_ / "bench.kpf", configuration_);
    if (stream_ == 0) throw std::runtime_error("cannot record into the temporary folder");
  }
  void close() const {
    if (stream_ != 0) vxClosePackStreamer(stream_);
  }

  std::optional<TemporaryFolder> folder_;
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration_;
  AddFrame add_;
  unsigned stream_ = 0;
  unsigned written_ = 0;
};

TimedJob recordJob(FrameSize size, std::size_t inputSize, const AddFrame& add) {
  auto recorder = std::make_shared<Recorder>(size, add);
  auto in = std::make_shared<BufferRing>(inputSize, inputSize);
  return [=] { return recorder->add(in->next()); };
}

/// The same records into the same kind of file, by nothing but write().
class PlainFile {
 public:
  ~PlainFile() { close(file_); }

  double write(const unsigned char* record, std::size_t size) {
    if (written_++ % kFrames == 0) open();
    return secondsOf([&] {
      if (::write(file_, record, size) != static_cast<ssize_t>(size)) {
        throw std::runtime_error("cannot write into the temporary folder");
      }
    });
  }

 private:
  void open() {
    close(file_);
    folder_.emplace();
    file_ = ::open((*folder_ / "bench.bytes").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  }

  std::optional<TemporaryFolder> folder_;
  int file_ = -1;
  unsigned written_ = 0;
};

TimedJob writeJob(FrameSize size) {
  const std::size_t record = recordSizeOf(size);
  auto file = std::make_shared<PlainFile>();
  auto in = std::make_shared<BufferRing>(record, record);
  return [=] { return file->write(in->next(), record); };
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) {
    const std::size_t record = recordSizeOf(size);
    addTimedJob("record-image", size, size.pixels() * 2 + record,
                [=] { return recordJob(size, size.pixels() * 2, vxAddTiffImageData); });
    addTimedJob("record-packed", size, 2 * record,
                [=] { return recordJob(size, record, vxAddPackedData); });
    addTimedJob("record/write", size, 2 * record, [=] { return writeJob(size); });
  }
}

}  // namespace BENCH
