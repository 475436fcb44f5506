// Preparation, completion, closing.
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/stream/stream_test.h"
#include "vx_log.h"

namespace {

using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
using VLM_INTERNAL::VXP_STREAM_CONFIGURATION;
using VLM_KPF::VxKPFPackedStream;

class Lifecycle : public StreamTest {
 protected:
  std::string incompleteLine(const std::string& file) const {
    return "closeStream: KPF Packed streamStatus is not marked complete.  Writing " + file +
           " to document incomplete status.\n";
  }
};

TEST_F(Lifecycle, NewWriterHoldsNothing) {
  EXPECT_EQ(stream.streamStatus, 2U);
  EXPECT_FALSE(stream.divFile.is_open());
  EXPECT_EQ(stream.currentDivFile, 0U);
  EXPECT_EQ(stream.configuration, nullptr);
  EXPECT_EQ(stream.frameSize, 0U);
  EXPECT_EQ(stream.framesPerDivFile, 0U);
  EXPECT_EQ(stream.streamName + stream.baseName + stream.divFolder, "");
  EXPECT_EQ(stream.seqNum, 0U);
}

TEST_F(Lifecycle, NewWriterSwitchesStandardOutputOn) {
  const auto logger = VX_LOG::VxLogger::factory();
  logger->loggerUseStdout(false);
  const VxKPFPackedStream another;
  logger->vx_log(7, "written again");
  EXPECT_EQ(output(), "written again\n");
}

TEST_F(Lifecycle, PreparationMakesHeaderFileAndFolderOnly) {
  prepare(3);
  EXPECT_EQ(stream.streamStatus, 3U);
  EXPECT_EQ(entriesBelow(folder.path()), (std::vector<std::string>{"rec", "rec.kpf"}));
  EXPECT_FALSE(stream.divFile.is_open());
  EXPECT_EQ(output(), "");
}

TEST_F(Lifecycle, HeaderFileIsCompleteWhenPreparationReturns) {
  prepare(3);
  EXPECT_EQ(readText(name).size(), 2998U);
}

TEST_F(Lifecycle, SecondPreparationIsRefusedAndChangesNothing) {
  prepare(3);
  EXPECT_EQ(stream.prepareForWriting(folder / "other.kpf", smallConfiguration(9)), 16U);
  EXPECT_EQ(output(), "prepareForWriting: Was not properly constructed, unable to create " +
                          (folder / "other.kpf") + "\n");
  EXPECT_EQ(stream.streamStatus, 3U);
  EXPECT_EQ(stream.getFrameCount(), 3U);
  EXPECT_FALSE(std::filesystem::exists(folder / "other.kpf"));
}

TEST_F(Lifecycle, NoFramesAreRefused) {
  EXPECT_EQ(stream.prepareForWriting(name, smallConfiguration(0)), 12U);
  EXPECT_EQ(output(), "prepareForWriting: frameCount set to zero.\n");
  EXPECT_EQ(stream.streamStatus, 12U);
  EXPECT_TRUE(entriesBelow(folder.path()).empty());
}

TEST_F(Lifecycle, RecordThatFitsNoDataFileIsRefused) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.bitsPerPixel = 8;
  for (const auto& [width, height] : {std::pair{65536U, 32768U},  // 2^31 bytes
                                      {2147483632U, 1U},          // one too many with its header
                                      {4294967280U, 1U}}) {       // with it 0, modulo 2^32
    VxKPFPackedStream writer;
    c.width = width, c.height = height;
    EXPECT_EQ(writer.prepareForWriting(name, c), 24U) << width;
    EXPECT_EQ(output(), "prepareForWriting: a frame record of " + std::to_string(width) + " x " +
                            std::to_string(height) + " pixels does not fit a DIV file!\n");
    EXPECT_TRUE(entriesBelow(folder.path()).empty());
    writer.streamStatus = 5;  // no status file at its end
  }
}

TEST_F(Lifecycle, LargestRecordFitsADataFileOnce) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.bitsPerPixel = 8;
  c.width = 2147483631, c.height = 1;
  EXPECT_EQ(stream.prepareForWriting(name, c), 3U);
  EXPECT_EQ(stream.framesPerDivFile, 1U);
}

TEST_F(Lifecycle, HeaderFileThatCannotBeOpenedEndsThePreparation) {
  const std::string impossible = folder / "missing/rec.kpf";
  EXPECT_EQ(stream.prepareForWriting(impossible, smallConfiguration(1)), 15U);
  EXPECT_EQ(output(), "prepareForWriting: Unable to open " + impossible + " for binary output!\n");
  EXPECT_EQ(stream.streamStatus, 15U);
  EXPECT_TRUE(entriesBelow(folder.path()).empty());
}

