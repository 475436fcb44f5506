#include "tests/reader/recording_bytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace TEST_READER {

Bytes headerBytes() {
  const Bytes converted{'C', 'o', 'n', 'v', 'e', 'r', 't', 'e', 'd'};
  const Bytes version{'v', '3', '.', '0'};
  const Bytes twentyFive{0, 0, 0, 0, 0, 0, 0x39, 0x40};
  const Bytes identifier{0x11, 0x12, 0, 0, 0x13, 0x14, 0, 0, 0x15, 0x16, 0, 0, 0x17, 0x18, 0, 0};
  Bytes bytes(2998);
  put(bytes, 0, version);
  put(bytes, 5, {'f', 'i', 'v', 'e'});
  put(bytes, 156, {0, 0, 0, 0, 0, 0, 0x1C, 0x40});  // 7.0
  put(bytes, 164, {0, 0, 0, 0, 0, 0, 0xF0, 0x3F});  // 1.0
  put(bytes, 176, {3, 0, 2, 0});
  put(bytes, 184, twentyFive);
  put(bytes, 200, {0, 0, 0, 0, 0, 0, 0x08, 0xC0});  // -3.0
  for (const std::size_t offset : {208U, 278U, 308U, 384U, 444U}) put(bytes, offset, converted);
  put(bytes, 324, {'t', 'w', 'o'});
  put(bytes, 464, {2, 0, 0, 0, 5, 0, 0, 0});
  put(bytes, 473, {1});
  put(bytes, 483, {0, 0, 0, 0, 0, 0, 0x4E, 0x40});  // 60.0
  put(bytes, 491, version);
  put(bytes, 1698, identifier);
  put(bytes, 1714, identifier);
  put(bytes, 1766, {1});
  put(bytes, 1770, twentyFive);
  put(bytes, 1806, {2});
  return bytes;
}

void put(Bytes& bytes, std::size_t offset, const Bytes& replacement) {
  std::copy(replacement.begin(), replacement.end(),
            bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

Bytes with(Bytes bytes, std::size_t offset, const Bytes& replacement) {
  put(bytes, offset, replacement);
  return bytes;
}

Bytes recordBytes(unsigned char n) {
  const unsigned microseconds = 40000U * n;
  Bytes bytes{n, 0, 0, 0, 0x00, 0xF1, 0x53, 0x65, 0, 0, 0, 0};
  for (const int shift : {0, 8, 16, 24}) {
    bytes.push_back(static_cast<unsigned char>(microseconds >> shift));
  }
  for (int i = 1; i <= 6; ++i) bytes.push_back(static_cast<unsigned char>(10 * n + i));
  return bytes;
}

Bytes recordRun(unsigned char first, unsigned char last) {
  Bytes run;
  for (unsigned char n = first; n <= last; ++n) {
    const Bytes record = recordBytes(n);
    run.insert(run.end(), record.begin(), record.end());
  }
  return run;
}

HandMade::HandMade() {
  std::filesystem::create_directories(folder.path() / "rec");
  TEST_SUPPORT::writeBytes(header, headerBytes());
  TEST_SUPPORT::writeBytes(div1, recordRun(0, 1));
  TEST_SUPPORT::writeBytes(div2, recordRun(2, 3));
  TEST_SUPPORT::writeBytes(div3, recordRun(4, 4));
}

void expectError(const std::function<void()>& action, const std::string& file, std::uint64_t offset,
                 const std::string& problem) {
  try {
    action();
    ADD_FAILURE() << "no error, where \"" << problem << "\" was expected";
  } catch (const KPF_READER::RecordingError& error) {
    EXPECT_EQ(error.file(), file);
    EXPECT_EQ(error.offset(), offset);
    EXPECT_EQ(error.what(), file + ", byte " + std::to_string(offset) + ": " + problem);
  }
}

}  // namespace TEST_READER
