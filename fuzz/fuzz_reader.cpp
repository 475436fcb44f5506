// Header and data files of any bytes: the reader gives what is there or a clear error.
//
// Input: one byte that says where the header file ends, the header file, the first data file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/scratch.h"
#include "kpf_reader.h"

namespace {

void write(const std::string& name, const std::uint8_t* data, std::size_t size) {
  std::ofstream file(name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void readAll(const std::string& name) {
  const KPF_READER::Recording recording(name);
  const KPF_READER::Header& header = recording.header();
  std::vector<std::uint16_t> samples(recording.recordCount() > 0 ? header.pixelCount() : 0);
  for (std::uint32_t n = 0; n < recording.recordCount() && n < 1000; ++n) {
    const KPF_READER::FrameRecord record = recording.record(n);
    FUZZ::require(record.pixels.size() == header.frameSize(), "a record has the frame's size");
    recording.unpack(n, samples);
  }
  FUZZ::require(!recording.statusFilePath().empty(), "the status file has a name");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ::Scratch scratch;
  if (size == 0) return 0;
  // Most inputs have a header of the right size; one in eight any other.
  const std::size_t wanted = data[0] % 8 == 7 ? data[0] * 16U : KPF_FORMAT::HEADER::kSize;
  const std::size_t headerSize = std::min(wanted, size - 1);
  std::filesystem::create_directories(scratch / "rec");
  write(scratch / "rec.kpf", data + 1, headerSize);
  write(KPF_FORMAT::divFileName({scratch / "rec/", "rec"}, 1), data + 1 + headerSize,
        size - 1 - headerSize);
  try {
    readAll(scratch / "rec.kpf");
  } catch (const KPF_READER::RecordingError& error) {
    FUZZ::require(!error.file().empty(), "an error names its file");
  }
  return 0;
}
