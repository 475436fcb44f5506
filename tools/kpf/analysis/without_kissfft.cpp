// Stands in for transform.cpp where there is no kissfft: whoever asks canTransform() first gets no
// further.
#include <cstddef>
#include <span>
#include <stdexcept>

#include "tools/kpf/analysis/transform.h"

namespace KPF_TOOL {

class Transform::Plan {};

bool canTransform() { return false; }

std::size_t Transform::lengthFor(std::size_t count) { return count; }

Transform::Transform(std::size_t /*length*/) { throw std::logic_error("built without kissfft"); }
Transform::~Transform() = default;

std::size_t Transform::length() const { return 0; }
std::span<float> Transform::in() { return {}; }
std::span<const float> Transform::powers() { return {}; }

}  // namespace KPF_TOOL
