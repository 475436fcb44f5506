// The file of checksums that a recording may have beside its header.
//
// A line that says what it is and of which recording, then one a record: its place and its checksum
// in 16 hexadecimal digits, by rising place.
#ifndef KPF_CHECKSUM_FILE_H
#define KPF_CHECKSUM_FILE_H

#include <array>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

#include "kpf_reader.h"

namespace KPF_TOOL {

/// Of the recording with that header file.
std::string checksumFileName(const std::string& headerPath);

using Identifier = std::array<unsigned char, 16>;  // see KPF_READER::Header

/// Writes one.
class ChecksumWriter {
 public:
  /// @param path where to write it, which need not be its name yet.
  ChecksumWriter(const std::string& path, const Identifier& identifier);

  void add(std::uint32_t place, std::uint64_t checksum);

  /// @return false when the system did not take all of it.
  bool close();

 private:
  std::ofstream file_;
};

/// Reads one from its beginning to its end: it may be as long as the recording has frames.
class ChecksumReader {
 public:
  enum class State {
    kAbsent,      // there is none
    kForeign,     // of another recording, which had the same name
    kUnreadable,  // it is there, and is no such file
    kUsable
  };

  ChecksumReader(const std::string& headerPath, const Identifier& identifier);

  State state() const { return state_; }
  const std::string& path() const { return path_; }
  /// Of the line that no reader understands, from 1; 0 when all were understood so far. Behind it
  /// nothing is read.
  std::uint64_t badLine() const { return badLine_; }

  /// The checksum of the record at `place`, to be asked for by rising places.
  std::optional<std::uint64_t> of(std::uint32_t place);

  /// Goes on to the end: whoever asked for no record beyond `place` misses those.
  void finish();

  /// Lines that were passed over: of records that nobody asked for, as they are not there.
  std::uint64_t passedOver() const { return passedOver_; }
  std::optional<std::uint32_t> firstPassedOver() const { return firstPassedOver_; }

 private:
  struct Entry {
    std::uint32_t place;
    std::uint64_t checksum;
  };

  State begin(const Identifier& identifier);
  void advance();
  void passOver();

  std::string path_;
  std::ifstream file_;
  std::uint64_t line_ = 0;
  std::uint64_t badLine_ = 0;
  std::optional<Entry> next_;
  std::uint64_t passedOver_ = 0;
  std::optional<std::uint32_t> firstPassedOver_;
  State state_;  // the last one: the first line is read for it
};

}  // namespace KPF_TOOL

#endif
