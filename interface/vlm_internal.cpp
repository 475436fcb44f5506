// The exported functions of recording: handles are looked up, arguments checked, results passed on.
#include "vlm_internal.h"

#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "format/kpf_sizes.h"
#include "interface/handle_faults.h"
#include "interface/vlm_internal_tables.h"
#include "packed/vx_kpf_packed.h"
#include "vx_log.h"

namespace {

using VLM_INTERNAL::streamVector;
using VLM_KPF::VxKPFPackedStream;
using VX_KPF_PACKED::VxKPFPacked;
using VX_LOG::VxLogger;

constexpr VLM_INTERNAL::HandleWording kStreamHandle{"streamHandle", false};

/// The stream of a handle, or null once the fault is logged under the caller's name.
VxKPFPackedStream* findStream(unsigned streamHandle, const char* function) {
  return VLM_INTERNAL::lookUpOrLog(streamVector, streamHandle, kStreamHandle, function).object;
}

/// A frame packed from an image, or null once the failure is logged under the caller's name.
std::unique_ptr<VxKPFPacked> packImage(const unsigned char* image, unsigned width, unsigned height,
                                       int bitsPerPixel, const char* function) {
  auto frame = std::make_unique<VxKPFPacked>();
  frame->setTiffImageData(image, width, height, bitsPerPixel);
  if (frame->getPackedData() != nullptr) return frame;
  VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: setTiffImageData() failed.", function);
  return nullptr;
}

std::unique_ptr<VxKPFPacked> packImageFor(const VxKPFPackedStream& stream,
                                          const unsigned char* image, const char* function) {
  return packImage(image, stream.getWidth(), stream.getHeight(), stream.getBitsPerPixel(),
                   function);
}

void stampNow(VxKPFPacked& frame, unsigned frameNumber) {
  using namespace std::chrono;
  const auto now = system_clock::now().time_since_epoch();
  const auto whole = floor<seconds>(now);
  const auto rest = duration_cast<microseconds>(now - whole);
  frame.setHeader(frameNumber, whole.count(), static_cast<unsigned>(rest.count()));
}

}  // namespace

unsigned int vxCreatePackStreamer(const std::string& streamName,
                                  const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration) {
  auto stream = std::make_unique<VxKPFPackedStream>();
  const unsigned status = stream->prepareForWriting(streamName, configuration);
  if (status != STREAM_WRITING) {
    VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: prepareForWriting() failed [status=%d]",
                                __func__, static_cast<int>(status));
    return 0;
  }
  return VLM_INTERNAL::issueHandle(streamVector, std::move(stream));
}

int vxClosePackStreamer(unsigned int streamHandle) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  const unsigned status = stream->closeStream();
  VLM_INTERNAL::retireHandle(streamVector, streamHandle);
  return static_cast<int>(status);
}

int vxIsPackStreamerFinished(unsigned int streamHandle) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  return static_cast<int>(stream->isStreamWriterComplete());
}

int vxAddPlaceholder(unsigned int streamHandle) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  return static_cast<int>(stream->vxAddPlaceholderFrame());
}

int vxGetPackStatistics(unsigned int streamHandle, unsigned int* frameCount,
                        unsigned int* framesPacked, unsigned int* framesWritten) {
  const VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  *frameCount = stream->getFrameCount();
  *framesPacked = stream->seqNum;  // a frame is packed and written in one call
  *framesWritten = stream->seqNum;
  return VLM_SUCCESS;
}

int vxAddPackedData(unsigned int streamHandle, const unsigned char* data) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  const unsigned width = stream->getWidth();
  const unsigned height = stream->getHeight();
  const int bitsPerPixel = stream->getBitsPerPixel();
  const unsigned size = vxGetPackedSize(width, height, static_cast<unsigned>(bitsPerPixel));
  auto frame = std::make_unique<VxKPFPacked>();
  frame->setPackedData(data, size, width, height, bitsPerPixel);
  return static_cast<int>(stream->addFrame(std::move(frame)));
}

int vxAddTiffImageData(unsigned int streamHandle, const unsigned char* data) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  auto frame = packImageFor(*stream, data, __func__);
  if (frame == nullptr) return VLM_PACKING_FAILED;
  return static_cast<int>(stream->addFrame(std::move(frame)));
}

int vxReplaceFrame(unsigned int streamHandle, unsigned int frameNumber, const unsigned char* data) {
  VxKPFPackedStream* const stream = findStream(streamHandle, __func__);
  if (stream == nullptr) return VLM_BAD_HANDLE;
  auto frame = packImageFor(*stream, data, __func__);
  if (frame == nullptr) return VLM_PACKING_FAILED;
  return static_cast<int>(stream->editVideoFrame(frameNumber, std::move(frame)));
}

unsigned int vxGetPackedSize(unsigned int width, unsigned int height, unsigned int bitsPerPixel) {
  return KPF_FORMAT::recordSizeOf(KPF_FORMAT::packedFrameSize(width, height, bitsPerPixel));
}

int vxConvertTiffImageData(const unsigned char* imageInPtr, unsigned char* imageOutPtr,
                           unsigned int frameNumber, unsigned int width, unsigned int height,
                           unsigned int bitsPerPixel) {
  if (imageInPtr == nullptr || imageOutPtr == nullptr) {
    VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: %s is nullptr!", __func__,
                                imageInPtr == nullptr ? "imageInPtr" : "imageOutPtr");
    return VLM_NULL_IMAGE;
  }
  const auto frame = packImage(imageInPtr, width, height, static_cast<int>(bitsPerPixel), __func__);
  if (frame == nullptr) return VLM_PACKING_FAILED;
  if (frame->getHeader() == nullptr) stampNow(*frame, frameNumber);
  std::memcpy(imageOutPtr, frame->getHeader(), VxKPFPacked::getHeaderSize());
  std::memcpy(imageOutPtr + VxKPFPacked::getHeaderSize(), frame->getPackedData(),
              frame->packedSize);
  return VLM_SUCCESS;
}
