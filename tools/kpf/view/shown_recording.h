// One recording that is looked at, perhaps while it grows.
#ifndef KPF_SHOWN_RECORDING_H
#define KPF_SHOWN_RECORDING_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "kpf_reader.h"

namespace KPF_TOOL {

/// Knows which frames a recording has by now. Any thread may ask; its frames are read by
/// ShownFrames.
class ShownRecording {
 public:
  /// @throws KPF_READER::RecordingError.
  explicit ShownRecording(const std::string& path);

  const std::string& path() const { return path_; }
  const KPF_READER::Header& header() const { return header_; }

  /// One more than the last place whose record is there; grows with the recording.
  std::uint32_t places();

  /// Its files as they are now. @throws KPF_READER::RecordingError.
  std::shared_ptr<const KPF_READER::Recording> now();

 private:
  using Clock = std::chrono::steady_clock;

  std::string path_;
  std::mutex mutex_;
  std::shared_ptr<const KPF_READER::Recording> recording_;
  KPF_READER::Header header_;  // stays as it was at first
  Clock::time_point lookedAt_;
};

}  // namespace KPF_TOOL

#endif
