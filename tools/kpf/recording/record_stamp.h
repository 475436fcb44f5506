// What stands in front of a record's pixels.
#ifndef KPF_RECORD_STAMP_H
#define KPF_RECORD_STAMP_H

#include <cstdint>

#include "format/kpf_layout.h"

namespace KPF_TOOL {

inline void stampNumber(unsigned char* record, std::uint64_t number) {
  KPF_FORMAT::store(record, KPF_FORMAT::FRAME_HEADER::kSequenceNumber, number);
}

/// @param time nanoseconds since 1970; what is smaller than a microsecond is dropped.
inline void stampTime(unsigned char* record, std::uint64_t time) {
  KPF_FORMAT::store(record, KPF_FORMAT::FRAME_HEADER::kSeconds, time / 1000000000);
  KPF_FORMAT::store(record, KPF_FORMAT::FRAME_HEADER::kMicroseconds, time / 1000 % 1000000);
}

}  // namespace KPF_TOOL

#endif
