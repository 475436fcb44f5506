// The checksums of a recording that is being made.
#ifndef KPF_CHECKSUMMED_STREAM_H
#define KPF_CHECKSUMMED_STREAM_H

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/records/checksum_file.h"
#include "tools/kpf/records/data_file.h"

namespace KPF_TOOL {

/// Reads each record back as soon as it is with the system, where it is still in memory: so the
/// checksum is that of what was really written. A thread of its own does so, beside the one that
/// records: one copy and one sum of each record are a tenth of what recording it takes.
class ChecksummedStream : public RecordStream {
 public:
  /// @param stream that was begun with that header file, and holds nothing yet.
  ChecksummedStream(RecordStream& stream, const std::string& header);
  ~ChecksummedStream() override;
  ChecksummedStream(const ChecksummedStream&) = delete;
  ChecksummedStream& operator=(const ChecksummedStream&) = delete;

  void addImage(const unsigned char* image) override;
  void addPlaceholder() override;

  /// @return false when a record or its checksum is not on disk.
  bool finish();

 private:
  static constexpr std::uint64_t kEnded = std::uint64_t{1} << 63;  // beside the records added

  void tell(std::uint64_t news);
  void end();
  void keepUp();
  void keep();
  void readBack(std::uint32_t place);

  RecordStream& stream_;
  KPF_READER::Recording recording_;
  ChecksumWriter writer_;
  std::vector<unsigned char> record_;
  std::uint64_t atOnce_;  // records that the thread is woken for
  std::optional<DataFile> file_;
  std::uint32_t fileNumber_ = 0;  // of the one that is open
  std::uint32_t next_ = 0;        // place
  bool failed_ = false;
  std::atomic<std::uint64_t> added_ = 0;  // records, and in the end kEnded
  std::thread reader_;                    // the last: it works with all of the above
};

}  // namespace KPF_TOOL

#endif
