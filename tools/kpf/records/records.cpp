#include "tools/kpf/records/records.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#include "format/kpf_frame_count.h"
#include "format/kpf_layout.h"

namespace KPF_TOOL {
using KPF_READER::DivFile;
using KPF_READER::RecordingError;
namespace layout = KPF_FORMAT::FRAME_HEADER;
namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 20;
constexpr std::uint64_t kPage = 4096;  // closer than this, headers are not worth a call each

/// The first byte is 0, and each other byte is the one before it: compared in the widest strides.
bool allZero(std::span<const unsigned char> bytes) {
  return bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

void parse(std::span<const unsigned char> bytes, Record& record) {
  const auto number = [&bytes](KPF_FORMAT::Field field) {
    return KPF_FORMAT::load(bytes.data(), field);
  };
  record.sequenceNumber = static_cast<std::uint32_t>(number(layout::kSequenceNumber));
  record.seconds = static_cast<std::int64_t>(number(layout::kSeconds));
  record.microseconds = static_cast<std::uint32_t>(number(layout::kMicroseconds));
}

/// Bytes behind the last record that the data file may hold; a torn record before that is none.
std::uint64_t bytesBehind(const KPF_READER::Header& header, const DivFile& file) {
  return file.records == header.recordsInDivFile(file.number) ? file.trailingBytes : 0;
}

}  // namespace

Records::Records(const KPF_READER::Recording& recording, KPF_READER::Access access)
    : recording_(recording),
      ahead_(access == KPF_READER::Access::kSequential || recording.header().recordSize() < kPage
                 ? kBlock
                 : 0) {}

std::uint32_t Records::places() const {
  const auto& files = recording_.divFiles();
  const auto last =
      std::find_if(files.rbegin(), files.rend(), [](const DivFile& f) { return f.records != 0; });
  if (last == files.rend()) return 0;
  return (last->number - 1) * recording_.header().framesPerDivFile + last->records;
}

const DivFile* Records::fileOf(std::uint32_t place) const {
  const std::uint32_t number = place / recording_.header().framesPerDivFile + 1;
  const auto& files = recording_.divFiles();
  const auto file = std::partition_point(files.begin(), files.end(),
                                         [number](const DivFile& f) { return f.number < number; });
  const bool holds = file != files.end() && file->number == number &&
                     place % recording_.header().framesPerDivFile < file->records;
  return holds ? &*file : nullptr;
}

Record Records::read(std::uint32_t place) {
  Record record = locate(place);
  record.bytes = bytesOf(record, recording_.header().recordSize());
  record.pixels = record.bytes.subspan(layout::kSize);
  record.placeholder = allZero(record.bytes);
  parse(record.bytes, record);
  return record;
}

Record Records::readHeader(std::uint32_t place) {
  Record record = locate(place);
  const auto header = bytesOf(record, layout::kSize);
  parse(header, record);
  // Frame 0 at time 0 begins like a placeholder, and only its pixels tell.
  record.placeholder =
      allZero(header) && allZero(bytesOf(record, recording_.header().recordSize()));
  return record;
}

std::uint32_t Records::unstoredFrom(const Record& record) {
  open(*record.file);
  // Between records of a block it is not worth a call.
  if (record.offset < asked_) return 0;
  const std::uint64_t end = std::min(data_->storedFrom(record.offset), record.file->size);
  asked_ = std::max(end, record.offset + kBlock);
  const std::uint64_t whole =
      (end - std::min(end, record.offset)) / recording_.header().recordSize();
  const std::uint32_t index = record.place % recording_.header().framesPerDivFile;
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(whole, record.file->records - index));
}

Record Records::locate(std::uint32_t place) const {
  Record record;
  record.place = place;
  record.file = fileOf(place);
  if (record.file == nullptr) throw std::out_of_range("Records: there is no such record");
  record.offset = std::uint64_t{place % recording_.header().framesPerDivFile} *
                  recording_.header().recordSize();
  return record;
}

std::span<const unsigned char> Records::bytesOf(const Record& record, std::uint64_t size) {
  open(*record.file);
  if (record.offset < start_ || record.offset + size > start_ + held_) fill(record.offset, size);
  return std::span(block_).subspan(record.offset - start_, size);
}

void Records::open(const DivFile& file) {
  if (file_ == &file) return;
  file_ = nullptr;
  held_ = 0;
  asked_ = 0;
  data_.emplace(file.path);
  behind_ = ReadBehind();
  file_ = &file;
}

void Records::fill(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t wanted = std::min(std::max(size, ahead_), file_->size - offset);
  if (block_.size() < wanted) block_.resize(wanted);
  start_ = offset;
  held_ = 0;
  behind_.reading(*data_, offset, wanted, file_->size);
  held_ = data_->read(offset, std::span(block_).first(wanted));
  if (held_ >= size) return;
  // What is not there for once is told with the system's own word, if it has one.
  data_->read(offset + held_, std::span(block_).first(1));
  throw RecordingError(file_->path, offset + held_, "the file has become shorter");
}

bool announcesCount(const KPF_READER::Header& header) {
  return header.frameCount != KPF_FORMAT::kFrameCountUnknown;
}

std::uint64_t recordsBehindEnd(const KPF_READER::Recording& recording) {
  const KPF_READER::Header& header = recording.header();
  const auto& files = recording.divFiles();
  if (files.empty() || files.back().number != header.divFileCount()) return 0;
  return bytesBehind(header, files.back()) / header.recordSize();
}

std::uint64_t bytesOfNoFrame(const KPF_READER::Recording& recording) {
  const KPF_READER::Header& header = recording.header();
  std::uint64_t bytes = 0;
  for (const DivFile& file : recording.divFiles()) {
    const std::uint64_t behind = bytesBehind(header, file);
    bytes += file.number == header.divFileCount() ? behind % header.recordSize() : behind;
  }
  return bytes;
}

bool isReplaced(const KPF_READER::Recording& recording) {
  constexpr KPF_FORMAT::Field kIdentifier = KPF_FORMAT::HEADER::kIdentifier;
  const auto& before = recording.header().identifier;
  std::array<unsigned char, kIdentifier.size> now{};
  try {
    const std::size_t held = DataFile(recording.path()).read(kIdentifier.offset, now);
    return held == now.size() && now != before;
  } catch (const RecordingError&) {
    return false;  // gone, and what is open stays what it was
  }
}

void setSequenceNumber(std::span<unsigned char> bytes, std::uint32_t number) {
  KPF_FORMAT::store(bytes.data(), layout::kSequenceNumber, number);
}

std::optional<Record> firstHeaderOf(const std::string& path) {
  std::array<unsigned char, layout::kSize> bytes{};
  if (DataFile(path).read(0, bytes) < bytes.size()) return std::nullopt;
  Record record;
  parse(bytes, record);
  return record;
}

}  // namespace KPF_TOOL
