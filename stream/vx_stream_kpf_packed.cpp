// The life of a writer: preparation, completion, closing.
#include "stream/vx_stream_kpf_packed.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <system_error>
#include <utility>

#include "format/kpf_file_names.h"
#include "format/kpf_sizes.h"
#include "format/kpf_status.h"
#include "paths/native_path.h"
#include "stream/vx_kpf_header.h"
#include "vx_log.h"

namespace VLM_KPF {
namespace {

using PATHS::nativePath;
using VLM_INTERNAL::VXP_STREAM_CONFIGURATION;
using VX_KPF_PACKED::VxKPFPacked;
using VX_LOG::VxLogger;

/// `value` cut toward zero. What no 64-bit integer can hold, NaN included, gives 2^63; negative
/// values give their two's complement.
std::uint64_t truncated(double value) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (value > -kTwoTo63 && value < kTwoTo63) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  }
  if (value >= kTwoTo63 && value < 2 * kTwoTo63) return static_cast<std::uint64_t>(value);
  return std::uint64_t{1} << 63;
}

}  // namespace

VxKPFPackedStream::VxKPFPackedStream() : VxKPFPackedStream(PageCache::system()) {}

VxKPFPackedStream::VxKPFPackedStream(PageCache& cache) : writeBehind_(cache) {
  VxLogger::factory()->loggerUseStdout(true);
  VxLogger::factory()->loggerUseSyslog(true);
}

// Without memory for a name there is no status file, but the process goes on.
VxKPFPackedStream::~VxKPFPackedStream() {
  if (streamStatus == STREAM_CLOSED) return;
  try {
    closeStream();
  } catch (...) {
    streamStatus = STREAM_CLOSED;
  }
}

unsigned VxKPFPackedStream::prepareForWriting(const std::string& name,
                                              const VXP_STREAM_CONFIGURATION& config) {
  constexpr const char* kFunction = "prepareForWriting";
  const auto log = VxLogger::factory();
  if (streamStatus != STREAM_CONSTRUCTED) {
    log->vx_log(VX_LOG::kWarning, "%s: Was not properly constructed, unable to create %s",
                kFunction, name.c_str());
    return STREAM_REFUSED;
  }
  setConfiguration(config);
  if (configuration == nullptr) {
    log->vx_log(VX_LOG::kWarning, "%s: no configuration information found!", kFunction);
    return streamStatus = STREAM_NO_CONFIG;
  }
  if (configuration->frameCount == 0) {
    log->vx_log(VX_LOG::kWarning, "%s: frameCount set to zero.", kFunction);
    return streamStatus = STREAM_NO_FRAMES;
  }
  if (!sizeFrames(config)) {
    log->vx_log(VX_LOG::kWarning, "%s: a frame record of %u x %u pixels does not fit a DIV file!",
                kFunction, config.width, config.height);
    return streamStatus = STREAM_RECORD_TOO_LARGE;
  }
  if (!deriveNames(name)) return streamStatus = STREAM_BAD_PATH;
  streamStatus = createFiles();
  if (streamStatus == STREAM_WRITING) prepareMemory();
  return streamStatus;
}

// A placeholder that goes at once leaves its block, touched from end to end, to the first frame.
// Where there is no memory for it, that frame will tell.
void VxKPFPackedStream::prepareMemory() noexcept {
  try {
    const std::uint64_t record = KPF_FORMAT::recordSizeOf(std::uint64_t{frameSize});
    if (!writeBehind_.prepare(nativePath(divFolder), record, bytesOfDivFile())) return;
    VxKPFPacked().setPackedData(nullptr, static_cast<unsigned>(record), getWidth(), getHeight(),
                                getBitsPerPixel());
  } catch (const std::exception&) {
  }
}

unsigned VxKPFPackedStream::closeStream() {
  const bool allWritten = getFrameCount() == seqNum;
  if (allWritten && (streamStatus == STREAM_WRITING || streamStatus == STREAM_COMPLETE)) {
    streamStatus = STREAM_COMPLETE;
  } else {
    if (!allWritten && streamStatus == STREAM_WRITING) streamStatus = STREAM_INCOMPLETE;
    writeStatusFile();
  }
  closeDivFile();
  return streamStatus = STREAM_CLOSED;
}

unsigned VxKPFPackedStream::isStreamWriterComplete() {
  if (getFrameCount() == seqNum) streamStatus = STREAM_COMPLETE;
  return streamStatus;
}

unsigned VxKPFPackedStream::editVideoFrame(unsigned frameNumber,
                                           [[maybe_unused]] std::unique_ptr<VxKPFPacked> frame) {
  VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: Not implemented yet. Ignoring %d",
                              "editVideoFrame", static_cast<int>(frameNumber));
  return STREAM_REFUSED;
}

void VxKPFPackedStream::setConfiguration(const VXP_STREAM_CONFIGURATION& config) {
  configuration = std::make_unique<VXP_STREAM_CONFIGURATION>(config);
}

int VxKPFPackedStream::getBitsPerPixel() const {
  return configuration ? configuration->bitsPerPixel : 0;
}

unsigned VxKPFPackedStream::getHeight() const { return configuration ? configuration->height : 0; }

unsigned VxKPFPackedStream::getWidth() const { return configuration ? configuration->width : 0; }

unsigned VxKPFPackedStream::getFrameCount() const {
  return configuration ? configuration->frameCount : 0;
}

