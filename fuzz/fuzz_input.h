// The bytes that a fuzzer hands over, taken one number at a time.
#ifndef FUZZ_INPUT_H
#define FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace FUZZ {

/// Ends the process, and so the run, when something that must hold does not.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

  bool empty() const { return left_ == 0; }
  std::size_t left() const { return left_; }

  /// 0 behind the end.
  std::uint8_t byte() {
    if (left_ == 0) return 0;
    --left_;
    return *next_++;
  }

  /// Below `limit`, which is at most 65536.
  unsigned number(unsigned limit) {
    const unsigned low = byte();
    return (low | static_cast<unsigned>(byte()) << 8) % limit;
  }

  /// `size` bytes, repeating what is left of the input, or zeros when nothing is.
  std::vector<unsigned char> bytes(std::size_t size) {
    std::vector<unsigned char> out(size);
    for (std::size_t i = 0; i < size && left_ > 0; ++i) out[i] = next_[i % left_];
    const std::size_t taken = std::min(size, left_);
    next_ += taken;
    left_ -= taken;
    return out;
  }

 private:
  const std::uint8_t* next_;
  std::size_t left_;
};

}  // namespace FUZZ

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif
