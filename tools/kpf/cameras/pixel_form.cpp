#include "tools/kpf/cameras/pixel_form.h"

#include <algorithm>

#include "format/kpf_layout.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

using Way = PixelForm::Way;

// In the order in which they are chosen: first what is written as it arrives, then what loses
// nothing, then what is cut to 12 bits, last what has fewer.
constexpr PixelForm kForms[] = {
    {"Mono8", 0x01080001, 8, Way::kAsItIs},     {"Mono12Packed", 0x010C0006, 12, Way::kAsItIs},
    {"Mono12p", 0x010C0047, 12, Way::kSwapped}, {"Mono12", 0x01100005, 12, Way::kShifted},
    {"Mono16", 0x01100007, 16, Way::kShifted},  {"Mono14", 0x01100025, 14, Way::kShifted},
    {"Mono10", 0x01100003, 10, Way::kShifted},
};

}  // namespace

const PixelForm* pixelForm(const std::string& name) {
  for (const PixelForm& form : kForms) {
    if (name == form.name) return &form;
  }
  return nullptr;
}

const PixelForm* pixelFormFor(int bits, const std::vector<std::string>& offered) {
  for (const PixelForm& form : kForms) {
    if (form.recordedBits() != bits) continue;
    if (std::find(offered.begin(), offered.end(), form.name) != offered.end()) return &form;
  }
  return nullptr;
}

PixelPacker::PixelPacker(const PixelForm& form, unsigned width, unsigned height)
    : form_(form), width_(width), height_(height) {
  if (form.way == Way::kShifted) image_.resize(frameSize());
}

std::size_t PixelPacker::frameSize() const {
  const std::size_t pixels = std::size_t{width_} * height_;
  return form_.way == Way::kShifted ? pixels * 2 : pixels * static_cast<unsigned>(form_.bits) / 8;
}

void PixelPacker::pack(const unsigned char* frame, unsigned char* record) {
  if (form_.way == Way::kSwapped) {
    swapMono12p(frame, record + KPF_FORMAT::FRAME_HEADER::kSize, std::size_t{width_} * height_);
  } else if (form_.way == Way::kShifted) {
    shift(frame);
    vxConvertTiffImageData(image_.data(), record, 0, width_, height_, 12);
  }
}

/// To the left, as the library takes them.
void PixelPacker::shift(const unsigned char* frame) {
  const unsigned by = 16U - static_cast<unsigned>(form_.bits);
  for (std::size_t i = 0; i < image_.size(); i += 2) {
    const unsigned sample = (frame[i] | static_cast<unsigned>(frame[i + 1]) << 8) << by;
    image_[i] = static_cast<unsigned char>(sample);
    image_[i + 1] = static_cast<unsigned char>(sample >> 8);
  }
}

// Mono12p has the low byte of the first pixel, then four bits of each, then the high byte of the
// second. A record has the high byte of the first pixel, then the low four bits of each, the
// second one's above, then the high byte of the second.
void swapMono12p(const unsigned char* in, unsigned char* out, std::size_t pixels) {
  for (std::size_t i = 0; i + 1 < pixels; i += 2, in += 3, out += 3) {
    const unsigned char low = in[0];
    const unsigned char middle = in[1];
    out[0] = static_cast<unsigned char>(middle << 4 | low >> 4);
    out[1] = static_cast<unsigned char>((middle & 0xF0) | (low & 0x0F));
    out[2] = in[2];
  }
}

}  // namespace KPF_TOOL
