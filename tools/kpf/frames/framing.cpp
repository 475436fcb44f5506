#include "tools/kpf/frames/framing.h"

#include <fmt/format.h>

#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr int kMostParts = 1001;  // NTSC's rates are so many parts of a whole one
constexpr double kExact = 1e-9;   // of a rate: nearer it need not be

static_assert(kHighestRate * kMostParts < 2147483648.0 && kLowestRate * kMostParts > 1);

/// A rate as a ratio, the smallest that is near enough; 0:0 where nobody can know.
std::string ratioText(double rate) {
  if (!isShowableRate(rate)) return "0:0";
  int parts = 1;
  while (parts < kMostParts && std::abs(std::round(rate * parts) / parts - rate) > rate * kExact) {
    ++parts;
  }
  return fmt::format("{:.0f}:{}", rate * parts, parts);
}

}  // namespace

Framing y4mFraming(const PictureFormat& format) {
  const char* const samples = format.samples == Samples::k8Bit ? "mono" : "mono16";
  return {fmt::format("YUV4MPEG2 W{} H{} F{} Ip A1:1 C{}\n", format.width, format.height,
                      ratioText(format.frameRate), samples),
          "FRAME\n"};
}

}  // namespace KPF_TOOL
