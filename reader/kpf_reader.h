/**
 * Reads recordings: a .kpf header file and its folder of numbered .div data files.
 *
 * - Recordings are not trusted. Whatever stands in the files, the outcome is the recording's
 * content or a RecordingError that names a file and an offset; sizes are checked before they are
 * used.
 * - A recording that was cut short opens, and gives the records that are there.
 * - Data files are mapped into memory one at a time, read-only. A file that another program
 * shortens while it is mapped is outside this promise: touching the lost part then ends the
 * process.
 * - One thread at a time may use a Recording. The FrameRecords it gave may be used by any.
 */
#ifndef KPF_READER_H
#define KPF_READER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace KPF_READER {

/// What is wrong with a file of a recording; what() names the file and the byte offset.
class RecordingError : public std::runtime_error {
 public:
  RecordingError(const std::string& file, std::uint64_t offset, const std::string& problem);
  const std::string& file() const { return file_; }
  std::uint64_t offset() const { return offset_; }

 private:
  std::string file_;
  std::uint64_t offset_;
};

/// The fields of the header file. Texts end before their first zero byte; numbers are finite.
struct Header {
  std::string version;                 // "v3.0"
  std::string text5;                   // at most 151 bytes, of the caller's own meaning
  std::string text2;                   // at most 60 bytes, of the caller's own meaning
  double value7 = 0;                   // of the caller's own meaning
  double value3 = 0;                   // of the caller's own meaning
  double frameRate = 0;                // frames per second
  std::uint32_t width = 0;             // pixels a row, below 65536
  std::uint32_t height = 0;            // rows, below 65536
  bool packed12 = false;               // two pixels in three bytes, else a byte a pixel
  std::uint32_t framesPerDivFile = 0;  // records that a full data file holds, at least 1
  std::uint32_t frameCount = 0;        // frames announced; fewer may have been written
  std::uint32_t value5 = 0;            // of the caller's own meaning
  std::array<unsigned char, 16> identifier{};

  unsigned bitsPerPixel() const { return packed12 ? 12 : 8; }
  /// Whether it tells a frame rate: writers have whole ones, and 0 or less where there is none.
  bool hasFrameRate() const { return frameRate >= 1; }
  /// Pixels of a frame.
  std::size_t pixelCount() const { return std::size_t{width} * height; }
  /// Bytes of a frame's pixels in a data file.
  std::size_t frameSize() const;
  /// Bytes of a frame record: its header, then the pixels. No more than a data file can hold.
  std::size_t recordSize() const;
  /// Data files that a complete recording has; 0 when no frames are announced.
  std::uint32_t divFileCount() const;
  /// Records in data file `number`, from 1 to divFileCount(), of a complete recording.
  std::uint32_t recordsInDivFile(std::uint32_t number) const;
};

/// Something in a header file that is not as the writer makes it, and does not keep one from
/// reading.
struct HeaderDeviation {
  enum class Kind {
    kFixedBytes,       // bytes that are the same in every recording are others
    kUnequalPair,      // a field that is written twice has two values
    kImpossibleValue,  // a number that no caller can have given
    kFramesPerDivFile  // not as many frames a data file as fit into one
  };
  Kind kind = Kind::kFixedBytes;
  std::uint64_t offset = 0;
  std::string problem;
};

/// A data file that belongs to the recording and exists.
struct DivFile {
  std::uint32_t number = 0;         // from 1; a gap in the numbers is a missing file
  std::string path;                 //
  std::uint64_t size = 0;           // bytes, when the recording was opened
  std::uint32_t firstRecord = 0;    // number of its first record, as Recording::record counts
  std::uint32_t records = 0;        // whole records, no more than the header allows this file
  std::uint64_t trailingBytes = 0;  // bytes behind the last of them
};

