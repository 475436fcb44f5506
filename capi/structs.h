// Structures that cross the boundary: each begins with its size, as its owner knows it.
#ifndef CAPI_STRUCTS_H
#define CAPI_STRUCTS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "capi/calls.h"

namespace KPF_C {

/// Throws a KPF_ERROR_STRUCT for what cannot be a structure's size. Members are added in steps of 8
/// bytes, so no such size cuts one in half.
void requireStructSize(std::uint32_t size);

/// Throws a KPF_ERROR_STRUCT unless the bytes behind `known`, up to `size`, are 0: a newer caller
/// asks for nothing that this version does not know.
void requireZeroBehind(const void* structure, std::size_t known, std::uint32_t size);

/// What the caller passed, as this version knows it: missing members are 0.
template <class Struct>
Struct taken(const Struct* from) {
  require(from != nullptr, "a structure is null");
  requireStructSize(from->struct_size);
  requireZeroBehind(from, sizeof(Struct), from->struct_size);
  Struct copy{};
  std::memcpy(&copy, from, std::min<std::size_t>(from->struct_size, sizeof(Struct)));
  return copy;
}

/// Throws unless `to` can be filled in. To be asked before anything else is done.
template <class Struct>
void requireRoom(const Struct* to) {
  require(to != nullptr, "a structure is null");
  requireStructSize(to->struct_size);
}

/// Fills in as many members as the caller knows; those that only the caller knows become 0.
template <class Struct>
void give(Struct what, Struct* to) {
  const std::uint32_t size = to->struct_size;
  const auto known = std::min<std::size_t>(size, sizeof(Struct));
  what.struct_size = size;
  std::memcpy(static_cast<void*>(to), &what, known);
  std::memset(reinterpret_cast<unsigned char*>(to) + known, 0, size - known);
}

}  // namespace KPF_C

#endif
