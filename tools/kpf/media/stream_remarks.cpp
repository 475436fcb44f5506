#include "tools/kpf/media/stream_remarks.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

namespace KPF_TOOL {
namespace {

/// "turned by 90 degrees", "mirrored"; empty where a player shows the frames as they are.
std::string turnOf(const AVStream& stream) {
  const std::uint8_t* const bytes =
      av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
  if (bytes == nullptr) return "";
  const auto* const matrix = reinterpret_cast<const std::int32_t*>(bytes);
  const double area =
      static_cast<double>(matrix[0]) * matrix[4] - static_cast<double>(matrix[1]) * matrix[3];
  if (area < 0) return "mirrored";
  // FFmpeg counts against the clock, cameras and players with it.
  const double degrees = -av_display_rotation_get(matrix);
  if (std::isnan(degrees) || std::abs(degrees) < 0.5) return "";
  return fmt::format("turned by {:.0f} degrees", degrees < 0 ? degrees + 360 : degrees);
}

bool hasOddPixels(const AVStream& stream) {
  const AVRational shape = stream.sample_aspect_ratio.num != 0
                               ? stream.sample_aspect_ratio
                               : stream.codecpar->sample_aspect_ratio;
  return shape.num > 0 && shape.den > 0 && shape.num != shape.den;
}

/// Pictures of the cover are no video.
bool isVideo(const AVStream& stream) {
  return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
         (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

/// The videos of the file, and the number of the chosen one among them.
std::string choiceOf(const AVFormatContext& file, int chosen) {
  int videos = 0;
  int number = 0;
  for (unsigned i = 0; i < file.nb_streams; ++i) {
    if (isVideo(*file.streams[i])) ++videos;
    if (static_cast<int>(i) == chosen) number = videos;
  }
  return videos < 2 ? "" : fmt::format("holds {} videos: number {} is taken", videos, number);
}

}  // namespace

std::vector<std::string> streamRemarks(const AVFormatContext& file, int chosen,
                                       const std::string& name) {
  const AVStream& stream = *file.streams[chosen];
  std::vector<std::string> remarks;
  const std::string turn = turnOf(stream);
  if (!turn.empty()) {
    remarks.push_back(
        fmt::format("players show {} {}: frames are taken as they are stored", name, turn));
  }
  if (hasOddPixels(stream)) {
    remarks.push_back(
        fmt::format("the pixels of {} are not square: frames are taken as they are "
                    "stored",
                    name));
  }
  const std::string choice = choiceOf(file, chosen);
  if (!choice.empty()) remarks.push_back(fmt::format("{} {}", name, choice));
  return remarks;
}

}  // namespace KPF_TOOL