/// One frame record. It keeps its data file mapped for as long as it, or a copy of it, lives.
struct FrameRecord {
  std::uint32_t place = 0;                // frame number that its file and position stand for
  std::uint32_t sequenceNumber = 0;       // as the record says; normally equal to `place`
  std::int64_t seconds = 0;               // as the record says, in the epoch of whoever recorded
  std::uint32_t microseconds = 0;         // within that second
  bool placeholder = false;               // every byte of the record is 0: a frame that was lost
  std::uint32_t fileNumber = 0;           // data file that holds it
  std::uint64_t offset = 0;               // of the record's first byte in that file
  std::span<const unsigned char> pixels;  // frameSize() bytes
  std::shared_ptr<const void> mapping;    // what keeps `pixels` valid
};

/// How the records will mostly be asked for; a hint to the operating system.
enum class Access { kSequential, kSparse };

/**
 * An open recording.
 *
 * Records count from 0 through all the data files that are there: where files or parts of them are
 * missing the numbers close up, and FrameRecord::place tells where the frame belongs.
 */
class Recording {
 public:
  /**
   * Reads the header file, finds the data files and takes their sizes.
   *
   * The folder is the header's path without its extension, as the writer derives it. A recording
   * that was made under a name without any `/` lies in files whose names begin with `name\`; those
   * are found as well, and so are files that were moved from there into the folder `name`.
   *
   * @throws RecordingError when the header cannot be read or contradicts itself, when the folder is
   *         there and cannot be read, or when something that is not a file has the name of a data
   *         file.
   */
  explicit Recording(const std::string& headerPath, Access access = Access::kSequential);
  ~Recording();
  Recording(Recording&&) noexcept;
  Recording& operator=(Recording&&) noexcept;

  const std::string& path() const;
  const Header& header() const;

  /// What in the header file is not as the writer makes it; nothing when all is well.
  const std::vector<HeaderDeviation>& headerDeviations() const;

  /// The data files that are there, by rising number. Files numbered beyond
  /// Header::divFileCount() are left from something else and are not listed.
  const std::vector<DivFile>& divFiles() const;

  /// The path of data file `number`, whether it exists or not.
  std::string divFilePath(std::uint32_t number) const;

  /// Whole records that are there, in all data files together; never more than announced.
  std::uint32_t recordCount() const;

  /// @throws std::out_of_range when there is no record `n`; RecordingError when its file cannot be
  ///         mapped or has become shorter.
  FrameRecord record(std::uint32_t n) const;

  /**
   * The samples of record `n`, row by row from the top, without padding.
   *
   * 16 bits a sample, left-justified: 12-bit samples stand in bits 15 to 4, 8-bit ones in bits 15
   * to 8. Of an odd width the last column of 12-bit frames was never stored and reads 0.
   *
   * @param samples receives width x height samples; @throws std::invalid_argument when it is
   *        smaller, and what record() throws.
   */
  void unpack(std::uint32_t n, std::span<std::uint16_t> samples) const;

  /// The path of the status file that a recording which was closed too early has.
  std::string statusFilePath() const;

  /// Its text, at most the first 4096 bytes; nothing when there is none.
  /// @throws RecordingError when it cannot be read.
  std::optional<std::string> statusFile() const;

 private:
  class Contents;
  std::unique_ptr<Contents> contents_;
};

/// Unpacks the pixels of one frame as Recording::unpack does; any thread may call it.
/// @throws std::invalid_argument when `pixels` or `samples` is smaller than the frame.
void unpackPixels(const Header& header, std::span<const unsigned char> pixels,
                  std::span<std::uint16_t> samples);

/**
 * Looks at the bytes of 12-bit frames of an odd width that lie between the rows and hold no sample.
 *
 * @return where the first that is not 0 stands in `pixels`; nothing when all are 0 or there are
 *         none. @throws std::invalid_argument when `pixels` is smaller than the frame.
 */
std::optional<std::size_t> findByteBetweenRows(const Header& header,
                                               std::span<const unsigned char> pixels);

}  // namespace KPF_READER

#endif
