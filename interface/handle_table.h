// Integer handles for objects that callers never see. Nothing here takes a lock.
#ifndef HANDLE_TABLE_H
#define HANDLE_TABLE_H

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace VLM_INTERNAL {

/// Handle h names slot h - 1. Slots are emptied and filled again, never removed.
template <class Object>
using HandleTable = std::vector<std::unique_ptr<Object>>;

enum class HandleState { kLive, kZero, kOutOfRange, kEmpty };

template <class Object>
struct LookUp {
  HandleState state;
  Object* object;  // null unless kLive
};

/// Throws std::out_of_range for the handle one past the last: the range test lets that index
/// through to the checked access, and callers rely on telling it from any other bad handle.
template <class Object>
LookUp<Object> lookUp(const HandleTable<Object>& table, unsigned handle) {
  if (handle == 0) return {HandleState::kZero, nullptr};
  const int index = static_cast<int>(handle - 1);
  if (index < 0 || index > static_cast<int>(table.size())) {
    return {HandleState::kOutOfRange, nullptr};
  }
  Object* const object = table.at(static_cast<std::size_t>(index)).get();
  return {object == nullptr ? HandleState::kEmpty : HandleState::kLive, object};
}

/// Puts `object` into the first empty slot, or into a new one behind the last.
template <class Object>
unsigned issueHandle(HandleTable<Object>& table, std::unique_ptr<Object> object) {
  for (std::size_t slot = 0; slot < table.size(); ++slot) {
    if (table[slot] != nullptr) continue;
    table[slot] = std::move(object);
    return static_cast<unsigned>(slot + 1);
  }
  table.push_back(std::move(object));
  return static_cast<unsigned>(table.size());
}

/// Empties the slot of a live handle and destroys its object.
template <class Object>
void retireHandle(HandleTable<Object>& table, unsigned handle) {
  table.at(handle - 1).reset();
}

}  // namespace VLM_INTERNAL

#endif