TEST_F(Lifecycle, ExistingFolderIsUsed) {
  std::filesystem::create_directory(folder.path() / "rec");
  prepare(1);
  EXPECT_EQ(stream.streamStatus, 3U);
}

#ifndef _WIN32  // where a name with a separator behind it may be a plain file's
TEST_F(Lifecycle, PlainFileInTheFoldersPlaceIsABadPath) {
  writeText(folder / "rec", "in the way");
  EXPECT_EQ(stream.prepareForWriting(name, smallConfiguration(1)), 22U);
  EXPECT_EQ(output(), "prepareForWriting: Unable to create subfolder " + (folder / "rec/") +
                          " for DIV files!\n");
  EXPECT_EQ(readText(folder / "rec"), "in the way");
}
#endif

TEST_F(Lifecycle, OldHeaderFileIsReplaced) {
  writeText(name, std::string(5000, 'x'));
  prepare(1);
  EXPECT_EQ(readText(name).size(), 2998U);
}

TEST_F(Lifecycle, CompletionIsSeenByTheCount) {
  prepare(1);
  EXPECT_EQ(stream.isStreamWriterComplete(), 3U);
  stream.addFrame(smallFrame(1));
  EXPECT_EQ(stream.isStreamWriterComplete(), 4U);
  stream.streamStatus = 16;  // whatever the status was before
  EXPECT_EQ(stream.isStreamWriterComplete(), 4U);
  EXPECT_EQ(stream.streamStatus, 4U);
}

TEST_F(Lifecycle, CompleteStreamClosesInSilence) {
  prepare(1);
  stream.addFrame(smallFrame(1));
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_EQ(output(), "");
  EXPECT_FALSE(std::filesystem::exists(statusFile));
}

TEST_F(Lifecycle, StreamCutShortLeavesItsStatusFile) {
  prepare(2);
  stream.addFrame(smallFrame(1));
  EXPECT_TRUE(stream.divFile.is_open());
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_EQ(stream.streamStatus, 5U);
  EXPECT_FALSE(stream.divFile.is_open());
  EXPECT_EQ(output(), incompleteLine(statusFile));
  EXPECT_EQ(readText(statusFile), kStatusText);
}

TEST_F(Lifecycle, OlderStatusFileIsReplaced) {
  writeText(statusFile, std::string(500, 'x'));
  prepare(2);
  stream.closeStream();
  EXPECT_EQ(readText(statusFile), kStatusText);
}

TEST_F(Lifecycle, SecondCloseWritesTheStatusFileEvenOfACompleteStream) {
  prepare(1);
  stream.addFrame(smallFrame(1));
  stream.closeStream();
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_EQ(output(), incompleteLine(statusFile));
  EXPECT_EQ(readText(statusFile), kStatusText);
}

TEST_F(Lifecycle, StatusFileThatCannotBeWrittenIsPassedOver) {
  std::filesystem::create_directory(statusFile);
  prepare(2);
  EXPECT_EQ(stream.closeStream(), 5U);
  EXPECT_EQ(output(), incompleteLine(statusFile));
}

TEST_F(Lifecycle, DestroyedWriterClosesItself) {
  auto writer = std::make_unique<VxKPFPackedStream>();
  ASSERT_EQ(writer->prepareForWriting(name, smallConfiguration(2)), 3U);
  writer.reset();
  EXPECT_EQ(output(), incompleteLine(statusFile));
  EXPECT_EQ(readText(statusFile), kStatusText);
}

TEST_F(Lifecycle, ClosedWriterIsDestroyedInSilence) {
  auto writer = std::make_unique<VxKPFPackedStream>();
  ASSERT_EQ(writer->prepareForWriting(name, smallConfiguration(2)), 3U);
  writer->closeStream();
  std::filesystem::remove(statusFile);
  output();
  writer.reset();
  EXPECT_EQ(output(), "");
  EXPECT_FALSE(std::filesystem::exists(statusFile));
}

TEST_F(Lifecycle, WriterThatWasNeverPreparedLeavesANamelessStatusFile) {
  std::make_unique<VxKPFPackedStream>().reset();
  EXPECT_EQ(output(), incompleteLine(".incomplete.txt"));
  EXPECT_EQ(readText(folder / ".incomplete.txt"), kStatusText);
}

TEST_F(Lifecycle, ReplacingAFrameIsNotOffered) {
  prepare(1);
  EXPECT_EQ(stream.editVideoFrame(4000000000, smallFrame(1)), 16U);
  EXPECT_EQ(output(), "editVideoFrame: Not implemented yet. Ignoring -294967296\n");
  EXPECT_EQ(stream.editVideoFrame(7, nullptr), 16U);
  EXPECT_EQ(stream.streamStatus, 3U);
  EXPECT_EQ(entriesBelow(folder.path()), (std::vector<std::string>{"rec", "rec.kpf"}));
}

}  // namespace
