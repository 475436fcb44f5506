#include "tools/kpf/recording/checksummed_stream.h"

#include "tools/kpf/records/checksum.h"

namespace KPF_TOOL {

ChecksummedStream::ChecksummedStream(RecordStream& stream, const std::string& header)
    : stream_(stream),
      recording_(header),
      writer_(checksumFileName(header), recording_.header().identifier),
      record_(recording_.header().recordSize()) {}

void ChecksummedStream::addImage(const unsigned char* image) {
  stream_.addImage(image);
  keep();
}

void ChecksummedStream::addPlaceholder() {
  stream_.addPlaceholder();
  keep();
}

// Behind a record that is not there, the recording is about to end with what the library says.
void ChecksummedStream::keep() {
  if (failed_) return;
  try {
    readBack(next_++);
  } catch (const KPF_READER::RecordingError&) {
    failed_ = true;
  }
}

void ChecksummedStream::readBack(std::uint32_t place) {
  const std::uint32_t perFile = recording_.header().framesPerDivFile;
  const std::uint32_t number = place / perFile + 1;
  if (number != fileNumber_) {
    file_.emplace(recording_.divFilePath(number));
    fileNumber_ = number;
  }
  const std::uint64_t offset = std::uint64_t{place % perFile} * record_.size();
  failed_ = file_->read(offset, record_) < record_.size();
  if (!failed_) writer_.add(place, checksumOf(record_));
}

bool ChecksummedStream::finish() { return writer_.close() && !failed_; }

}  // namespace KPF_TOOL
