#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tools/kpf/media/encoder.h"
#include "tools/kpf/media/image_output.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/media/video_output.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kExtensionAdvice =
    "Give a name in .mkv or .y4m (lossless), .mp4, .raw, .png, .tif or .pgm (with %06d for "
    "several), or - .";

/// For looking at: players want colour at half the resolution, and so even sizes.
Encoding viewingEncoding(const char* muxer) {
  const AVCodec* const h264 = avcodec_find_encoder_by_name("libx264");
  const AVCodec* const codec = h264 != nullptr ? h264 : avcodec_find_encoder(AV_CODEC_ID_MPEG4);
  return {codec, AV_PIX_FMT_YUV420P, muxer, true};
}

/// Lossless where the samples are to come back: see openEncodedOutput. @throws ToolError.
Encoding encodingFor(const std::string& name, const PictureFormat& format) {
  const std::string extension = lowerCase(std::filesystem::path(name).extension().string());
  const bool deep = format.samples == Samples::k16Bit;
  const auto find = [](AVCodecID id) { return avcodec_find_encoder(id); };
  if (extension == ".mkv") {
    return {find(AV_CODEC_ID_FFV1), deep ? AV_PIX_FMT_GRAY16LE : AV_PIX_FMT_GRAY8, "matroska"};
  }
  if (extension == ".png") {
    return {find(AV_CODEC_ID_PNG), deep ? AV_PIX_FMT_GRAY16BE : AV_PIX_FMT_GRAY8};
  }
  if (extension == ".tif" || extension == ".tiff") {
    return {find(AV_CODEC_ID_TIFF), deep ? AV_PIX_FMT_GRAY16LE : AV_PIX_FMT_GRAY8};
  }
  for (const char* const muxer : {"mp4", "mov", "avi"}) {
    if (extension == std::string(".") + muxer) return viewingEncoding(muxer);
  }
  throw ToolError(Outcome::kWrongUsage,
                  fmt::format("{} has no extension that is known", escaped(name)),
                  kExtensionAdvice);
}

}  // namespace

std::unique_ptr<PictureOutput> openEncodedOutput(const Destination& destination,
                                                 const PictureFormat& format) {
  av_log_set_level(AV_LOG_FATAL);
  const Encoding encoding = encodingFor(destination.name, format);
  if (encoding.codec == nullptr) {
    throw ToolError(Outcome::kWrongUsage,
                    fmt::format("this FFmpeg has no encoder for {}", escaped(destination.name)),
                    kExtensionAdvice);
  }
  return encoding.muxer != nullptr ? openVideoOutput(destination, format, encoding)
                                   : openImageOutput(destination, format, encoding);
}

}  // namespace KPF_TOOL
