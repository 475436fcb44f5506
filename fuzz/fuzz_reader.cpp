// Header, data and status files of any bytes: the reader gives what is there or a clear error.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/recording_files.h"
#include "fuzz/scratch.h"
#include "kpf_reader.h"

namespace {

using FUZZ::Choices;
using FUZZ::require;
using KPF_READER::FrameRecord;
using KPF_READER::Header;
using KPF_READER::Recording;

constexpr std::size_t kHeaderSize = KPF_FORMAT::HEADER::kSize;
constexpr std::size_t kLongestStatusText = 4096;  // of what the reader gives
constexpr std::uint32_t kRecordsTried = 1000;

void checkHeader(const Recording& recording) {
  const Header& header = recording.header();
  require(header.bitsPerPixel() == (header.packed12 ? 12 : 8), "8 or 12 bits a pixel");
  require(header.recordSize() == header.frameSize() + 16, "a record is a header and a frame");
  for (const KPF_READER::HeaderDeviation& deviation : recording.headerDeviations()) {
    require(deviation.offset < kHeaderSize, "a deviation stands in the header");
    require(!deviation.problem.empty(), "a deviation says what it is");
  }
}

void checkFiles(const Recording& recording) {
  std::uint32_t records = 0;
  for (const KPF_READER::DivFile& file : recording.divFiles()) {
    require(file.number <= recording.header().divFileCount(), "the header allows the file");
    require(file.records <= recording.header().recordsInDivFile(file.number), "and its records");
    require(file.path == recording.divFilePath(file.number), "a data file has one name");
    require(file.firstRecord == records, "records count through the files");
    records += file.records;
  }
  require(records == recording.recordCount(), "every record lies in a file");
  require(records <= recording.header().frameCount, "no more records than announced");
}

void checkStatus(const Recording& recording, const Choices& choices) {
  require(recording.statusFilePath() == recording.path() + ".incomplete.txt",
          "the status file has a name");
  const std::optional<std::string> text = recording.statusFile();
  require(text.has_value() == choices.status, "the status file is there when it is");
  require(!text || text->size() <= kLongestStatusText, "its text is bounded");
}

FrameRecord checkRecord(const Recording& recording, std::uint32_t n,
                        std::vector<std::uint16_t>& samples) {
  const Header& header = recording.header();
  FrameRecord record = recording.record(n);
  require(record.pixels.size() == header.frameSize(), "a record has the frame's size");
  require(record.place >= n && record.place < header.frameCount, "a record has a place");
  recording.unpack(n, samples);
  const std::vector<std::uint16_t> again = samples;
  KPF_READER::unpackPixels(header, record.pixels, samples);
  require(samples == again, "there is one way to unpack");
  const auto between = KPF_READER::findByteBetweenRows(header, record.pixels);
  require(!between || record.pixels[*between] != 0, "what is found is not 0");
  return record;
}

void checkMissingRecord(const Recording& recording) {
  try {
    recording.record(recording.recordCount());
    require(false, "behind the last record there is none");
  } catch (const std::out_of_range&) {
  }
}

/// A record outlives the recording that it came from.
std::optional<FrameRecord> readAll(Recording recording, const Choices& choices) {
  checkHeader(recording);
  checkFiles(recording);
  checkStatus(recording, choices);
  checkMissingRecord(recording);
  const std::uint32_t records = std::min(recording.recordCount(), kRecordsTried);
  std::vector<std::uint16_t> samples(records > 0 ? recording.header().pixelCount() : 0);
  std::optional<FrameRecord> last;
  for (std::uint32_t n = 0; n < records; ++n) last = checkRecord(recording, n, samples);
  return last;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ::Scratch scratch;
  if (size == 0) return 0;
  const Choices choices(data[0]);
  scratch.clear();
  FUZZ::writeRecording(scratch, choices, data + 1, size - 1,
                       KPF_FORMAT::statusFileName(scratch / "rec.kpf"));
  try {
    Recording opened(scratch / "rec.kpf", choices.access);
    const auto last = readAll(std::move(opened), choices);
    const auto isZero = [](unsigned char byte) { return byte == 0; };
    require(!last || !last->placeholder ||
                std::all_of(last->pixels.begin(), last->pixels.end(), isZero),
            "a placeholder is zero");
  } catch (const KPF_READER::RecordingError& error) {
    require(!error.file().empty(), "an error names its file");
  }
  return 0;
}
