// The checksums of a recording that is being made.
#ifndef KPF_CHECKSUMMED_STREAM_H
#define KPF_CHECKSUMMED_STREAM_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/records/checksum_file.h"
#include "tools/kpf/records/data_file.h"

namespace KPF_TOOL {

/// Reads each record back as soon as it is with the system, where it is still in memory: so the
/// checksum is that of what was really written.
class ChecksummedStream : public RecordStream {
 public:
  /// @param stream that was begun with that header file, and holds nothing yet.
  ChecksummedStream(RecordStream& stream, const std::string& header);

  void addImage(const unsigned char* image) override;
  void addPlaceholder() override;

  /// @return false when a record or its checksum is not on disk.
  bool finish();

 private:
  void keep();
  void readBack(std::uint32_t place);

  RecordStream& stream_;
  KPF_READER::Recording recording_;
  ChecksumWriter writer_;
  std::vector<unsigned char> record_;
  std::optional<DataFile> file_;
  std::uint32_t fileNumber_ = 0;  // of the one that is open
  std::uint32_t next_ = 0;        // place
  bool failed_ = false;
};

}  // namespace KPF_TOOL

#endif
