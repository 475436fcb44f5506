// What kernels of all instruction sets are compared on.
#ifndef TESTS_SUPPORT_KERNEL_INPUTS_H
#define TESTS_SUPPORT_KERNEL_INPUTS_H

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace TEST_SUPPORT {

/// Values of one kind, one after the other.
using Source = std::function<unsigned()>;

/// Random values, then the extremes: all bits off, all on, either of them by chance.
inline std::vector<Source> kernelSources() {
  auto random = std::make_shared<std::mt19937>(20240607);
  return {[random] { return static_cast<unsigned>((*random)()); }, [] { return 0U; },
          [] { return ~0U; }, [random] { return (*random)() % 2 != 0 ? ~0U : 0U; }};
}

/// Exactly `count` elements, so that an address sanitizer sees who reads past them.
template <class Element>
std::vector<Element> filled(std::size_t count, const Source& source) {
  std::vector<Element> elements(count);
  for (Element& element : elements) element = static_cast<Element>(source());
  return elements;
}

/// Calls `compare(count, offset, source)` for counts 0 to 200, at and off alignment, for every
/// kind.
inline void forKernelInputs(
    const std::function<void(std::size_t count, std::size_t offset, const Source&)>& compare) {
  for (std::size_t count = 0; count <= 200; ++count) {
    for (const std::size_t offset : {0U, 1U, 13U}) {
      for (const Source& source : kernelSources()) {
        compare(count, offset, source);
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

}  // namespace TEST_SUPPORT

#endif
