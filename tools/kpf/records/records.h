// The records of a recording by their places, read so that a failing disk is an error.
#ifndef KPF_RECORDS_H
#define KPF_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/records/data_file.h"
#include "tools/kpf/records/read_behind.h"

namespace KPF_TOOL {

/// One record, as its header says.
struct Record {
  std::uint32_t place = 0;  // the frame's number: what its file and position stand for
  std::uint32_t sequenceNumber = 0;
  std::int64_t seconds = 0;
  std::uint32_t microseconds = 0;
  bool placeholder = false;                      // every byte is 0: a frame that was lost
  const KPF_READER::DivFile* file = nullptr;     // that holds it
  std::uint64_t offset = 0;                      // of its first byte there
  std::span<const unsigned char> bytes, pixels;  // valid until the next one is read
};

/// Reads the files block by block. Through mapped memory, a sector that the disk cannot read and a
/// file that another program shortens would end the process.
class Records {
 public:
  /// @param recording must live as long.
  Records(const KPF_READER::Recording& recording, KPF_READER::Access access);
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;

  /// One more than the last place whose record is there: how many frames the recording spans, those
  /// missing in between included.
  std::uint32_t places() const;

  /// The data file that holds the record of `place`; null where none does.
  const KPF_READER::DivFile* fileOf(std::uint32_t place) const;

  /// @throws KPF_READER::RecordingError when it cannot be read; std::out_of_range when there is
  /// none.
  Record read(std::uint32_t place);

  /// The same without its pixels and, where the disk is long, without reading them: `bytes` and
  /// `pixels` stay empty.
  Record readHeader(std::uint32_t place);

  /// How many records from `record` on, of the same file, take no room on the disk, and so are
  /// placeholders: long holes need not be read. 0 also where the system cannot tell.
  std::uint32_t unstoredFrom(const Record& record);

 private:
  Record locate(std::uint32_t place) const;
  std::span<const unsigned char> bytesOf(const Record& record, std::uint64_t size);
  void open(const KPF_READER::DivFile& file);
  void fill(std::uint64_t offset, std::uint64_t size);

  const KPF_READER::Recording& recording_;
  std::uint64_t ahead_;                        // bytes to read at once, when a record is shorter
  const KPF_READER::DivFile* file_ = nullptr;  // the one that is open
  std::optional<DataFile> data_;
  ReadBehind behind_;  // of that file
  std::vector<unsigned char> block_;
  std::uint64_t start_ = 0;  // of the block in the file
  std::uint64_t asked_ = 0;  // up to there the system has said what it stores, or need not be asked
  std::uint64_t held_ = 0;   // bytes of it that were read
};

/// Whether the header tells how many frames there are to be: a recorder that is at work, or was
/// killed, may not have known.
bool announcesCount(const KPF_READER::Header& header);

/// How many whole records lie behind the last one that the recording announces: its header then
/// tells too few.
std::uint64_t recordsBehindEnd(const KPF_READER::Recording& recording);

/// Bytes of data files that belong to no frame, be it a lost one or one behind the announced end:
/// the header then tells of other frames than were recorded, or something was written between them.
std::uint64_t bytesOfNoFrame(const KPF_READER::Recording& recording);

/// Whether another recording has the name by now, by its identifier: data files that are opened one
/// after the other may then be of both.
bool isReplaced(const KPF_READER::Recording& recording);

/// Makes the record in `bytes` say another number.
void setSequenceNumber(std::span<unsigned char> bytes, std::uint32_t number);

/// The header of the first record of a data file that need not belong to a recording; nothing when
/// the file is too short. @throws KPF_READER::RecordingError.
std::optional<Record> firstHeaderOf(const std::string& path);

}  // namespace KPF_TOOL

#endif
