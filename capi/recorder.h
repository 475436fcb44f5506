// A recording that is being written: what stands behind a kpf_writer.
#ifndef CAPI_RECORDER_H
#define CAPI_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "capi/images.h"
#include "capi/kpf.h"
#include "stream/vx_stream_kpf_packed.h"

namespace KPF_C {

/// Ends a stream that nobody closed as a killed process does: nothing more is written.
struct Abandon {
  void operator()(VLM_KPF::VxKPFPackedStream* stream) const noexcept {
    stream->streamStatus = STREAM_CLOSED;
    delete stream;
  }
};
using Stream = std::unique_ptr<VLM_KPF::VxKPFPackedStream, Abandon>;

/// Feeds the library's writer, and asks of it what a caller in C is told at once. One thread at a
/// time. What fails throws a Failure.
class Recorder {
 public:
  /// @param name as recordingName() gives it.
  Recorder(const std::string& name, const kpf_writer_options& options);
  void addImage(const unsigned char* pixels, std::size_t rowStride, const kpf_stamp* stamp);
  void addPacked(const unsigned char* pixels, std::size_t size, const kpf_stamp* stamp);
  void addLost();
  /// Notes a frame that took no place.
  void countRefused() { ++counts_.refused; }

  kpf_writer_counts counts() const;

  /// Ends the recording; throws when not every frame is on disk.
  void close();

 private:
  void requirePlace() const;
  std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> newFrame(const kpf_stamp* stamp) const;
  template <class Add>
  void add(Add&& addToStream);
  void makeDurable() const;

  const std::string name_;
  const bool announced_;
  const bool durable_;
  const std::uint32_t form_;
  const Geometry geometry_;
  const Stream stream_;
  kpf_writer_counts counts_{};  // what the stream does not know itself
  bool hasDataFile_ = true;     // false once one could not be opened: the stream does not try again
};

}  // namespace KPF_C

#endif
