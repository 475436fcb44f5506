// The records before an event.
#ifndef KPF_RECORD_RING_H
#define KPF_RECORD_RING_H

#include <cstddef>
#include <vector>

namespace KPF_TOOL {

/// Holds the newest records, in memory that is taken once: while a camera runs there is no time to
/// ask for more.
class RecordRing {
 public:
  RecordRing(std::size_t records, std::size_t recordSize)
      : recordSize_(recordSize), bytes_(records * recordSize), isPlaceholder_(records) {}

  /// Copies a record behind the others, a placeholder where it is null. Where there is no room left
  /// the oldest one goes.
  void push(const unsigned char* record);
  /// The oldest record, null where it is a placeholder; there must be one.
  unsigned char* front();
  void pop();

  std::size_t size() const { return size_; }
  bool isEmpty() const { return size_ == 0; }
  bool isFull() const { return size_ == isPlaceholder_.size(); }

 private:
  std::size_t recordSize_;
  std::vector<unsigned char> bytes_;
  std::vector<bool> isPlaceholder_;
  std::size_t first_ = 0;
  std::size_t size_ = 0;
};

}  // namespace KPF_TOOL

#endif
