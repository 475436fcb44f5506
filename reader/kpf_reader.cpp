#include "reader/kpf_reader.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <system_error>
#include <utility>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "paths/native_path.h"
#include "reader/kpf_div_files.h"
#include "reader/kpf_header.h"
#include "reader/kpf_header_check.h"
#include "reader/mapped_file.h"

namespace KPF_READER {
namespace fs = std::filesystem;
using PATHS::nativePath;
namespace layout = KPF_FORMAT::FRAME_HEADER;
namespace {

constexpr std::size_t kLongestStatusText = 4096;

/// Opening a FIFO would wait for a writer, and a folder has no bytes.
std::uint64_t sizeOfFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_regular_file(fs::status(nativePath(path), error))) {
    throw RecordingError(path, 0, error ? error.message() : "not a file");
  }
  const std::uintmax_t size = fs::file_size(nativePath(path), error);
  if (error) throw RecordingError(path, 0, error.message());
  return size;
}

DivFile measure(const Header& header, std::uint32_t number, const std::string& path) {
  DivFile file;
  file.number = number;
  file.path = path;
  file.size = sizeOfFile(path);
  const std::uint64_t whole = file.size / header.recordSize();
  file.records =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(whole, header.recordsInDivFile(number)));
  file.trailingBytes = file.size - std::uint64_t{file.records} * header.recordSize();
  return file;
}

/// The first byte is 0, and each other byte is the one before it: compared in the widest strides.
bool allZero(std::span<const unsigned char> bytes) {
  return bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

FrameRecord parseRecord(std::span<const unsigned char> bytes) {
  FrameRecord record;
  const auto number = [&bytes](KPF_FORMAT::Field field) {
    return KPF_FORMAT::load(bytes.data(), field);
  };
  record.sequenceNumber = static_cast<std::uint32_t>(number(layout::kSequenceNumber));
  record.seconds = static_cast<std::int64_t>(number(layout::kSeconds));
  record.microseconds = static_cast<std::uint32_t>(number(layout::kMicroseconds));
  record.placeholder = allZero(bytes);
  record.pixels = bytes.subspan(layout::kSize);
  return record;
}

}  // namespace

RecordingError::RecordingError(const std::string& file, std::uint64_t offset,
                               const std::string& problem)
    : std::runtime_error(file + ", byte " + std::to_string(offset) + ": " + problem),
      file_(file),
      offset_(offset) {}

class Recording::Contents {
 public:
  Contents(const std::string& headerPath, Access access)
      : path(headerPath), access_(access), dataNames(findDataNames(headerPath)) {
    const MappedFile image(headerPath, Access::kSequential);
    header = parseHeader(image.bytes(), headerPath);
    deviations = findDeviations(image.bytes());
    findRecords();
  }

  void findRecords() {
    for (const auto& [number, file] : findDivFiles(dataNames)) {
      if (number > header.divFileCount()) break;
      divFiles.push_back(measure(header, number, file));
      divFiles.back().firstRecord = recordCount;
      recordCount += divFiles.back().records;
    }
  }

  const DivFile& fileOf(std::uint32_t n) const {
    if (n >= recordCount) throw std::out_of_range("Recording: there is no such record");
    const auto behind = std::partition_point(divFiles.begin(), divFiles.end(),
                                             [n](const DivFile& f) { return f.firstRecord <= n; });
    return *std::prev(behind);
  }

  /// A file is mapped once, for as long as the last record of it that somebody holds.
  std::shared_ptr<const MappedFile> map(const DivFile& file) {
    if (mapped_ != nullptr && mappedNumber_ == file.number) return mapped_;
    mapped_ = held_[file.number].lock();
    if (mapped_ == nullptr) {
      mapped_ = std::make_shared<const MappedFile>(file.path, access_);
      held_[file.number] = mapped_;
    }
    mappedNumber_ = file.number;
    return mapped_;
  }

  const std::string path;
  const Access access_;
  const KPF_FORMAT::DataNames dataNames;
  Header header;
  std::vector<HeaderDeviation> deviations;
  std::vector<DivFile> divFiles;
  std::uint32_t recordCount = 0;

 private:
  std::shared_ptr<const MappedFile> mapped_;  // the data file that was read last
  std::uint32_t mappedNumber_ = 0;
  std::map<std::uint32_t, std::weak_ptr<const MappedFile>> held_;
};

Recording::Recording(const std::string& headerPath, Access access)
    : contents_(std::make_unique<Contents>(headerPath, access)) {}
Recording::~Recording() = default;
Recording::Recording(Recording&&) noexcept = default;
Recording& Recording::operator=(Recording&&) noexcept = default;

const std::string& Recording::path() const { return contents_->path; }
const Header& Recording::header() const { return contents_->header; }
const std::vector<DivFile>& Recording::divFiles() const { return contents_->divFiles; }
const std::vector<HeaderDeviation>& Recording::headerDeviations() const {
  return contents_->deviations;
}
std::uint32_t Recording::recordCount() const { return contents_->recordCount; }

std::string Recording::divFilePath(std::uint32_t number) const {
  return KPF_FORMAT::divFileName(contents_->dataNames, number);
}

FrameRecord Recording::record(std::uint32_t n) const {
  const DivFile& file = contents_->fileOf(n);
  const std::uint32_t index = n - file.firstRecord;
  const std::size_t size = header().recordSize();
  const std::uint64_t offset = std::uint64_t{index} * size;
  const std::shared_ptr<const MappedFile> mapping = contents_->map(file);
  if (mapping->bytes().size() < offset + size) {
    throw RecordingError(file.path, mapping->bytes().size(), "the file has become shorter");
  }
  FrameRecord record = parseRecord(mapping->bytes().subspan(offset, size));
  record.place = (file.number - 1) * header().framesPerDivFile + index;
  record.fileNumber = file.number;
  record.offset = offset;
  record.mapping = mapping;
  return record;
}

void Recording::unpack(std::uint32_t n, std::span<std::uint16_t> samples) const {
  unpackPixels(header(), record(n).pixels, samples);
}

std::string Recording::statusFilePath() const { return KPF_FORMAT::statusFileName(path()); }

std::optional<std::string> Recording::statusFile() const {
  const std::string file = statusFilePath();
  std::error_code error;
  if (fs::status(nativePath(file), error).type() == fs::file_type::not_found) return std::nullopt;
  std::string text(std::min<std::uint64_t>(sizeOfFile(file), kLongestStatusText), '\0');
  std::ifstream in(nativePath(file), std::ios::binary);
  if (!in.read(text.data(), static_cast<std::streamsize>(text.size()))) {
    throw RecordingError(file, 0, "cannot be read");
  }
  return text;
}

}  // namespace KPF_READER
