#include "tools/kpf/recording/checksummed_stream.h"

#include <algorithm>
#include <exception>

#include "tools/kpf/records/checksum.h"

namespace KPF_TOOL {
namespace {

// To wake a thread costs as much as to read a small record. All of these are still in memory.
constexpr std::uint64_t kBytesAtOnce = std::uint64_t{2} << 20;

}  // namespace

ChecksummedStream::ChecksummedStream(RecordStream& stream, const std::string& header)
    : stream_(stream),
      recording_(header),
      writer_(checksumFileName(header), recording_.header().identifier),
      record_(recording_.header().recordSize()),
      atOnce_(std::max<std::uint64_t>(kBytesAtOnce / record_.size(), 1)),
      reader_([this] { keepUp(); }) {}

ChecksummedStream::~ChecksummedStream() { end(); }

void ChecksummedStream::addImage(const unsigned char* image) {
  stream_.addImage(image);
  tell(1);
}

void ChecksummedStream::addPlaceholder() {
  stream_.addPlaceholder();
  tell(1);
}

void ChecksummedStream::tell(std::uint64_t news) {
  const std::uint64_t added = added_ += news;
  if (added % atOnce_ == 0 || added & kEnded) added_.notify_one();
}

void ChecksummedStream::end() {
  if (!reader_.joinable()) return;
  tell(kEnded);
  reader_.join();
}

void ChecksummedStream::keepUp() {
  for (;;) {
    const std::uint64_t added = added_;
    if (next_ < (added & ~kEnded)) {
      keep();
    } else if (added & kEnded) {
      return;
    } else {
      added_.wait(added);
    }
  }
}

// Behind a record that is not there, the recording is about to end with what the library says.
void ChecksummedStream::keep() {
  const std::uint32_t place = next_++;
  if (failed_) return;
  try {
    readBack(place);
  } catch (const std::exception&) {
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

bool ChecksummedStream::finish() {
  end();
  return writer_.close() && !failed_;
}

}  // namespace KPF_TOOL
