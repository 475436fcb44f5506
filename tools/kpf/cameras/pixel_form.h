// The grey pixels that cameras send, and the way from them to a record.
#ifndef KPF_PIXEL_FORM_H
#define KPF_PIXEL_FORM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// One of the formats that GenICam names.
struct PixelForm {
  enum class Way {
    kAsItIs,   // the camera's bytes are those of the record
    kShifted,  // two bytes a pixel, the low one first, right-justified
    kSwapped   // Mono12p: two pixels in three bytes, in another order
  };

  const char* name;
  std::uint32_t code;
  int bits;  // that a camera's pixel has
  Way way;

  /// 8 or 12, of a pixel in the record.
  int recordedBits() const { return bits == 8 ? 8 : 12; }
};

/// Null for formats that cannot be recorded.
const PixelForm* pixelForm(const std::string& name);

/// Which of the formats that a camera offers is recorded with `bits` a pixel at the least cost:
/// without a conversion before all others, and nothing cut off where that can be had. Null where
/// none is.
const PixelForm* pixelFormFor(int bits, const std::vector<std::string>& offered);

/// Turns the camera's pixels into those of a record.
class PixelPacker {
 public:
  PixelPacker(const PixelForm& form, unsigned width, unsigned height);

  /// Bytes of a frame as the camera sends it.
  std::size_t frameSize() const;
  /// @param record receives header room and pixels; for kAsItIs there is nothing to do.
  void pack(const unsigned char* frame, unsigned char* record);

 private:
  void shift(const unsigned char* frame);

  PixelForm form_;
  unsigned width_;
  unsigned height_;
  std::vector<unsigned char> image_;  // left-justified
};

/// Changes the order of the bits in the three bytes of every two pixels.
void swapMono12p(const unsigned char* in, unsigned char* out, std::size_t pixels);

}  // namespace KPF_TOOL

#endif
