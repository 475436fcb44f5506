// The files of a recording, made of whatever bytes a fuzzer hands over.
//
// Input: one byte of choices, the header file, and what the other files share.
#ifndef FUZZ_RECORDING_FILES_H
#define FUZZ_RECORDING_FILES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "fuzz/scratch.h"
#include "kpf_reader.h"

namespace FUZZ {

/// What the first byte says, lowest bits first.
struct Choices {
  explicit Choices(std::uint8_t byte)
      : headerSize(byte % 8 == 7 ? byte * 16U : KPF_FORMAT::HEADER::kSize),
        files(1U + byte / 8 % 4),
        status((byte & 0x20) != 0),
        firstIsMissing((byte & 0x40) != 0),
        access((byte & 0x80) != 0 ? KPF_READER::Access::kSparse : KPF_READER::Access::kSequential) {
  }
  std::size_t headerSize;  // most inputs have a header of the right size
  unsigned files;          // 1 to 4 data files
  bool status;             // the last share is a status file
  bool firstIsMissing;
  KPF_READER::Access access;
};

inline void writeFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
  std::ofstream file(name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

/// All files of the recording rec.kpf; each but the header gets an equal share of the rest.
/// @param lastName of the file that the last share goes to, where that is none of the data files.
inline void writeRecording(const Scratch& scratch, const Choices& choices, const std::uint8_t* data,
                           std::size_t size, const std::string& lastName) {
  std::filesystem::create_directories(scratch / "rec");
  const std::size_t headerSize = std::min(choices.headerSize, size);
  writeFile(scratch / "rec.kpf", data, headerSize);
  const std::size_t share = (size - headerSize) / (choices.files + (choices.status ? 1 : 0));
  const std::uint8_t* next = data + headerSize;
  for (unsigned number = 1; number <= choices.files; ++number, next += share) {
    if (number == 1 && choices.firstIsMissing) continue;
    writeFile(KPF_FORMAT::divFileName({scratch / "rec/", "rec"}, number), next, share);
  }
  if (choices.status) writeFile(lastName, next, share);
}

}  // namespace FUZZ

#endif
