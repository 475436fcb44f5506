#include "tools/kpf/records/checksum_file.h"

#include <fmt/format.h>

#include <charconv>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string_view>
#include <system_error>

#include "paths/native_path.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kDigits = 16;        // of a checksum
constexpr std::size_t kLongestLine = 100;  // far more than any has

std::string firstLine(const Identifier& identifier) {
  std::string line = "kpf checksums 1 xxh3-64 ";
  for (const unsigned char byte : identifier) line += fmt::format("{:02x}", byte);
  return line;
}

/// All of `text` as a number. @return false when it is none.
template <class Number>
bool parse(std::string_view text, int base, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

/// A line, without reading on where it does not end.
std::string lineOf(std::ifstream& file) {
  std::string line(kLongestLine, '\0');
  file.getline(line.data(), static_cast<std::streamsize>(line.size()));
  // A file that breaks off within a line was being written.
  const bool whole = file.good();
  line.resize(whole ? static_cast<std::size_t>(file.gcount()) - 1 : 0);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace

std::string checksumFileName(const std::string& headerPath) {
  return headerPath + ".checksums.txt";
}

ChecksumWriter::ChecksumWriter(const std::string& path, const Identifier& identifier)
    : file_(PATHS::nativePath(path), std::ios::binary | std::ios::trunc) {
  // At once, so that whoever looks while the others come finds what it is.
  file_ << firstLine(identifier) << std::endl;
}

void ChecksumWriter::add(std::uint32_t place, std::uint64_t checksum) {
  file_ << fmt::format("{} {:016x}\n", place, checksum);
}

bool ChecksumWriter::close() {
  file_.close();
  return file_.good();
}

ChecksumReader::ChecksumReader(const std::string& headerPath, const Identifier& identifier)
    : path_(checksumFileName(headerPath)), state_(begin(identifier)) {
  if (state_ == State::kUsable) advance();
}

ChecksumReader::State ChecksumReader::begin(const Identifier& identifier) {
  namespace fs = std::filesystem;
  std::error_code error;
  const auto type = fs::status(PATHS::nativePath(path_), error).type();
  if (type == fs::file_type::not_found) return State::kAbsent;
  // A pipe of that name would wait for somebody to write.
  if (type != fs::file_type::regular) return State::kUnreadable;
  file_.open(PATHS::nativePath(path_), std::ios::binary);
  const std::string line = lineOf(file_);
  ++line_;
  const std::string expected = firstLine(identifier);
  if (line == expected) return State::kUsable;
  const std::size_t fixed = expected.size() - 2 * identifier.size();
  return line.size() == expected.size() && line.compare(0, fixed, expected, 0, fixed) == 0
             ? State::kForeign
             : State::kUnreadable;
}

/// Goes on to the next line.
void ChecksumReader::advance() {
  const std::optional<Entry> before = next_;
  next_.reset();
  const std::string line = lineOf(file_);
  if (line.empty() && file_.eof()) return;
  ++line_;
  const std::size_t space = line.find(' ');
  Entry entry{};
  if (space == std::string::npos || line.size() != space + 1 + kDigits ||
      !parse(std::string_view(line).substr(0, space), 10, entry.place) ||
      !parse(std::string_view(line).substr(space + 1), 16, entry.checksum) ||
      (before && entry.place <= before->place)) {
    badLine_ = line_;
    return;
  }
  next_ = entry;
}

void ChecksumReader::passOver() {
  if (passedOver_++ == 0) firstPassedOver_ = next_->place;
  advance();
}

std::optional<std::uint64_t> ChecksumReader::of(std::uint32_t place) {
  while (next_ && next_->place < place) passOver();
  if (!next_ || next_->place != place) return std::nullopt;
  const std::uint64_t checksum = next_->checksum;
  advance();
  return checksum;
}

void ChecksumReader::finish() {
  while (next_) passOver();
}

}  // namespace KPF_TOOL
