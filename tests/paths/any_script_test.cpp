// A name in any script is the same file for the writer, the log, the reader and the system.
#include <clocale>
#include <filesystem>
#include <string>

#include "kpf_reader.h"
#include "paths/native_path.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"
#include "vx_log.h"

namespace {

namespace fs = std::filesystem;

/// As a caller holds it: UTF-8 in a plain string.
std::string utf8(const std::u8string& text) { return {text.begin(), text.end()}; }

/// Cyrillic, Chinese and a character beyond 16 bits.
const std::u8string kFolder = u8"\u0417\u0430\u043f\u0438\u0441\u044c \u9304\u756b \U0001f3a5";
const std::u8string kStem = u8"\u043a\u043b\u0438\u043f \u52d5\u756b \U0001f3ac";
const std::u8string kLog = u8"\u0436\u0443\u0440\u043d\u0430\u043b \u8a18\u9332 \U0001f4dd.txt";

class AnyScript : public TEST_SUPPORT::LibraryTest,
                  public testing::WithParamInterface<const char*> {
 protected:
  AnyScript() { std::setlocale(LC_ALL, GetParam()); }
  ~AnyScript() override { std::setlocale(LC_ALL, "C"); }

  /// Records one frame of the two that are announced.
  static void record(const std::string& name) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = 4, configuration.height = 1, configuration.bitsPerPixel = 8;
    configuration.frameRate = 1, configuration.frameCount = 2;
    const unsigned stream = vxCreatePackStreamer(name, configuration);
    const unsigned char pixels[4] = {7, 8, 9, 10};
    ASSERT_EQ(vxAddTiffImageData(stream, pixels), STREAM_WRITING);
    ASSERT_EQ(vxClosePackStreamer(stream), STREAM_CLOSED);
  }

  static void expectReadable(const std::string& name) {
    const KPF_READER::Recording recording(name);
    ASSERT_EQ(recording.recordCount(), 1U);
    EXPECT_EQ(recording.record(0).pixels[3], 10);
    EXPECT_TRUE(recording.statusFile().has_value());
  }
};

TEST_P(AnyScript, OfFolderAndNameIsTheSameForEveryFile) {
  fs::create_directory(kFolder);
  const std::string inFolder = utf8(kFolder) + "/";
  const std::string name = inFolder + utf8(kStem) + ".kpf";
  const auto log = VX_LOG::VxLogger::factory();
  ASSERT_EQ(log->loggerFile((inFolder + utf8(kLog)).c_str()), 0);
  record(name);
  log->loggerFile(nullptr);

  const fs::path beside = fs::path(kFolder) / kStem;
  EXPECT_TRUE(fs::is_regular_file(beside.native() + fs::path(".kpf").native()));
  EXPECT_TRUE(fs::is_regular_file(beside.native() + fs::path(".kpf.incomplete.txt").native()));
  EXPECT_TRUE(fs::is_regular_file(beside / (kStem + u8"_0001.div")));
  EXPECT_NE(TEST_SUPPORT::readText(fs::path(kFolder) / kLog).find(name), std::string::npos);
  EXPECT_EQ(TEST_SUPPORT::entriesBelow(folder.path()).size(), 6U);
  expectReadable(name);
}

TEST_P(AnyScript, OfABareNameIsToo) {
  const std::string name = utf8(kStem) + ".kpf";
  record(name);
  expectReadable(name);
  expectReadable(utf8(fs::absolute(fs::path(kStem)).generic_u8string()) + ".kpf");
}

TEST_P(AnyScript, OfAnotherDataFileBesideIsPassedOver) {
  const std::string name = "./" + utf8(kStem) + ".kpf";
  record(name);
  const fs::path folderOfData(kStem);
  // Cut to a byte the last of these would be a digit.
  for (const std::u8string other : {u8"_0002.d\u0131v", u8"_\u9304.div", u8"_000\u0132.div"}) {
    TEST_SUPPORT::writeText(folderOfData / (kStem + other), "not a data file");
  }
  expectReadable(name);
}

INSTANTIATE_TEST_SUITE_P(Locales, AnyScript, testing::Values("C", ""),
                         [](const auto& tested) { return *tested.param ? "C" : "OfTheUser"; });

}  // namespace
