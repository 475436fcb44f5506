#include "tools/kpf/recording/record_ring.h"

#include <algorithm>

namespace KPF_TOOL {

void RecordRing::push(const unsigned char* record) {
  if (isPlaceholder_.empty()) return;
  if (isFull()) pop();
  const std::size_t slot = (first_ + size_) % isPlaceholder_.size();
  isPlaceholder_[slot] = record == nullptr;
  if (record != nullptr) std::copy_n(record, recordSize_, bytes_.data() + slot * recordSize_);
  ++size_;
}

unsigned char* RecordRing::front() {
  return isPlaceholder_[first_] ? nullptr : bytes_.data() + first_ * recordSize_;
}

void RecordRing::pop() {
  first_ = (first_ + 1) % isPlaceholder_.size();
  --size_;
}

}  // namespace KPF_TOOL
