// What docs/format.md and docs/reader.md say is so.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "format/kpf_layout.h"
#include "kpf_reader.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::readBytes;
using TEST_SUPPORT::readText;

std::string document(const std::string& name) { return readText(VLM_SOURCE "/docs/" + name); }

/// The code block of `text` that begins with ``` and `title`.
std::string block(const std::string& text, const std::string& title) {
  const std::string start = "\n```" + title + "\n";
  const std::size_t from = text.find(start);
  if (from == std::string::npos) return "no block " + title;
  const std::size_t begin = from + start.size();
  return text.substr(begin, text.find("\n```", begin) + 1 - begin);
}

/// Puts the bytes of a dump (offset, then bytes up to two blanks) into `size` zero bytes.
Bytes undump(const std::string& dump, std::size_t size) {
  Bytes bytes(size);
  std::istringstream lines(dump);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream columns(line.substr(0, line.find("  ")));
    std::size_t offset = 0;
    columns >> std::hex >> offset;
    for (unsigned byte = 0; columns >> byte; ++offset) {
      bytes.at(offset) = static_cast<unsigned char>(byte);
    }
  }
  return bytes;
}

class FormatDocument : public TEST_SUPPORT::LibraryTest {
 protected:
  FormatDocument() {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.text2 = "north pier";
    configuration.text5 = "Bridge 7";
    configuration.width = 2;
    configuration.height = 2;
    configuration.frameRate = 25;
    configuration.value3 = 3;
    configuration.bitsPerPixel = 12;
    configuration.frameCount = 2;
    configuration.value5 = 1;
    configuration.value7 = 7;
    configuration.startSeconds = 1700000000;
    configuration.startMicroseconds = 500000;
    const unsigned handle = vxCreatePackStreamer(name, configuration);
    const Bytes image{0xC0, 0xAB, 0x30, 0x12, 0x10, 0x00, 0xF0, 0xFF};
    vxAddTiffImageData(handle, image.data());
    vxAddPlaceholder(handle);
    vxClosePackStreamer(handle);
  }

  const std::string text = document("format.md");
  const std::string name = folder / "example.kpf";
};

TEST_F(FormatDocument, HeaderOfTheExampleIsWhatTheLibraryWrites) {
  Bytes shown = undump(block(text, "hex example.kpf"), 2998);
  const Bytes written = readBytes(name);
  ASSERT_EQ(written.size(), 2998U);
  std::copy_n(written.begin() + 1698, 32, shown.begin() + 1698);  // the identifier, drawn at random
  EXPECT_EQ(shown, written);
}

TEST_F(FormatDocument, DataOfTheExampleIsWhatTheLibraryWrites) {
  EXPECT_EQ(undump(block(text, "hex example_0001.div"), 44),
            readBytes(folder / "example/example_0001.div"));
}

TEST_F(FormatDocument, HeaderTableListsEveryFieldWithoutAGap) {
  const std::string table = text.substr(text.find("## The header file"));
  std::vector<std::pair<std::size_t, std::size_t>> listed;
  const std::regex row(R"(\n\| (\d+) \| (\d+) \|)");
  for (std::sregex_iterator match(table.begin(), table.end(), row), none; match != none; ++match) {
    listed.emplace_back(std::stoul((*match)[1]), std::stoul((*match)[2]));
  }
  std::vector<std::pair<std::size_t, std::size_t>> fields;
  for (const auto field : KPF_FORMAT::HEADER::kAll) fields.emplace_back(field.offset, field.size);
  for (const auto field : KPF_FORMAT::FRAME_HEADER::kAll) {
    fields.emplace_back(field.offset, field.size);
  }
  EXPECT_EQ(listed, fields);
}

TEST_F(FormatDocument, SnippetReadsTheExample) {
  const std::string python = VLM_NUMPY_PYTHON;
  if (python.empty()) GTEST_SKIP() << "no Python with NumPy";
  TEST_SUPPORT::writeText(folder / "snippet.py", block(text, "python"));
  const std::string command = python + " snippet.py ./example.kpf > printed.txt";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readText("printed.txt"), "2 2 2 2748 291 1 4095\n");
}

TEST(ReaderDocument, ExampleIsTheOneThatIsCompiled) {
  const std::string source = readText(VLM_SOURCE "/tests/reader/doc_example.cpp");
  EXPECT_EQ(block(document("reader.md"), "cpp"), source.substr(source.find('\n') + 1));
}

}  // namespace
