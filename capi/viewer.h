// A recording that is being read: what stands behind a kpf_reader.
#ifndef CAPI_VIEWER_H
#define CAPI_VIEWER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "capi/images.h"
#include "capi/kpf.h"
#include "reader/kpf_reader.h"

namespace KPF_C {

/**
 * Looks frames up by their place in the recording, and keeps mapped what it has given pixels of.
 *
 * The reader behind it counts the records that are there; here, what is missing keeps its place.
 * One thread at a time. What fails throws a Failure.
 */
class Viewer {
 public:
  /// @param name as recordingName() gives it.
  Viewer(const std::string& name, KPF_READER::Access access);

  kpf_recording_info describe() const;
  kpf_frame frame(std::uint32_t n);
  /// Leaves `samples` untouched when it throws.
  void unpack(std::uint32_t n, std::uint16_t* samples, std::size_t count, std::uint32_t form) const;
  /// Valid until the next call.
  const char* dataFile(std::uint32_t number);
  /// Throws, and nothing changes, when the files are no longer those of the same recording.
  void refresh();

 private:
  KPF_READER::FrameRecord recordAt(std::uint32_t n, bool& lost) const;

  const std::string name_;
  const KPF_READER::Access access_;
  KPF_READER::Recording recording_;
  const Geometry geometry_;
  std::string dataFile_;
  std::map<std::uint32_t, std::shared_ptr<const void>> held_;  // mappings by data file
};

}  // namespace KPF_C

#endif
