// What is the same in every recording. The fixed numbers and texts of the header file are written
// and checked from these tables.
#ifndef KPF_FIXED_H
#define KPF_FIXED_H

#include <bit>
#include <cstdint>
#include <string_view>

#include "format/kpf_layout.h"

namespace KPF_FORMAT {

// Extensions, without their dot. A header file may have any other.
inline constexpr std::string_view kHeaderExtension = "kpf";
inline constexpr std::string_view kDivExtension = "div";

inline constexpr std::string_view kVersion = "v3.0";
inline constexpr std::string_view kConverted = "Converted";
inline constexpr std::string_view kGenerated = "Velmar Generated";  // in no file so far

struct FixedNumber {
  Field field;
  std::uint64_t value;
};

inline constexpr FixedNumber kFixedNumbers[] = {
    {HEADER::kScale, std::bit_cast<std::uint64_t>(1.0)},
    {HEADER::kZero172, 0},
    {HEADER::kZero192, 0},
    {HEADER::kZero320, 0},
    {HEADER::kZero460, 0},
    {HEADER::kZero472, 0},
    {HEADER::kMarker473, 1},
    {HEADER::kZero481, 0},
    {HEADER::kMarker483, std::bit_cast<std::uint64_t>(60.0)},
    {HEADER::kZero496, 0},
    {HEADER::kZero1746, 0},
    {HEADER::kZero1754, 0},
    {HEADER::kZero1762, 0},
    {HEADER::kMarker1766, 1},
    {HEADER::kZero1802, 0},
    {HEADER::kZero1882, 0},
};

struct FixedText {
  Field field;
  std::string_view text;
  bool wholeField;  // zeros behind the text; else a long text2 may show there
};

inline constexpr FixedText kFixedTexts[] = {
    {HEADER::kVersion, kVersion, true},         {HEADER::kConverted208, kConverted, true},
    {HEADER::kConverted278, kConverted, true},  {HEADER::kConverted308, kConverted, true},
    {HEADER::kConverted384, kConverted, false}, {HEADER::kConverted444, kConverted, false},
    {HEADER::kVersionAgain, kVersion, true},
};

constexpr Field behind(std::string_view text, Field field) {
  return {field.offset + text.size(), field.size - text.size()};
}

/// Zero but for a text2 of more bytes than its field has: that runs on behind it to the end of the
/// header, whatever else is stored there wins, and in these places its bytes stay.
inline constexpr Field kOverrunOfText2[] = {
    behind(kConverted, HEADER::kConverted384),
    behind(kConverted, HEADER::kConverted444),
    HEADER::kZero498,
    HEADER::kZero1730,
    HEADER::kZero1778,
    HEADER::kZero1810,
    HEADER::kZero1886,
};

/// What the header holds of a value5: 1 and 2 are kept, all others become 0.
constexpr std::uint64_t storedValue5(std::int64_t value) {
  return value == 1 || value == 2 ? static_cast<std::uint64_t>(value) : 0;
}

}  // namespace KPF_FORMAT

#endif
