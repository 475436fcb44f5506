// The frames of a recording: numbering, data files, records.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "format/kpf_file_names.h"
#include "format/kpf_sizes.h"
#include "paths/native_path.h"
#include "stream/data_file.h"
#include "stream/vx_stream_kpf_packed.h"
#include "vx_log.h"

namespace VLM_KPF {
namespace {

using VX_KPF_PACKED::VxKPFPacked;
using VX_LOG::VxLogger;

void write(std::ofstream& file, const unsigned char* bytes, unsigned size) {
  file.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

}  // namespace

unsigned VxKPFPackedStream::addFrame(std::unique_ptr<VxKPFPacked> frame) {
  if (frame != nullptr && frame->getHeader() == nullptr) {
    unsigned long long seconds = 0;
    unsigned microseconds = 0;
    calcFrameTime(seqNum, seconds, microseconds);
    frame->setHeader(seqNum, static_cast<long long>(seconds), microseconds);
  }
  queueFrame(std::move(frame));
  if (getFrameCount() == seqNum && streamStatus == STREAM_WRITING) streamStatus = STREAM_COMPLETE;
  return streamStatus;
}

// Filling the record wipes the header stamped before it: a placeholder is zero from its first byte
// to its last.
unsigned VxKPFPackedStream::vxAddPlaceholderFrame() {
  auto frame = std::make_unique<VxKPFPacked>();
  frame->setHeader(seqNum, 0, 0);
  frame->setPackedData(nullptr, frameSize + VxKPFPacked::getHeaderSize(), getWidth(), getHeight(),
                       getBitsPerPixel());
  queueFrame(std::move(frame));
  return streamStatus = STREAM_WRITING;
}

void VxKPFPackedStream::queueFrame(std::unique_ptr<VxKPFPacked> frame) {
  if (!acceptsFrame(frame.get())) return;
  writeRecord(*frame);
  streamStatus = STREAM_WRITING;
  ++seqNum;
  if (seqNum >= getFrameCount()) closeDivFile();
}

// The data file is switched before the frame is looked at, so a refused one may leave it empty.
bool VxKPFPackedStream::acceptsFrame(const VxKPFPacked* frame) {
  constexpr const char* kFunction = "queueFrame";
  const auto log = VxLogger::factory();
  if (frame == nullptr) {
    log->vx_log(VX_LOG::kDebug, "%s: imageptr is nullptr!?", kFunction);
    return false;
  }
  if (seqNum >= getFrameCount()) {
    log->vx_log(VX_LOG::kDebug, "%s: seqNum=%d but frame_count=%d", kFunction,
                static_cast<int>(seqNum), static_cast<int>(getFrameCount()));
    return false;
  }
  switchDivFile();
  if (!divFile.is_open()) {
    log->vx_log(VX_LOG::kDebug, "%s: the divFile is not open.", kFunction);
  } else if (frame->getHeader() == nullptr) {
    log->vx_log(VX_LOG::kDebug, "%s: There is no header!", kFunction);
  } else if (frame->getPackedData() == nullptr) {
    log->vx_log(VX_LOG::kDebug, "%s: There is no packed data!", kFunction);
  } else {
    return true;
  }
  return false;
}

std::filesystem::path VxKPFPackedStream::divFileName(unsigned number) const {
  return PATHS::nativePath(KPF_FORMAT::divFileName({divFolder, baseName}, number));
}

// A file that could not be opened keeps its number and is not tried again: its frames are refused
// one by one, each with its line in the log.
void VxKPFPackedStream::switchDivFile() {
  unsigned number = 0;
  unsigned index = 0;
  calcDivFileInfo(seqNum, number, index);
  if (number == currentDivFile) return;
  if (divFile.is_open()) {
    writeBehind_.nextFile(descriptorOf(divFile));
    divFile.close();
  }
  divFile.open(divFileName(number), std::ios::out | std::ios::trunc | std::ios::binary);
  currentDivFile = number;
  writeBehind_.begin(bytesOfDivFile());
}

std::uint64_t VxKPFPackedStream::bytesOfDivFile() const {
  const unsigned records = std::min(framesPerDivFile, getFrameCount() - seqNum);
  return records * KPF_FORMAT::recordSizeOf(std::uint64_t{frameSize});
}

// The header waits in the stream's buffer, so that header and pixels go out in one system call.
// The flush passes on what a small frame left there.
//
// A record that fails still counts. Its torn beginning is cut off and the next record sought at its
// own place: what comes later stays where it belongs, and the lost record reads as a placeholder.
void VxKPFPackedStream::writeRecord(const VxKPFPacked& frame) {
  unsigned number = 0;
  unsigned index = 0;
  calcDivFileInfo(seqNum, number, index);
  const std::uint64_t recordSize = KPF_FORMAT::recordSizeOf(std::uint64_t{frameSize});
  const std::uint64_t begin = index * recordSize;
  writeBehind_.makeRoom(descriptorOf(divFile));
  write(divFile, frame.getHeader(), VxKPFPacked::getHeaderSize());
  writePixels(frame.getPackedData(), frame.packedSize, begin + VxKPFPacked::getHeaderSize());
  divFile.flush();
  if (divFile.good()) {
    writeBehind_.written(descriptorOf(divFile), begin + recordSize);
    return;
  }
  VxLogger::factory()->vx_log(VX_LOG::kError, "%s: io stream write failed.", "queueFrame");
  ++failedRecords;
  resumeAt(divFile, begin, begin + recordSize);
}

void VxKPFPackedStream::writePixels(const unsigned char* bytes, std::uint64_t size,
                                    std::uint64_t at) {
  while (size > 0) {
    const std::uint64_t piece = writeBehind_.atOnce(at, size);
    write(divFile, bytes, static_cast<unsigned>(piece));
    bytes += piece;
    at += piece;
    size -= piece;
  }
}

void VxKPFPackedStream::closeDivFile() {
  writeBehind_.finish();
  if (divFile.is_open()) divFile.close();
}

}  // namespace VLM_KPF
