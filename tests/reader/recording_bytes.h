// Recordings made byte by byte, knowing nothing of the code that writes or reads them.
#ifndef TESTS_READER_RECORDING_BYTES_H
#define TESTS_READER_RECORDING_BYTES_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "kpf_reader.h"
#include "tests/support/files.h"

namespace TEST_READER {

using TEST_SUPPORT::Bytes;

/// The header of five 8-bit frames of 3 x 2 pixels at 25 a second, two frames a data file.
Bytes headerBytes();

/// Replaces bytes from `offset` on.
void put(Bytes& bytes, std::size_t offset, const Bytes& replacement);
Bytes with(Bytes bytes, std::size_t offset, const Bytes& replacement);

/// Record `n` of that recording: its number, 1700000000 s, 40000 n us, pixels 10n + 1 to 10n + 6.
Bytes recordBytes(unsigned char n);

/// `first` to `last`, one record behind the other.
Bytes recordRun(unsigned char first, unsigned char last);

/// That recording, complete, as rec.kpf in a folder of its own; the parts may be replaced.
class HandMade : public testing::Test {
 protected:
  HandMade();

  KPF_READER::Recording open() const { return KPF_READER::Recording(header); }

  TEST_SUPPORT::TemporaryFolder folder;
  const std::string header = folder / "rec.kpf";
  const std::string div1 = folder / "rec/rec_0001.div";
  const std::string div2 = folder / "rec/rec_0002.div";
  const std::string div3 = folder / "rec/rec_0003.div";
};

/// Expects a RecordingError about `file` and `offset` that says `problem`.
void expectError(const std::function<void()>& action, const std::string& file, std::uint64_t offset,
                 const std::string& problem);

}  // namespace TEST_READER

#endif