void VxKPFPackedStream::calcDivFileInfo(unsigned frame, unsigned& divFileNumber,
                                        unsigned& indexInDivFile) const {
  divFileNumber = framesPerDivFile == 0 ? 0 : frame / framesPerDivFile + 1;
  indexInDivFile = framesPerDivFile == 0 ? 0 : frame % framesPerDivFile;
}

void VxKPFPackedStream::calcFrameTime(unsigned frame, unsigned long long& seconds,
                                      unsigned& microseconds) const {
  static const VXP_STREAM_CONFIGURATION kNone;
  const VXP_STREAM_CONFIGURATION& from = configuration ? *configuration : kNone;
  double time = from.startMicroseconds / 1000000.0;
  time += static_cast<double>(from.startSeconds);
  // The reciprocal comes first: frame / frameRate would differ in the last bits.
  time += (1.0 / from.frameRate) * frame;
  seconds = truncated(time);
  microseconds =
      static_cast<unsigned>(truncated((time - static_cast<double>(seconds)) * 1000000.0));
}

bool VxKPFPackedStream::initializeHeader(std::ofstream* streamPtr) {
  namespace layout = KPF_FORMAT::HEADER;
  if (streamPtr == nullptr) {
    VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: streamPtr is null!", "initializeHeader");
    return false;
  }
  HeaderImage image = headerImage(*configuration, framesPerDivFile);
  guidGen(image.data() + layout::kIdentifier.offset);
  std::copy_n(image.data() + layout::kIdentifier.offset, layout::kIdentifier.size,
              image.data() + layout::kIdentifierAgain.offset);

  streamPtr->seekp(0);
  streamPtr->write(reinterpret_cast<const char*>(image.data()), image.size());
  streamPtr->flush();  // a full disk shows here, not when the file is closed
  if (streamPtr->good()) return true;
  VxLogger::factory()->vx_log(VX_LOG::kError, "%s: io stream write failed.", "initializeHeader");
  streamStatus = STREAM_WRITE_FAILED;
  return false;
}

void VxKPFPackedStream::guidGen(unsigned char* out) {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  for (std::size_t part = 0; part < 4; ++part) {
    KPF_FORMAT::store(out, {4 * part, 4}, static_cast<unsigned>(std::rand()));
  }
}

// The sizes wrap at 32 bits: a record of 2^32 bytes counts as 0, and so none fits.
bool VxKPFPackedStream::sizeFrames(const VXP_STREAM_CONFIGURATION& config) {
  frameSize = KPF_FORMAT::packedFrameSize(config.width, config.height,
                                          static_cast<unsigned>(config.bitsPerPixel));
  framesPerDivFile = KPF_FORMAT::recordsPerDivFile(KPF_FORMAT::recordSizeOf(frameSize));
  return framesPerDivFile > 0;
}

bool VxKPFPackedStream::deriveNames(const std::string& name) {
  const auto log = VxLogger::factory();
  const auto stem = KPF_FORMAT::withoutExtension(name);
  if (!stem) {
    log->vx_log(VX_LOG::kWarning, "%s: streamName is missing a file extension!",
                "prepareForWriting");
    return false;
  }
  if (stem->empty()) {
    log->vx_log(VX_LOG::kWarning, "%s: streamName has nothing before its file extension!",
                "prepareForWriting");
    return false;
  }
  auto [folder, base] = KPF_FORMAT::dataNames(*stem);
  divFolder = std::move(folder);
  baseName = std::move(base);
  streamName = name;
  return true;
}

unsigned VxKPFPackedStream::createFiles() {
  const auto log = VxLogger::factory();
  std::ofstream headerStream(nativePath(streamName),
                             std::ios::out | std::ios::trunc | std::ios::binary);
  if (!headerStream.is_open()) {
    log->vx_log(VX_LOG::kWarning, "%s: Unable to open %s for binary output!", "prepareForWriting",
                streamName.c_str());
    return STREAM_OPEN_FAILED;
  }
  if (!initializeHeader(&headerStream)) {
    log->vx_log(VX_LOG::kDebug, "%s: Unable to initialize KPF Packed header.", "prepareForWriting");
    return STREAM_HEADER_FAILED;
  }
  return createDivFolder();
}

unsigned VxKPFPackedStream::createDivFolder() {
  namespace fs = std::filesystem;
  std::error_code ignored;
  if (fs::create_directories(nativePath(divFolder), ignored)) return STREAM_WRITING;
  // What is there already is used as it is; a folder of an earlier run is the common case.
  if (fs::exists(fs::status(nativePath(divFolder)))) return STREAM_WRITING;
  VxLogger::factory()->vx_log(VX_LOG::kWarning, "%s: Unable to create subfolder %s for DIV files!",
                              "prepareForWriting", divFolder.c_str());
  return STREAM_BAD_PATH;
}

// A text file: its lines end as the platform's text does. Failures are passed over in silence.
void VxKPFPackedStream::writeStatusFile() const {
  const std::string name = KPF_FORMAT::statusFileName(streamName);
  VxLogger::factory()->vx_log(VX_LOG::kError,
                              "%s: KPF Packed streamStatus is not marked complete.  Writing %s to "
                              "document incomplete status.",
                              "closeStream", name.c_str());
  std::ofstream file(nativePath(name), std::ios::out | std::ios::trunc);
  file << KPF_FORMAT::kStatusText << std::flush;
}

}  // namespace VLM_KPF
