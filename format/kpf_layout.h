// Where every byte of a recording stands. All numbers are little-endian; nothing is padded.
#ifndef KPF_LAYOUT_H
#define KPF_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace KPF_FORMAT {

struct Field {
  std::size_t offset;
  std::size_t size;
};

constexpr std::size_t end(Field field) { return field.offset + field.size; }

/// True when each field starts where the one before it ends: no gap, no overlap.
template <std::size_t N>
constexpr bool contiguous(const Field (&fields)[N], std::size_t total) {
  std::size_t expected = 0;
  for (const Field field : fields) {
    if (field.offset != expected) return false;
    expected = end(field);
  }
  return expected == total;
}

// One frame record of a .div file: this header, then the packed pixels.
namespace FRAME_HEADER {
constexpr std::size_t kSize = 16;
constexpr Field kSequenceNumber{0, 4};  // unsigned, 0 for the first frame of a stream
constexpr Field kSeconds{4, 8};         // signed
constexpr Field kMicroseconds{12, 4};   // unsigned, within that second
constexpr Field kAll[] = {kSequenceNumber, kSeconds, kMicroseconds};
static_assert(contiguous(kAll, kSize));
}  // namespace FRAME_HEADER

// The .kpf header file.
namespace HEADER {
constexpr std::size_t kSize = 2998;
constexpr Field kVersion{0, 5};
constexpr Field kText5{5, 151};
constexpr Field kValue7{156, 8};  // double
constexpr Field kScale{164, 8};   // double, always 1.0
constexpr Field kZero172{172, 4};
constexpr Field kWidth{176, 2};
constexpr Field kHeight{178, 2};
constexpr Field kPacked12{180, 4};   // 1 for 12-bit frames, 0 for 8-bit ones
constexpr Field kFrameRate{184, 8};  // double
constexpr Field kZero192{192, 8};
constexpr Field kValue3{200, 8};  // double
constexpr Field kConverted208{208, 70};
constexpr Field kConverted278{278, 30};
constexpr Field kConverted308{308, 12};
constexpr Field kZero320{320, 4};
constexpr Field kText2{324, 60};
constexpr Field kConverted384{384, 60};
constexpr Field kConverted444{444, 16};
constexpr Field kZero460{460, 4};
constexpr Field kFramesPerDivFile{464, 4};
constexpr Field kFrameCount{468, 4};  // as configured, not as written
constexpr Field kZero472{472, 1};
constexpr Field kMarker473{473, 8};  // 01 and seven zero bytes
constexpr Field kZero481{481, 2};
constexpr Field kMarker483{483, 8};  // double, always 60.0
constexpr Field kVersionAgain{491, 5};
constexpr Field kZero496{496, 2};
constexpr Field kZero498{498, 1200};
constexpr Field kIdentifier{1698, 16};
constexpr Field kIdentifierAgain{1714, 16};
constexpr Field kZero1730{1730, 16};
constexpr Field kZero1746{1746, 8};
constexpr Field kZero1754{1754, 8};
constexpr Field kZero1762{1762, 4};
constexpr Field kMarker1766{1766, 4};      // always 1
constexpr Field kFrameRateAgain{1770, 8};  // double
constexpr Field kZero1778{1778, 24};
constexpr Field kZero1802{1802, 4};
constexpr Field kValue5{1806, 4};  // 1 or 2, else 0
constexpr Field kZero1810{1810, 72};
constexpr Field kZero1882{1882, 4};
constexpr Field kZero1886{1886, 1112};
constexpr Field kAll[] = {
    kVersion,        kText5,        kValue7,       kScale,        kZero172,
    kWidth,          kHeight,       kPacked12,     kFrameRate,    kZero192,
    kValue3,         kConverted208, kConverted278, kConverted308, kZero320,
    kText2,          kConverted384, kConverted444, kZero460,      kFramesPerDivFile,
    kFrameCount,     kZero472,      kMarker473,    kZero481,      kMarker483,
    kVersionAgain,   kZero496,      kZero498,      kIdentifier,   kIdentifierAgain,
    kZero1730,       kZero1746,     kZero1754,     kZero1762,     kMarker1766,
    kFrameRateAgain, kZero1778,     kZero1802,     kValue5,       kZero1810,
    kZero1882,       kZero1886};
static_assert(contiguous(kAll, kSize));
}  // namespace HEADER

/// Stores the low `field.size` bytes of `value`, lowest first.
inline void store(unsigned char* image, Field field, std::uint64_t value) {
  for (std::size_t i = 0; i < field.size; ++i) {
    image[field.offset + i] = static_cast<unsigned char>(value >> (8 * i));
  }
}

/// The unsigned number that `store` put there.
inline std::uint64_t load(const unsigned char* image, Field field) {
  std::uint64_t value = 0;
  for (std::size_t i = field.size; i-- > 0;) value = value << 8 | image[field.offset + i];
  return value;
}

}  // namespace KPF_FORMAT

#endif
