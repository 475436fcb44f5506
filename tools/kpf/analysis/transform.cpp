#include "tools/kpf/analysis/transform.h"

#include <kiss_fftr.h>

#include <new>
#include <vector>

namespace KPF_TOOL {

class Transform::Plan {
 public:
  explicit Plan(std::size_t length)
      : in(length),
        powers(length / 2 + 1),
        state_(kiss_fftr_alloc(static_cast<int>(length), 0, nullptr, nullptr)),
        out_(length / 2 + 1) {
    if (!state_) throw std::bad_alloc();
  }

  void run() {
    kiss_fftr(state_.get(), in.data(), out_.data());
    for (std::size_t i = 0; i < out_.size(); ++i) {
      powers[i] = out_[i].r * out_[i].r + out_[i].i * out_[i].i;
    }
  }

  std::vector<float> in;
  std::vector<float> powers;

 private:
  struct Release {
    void operator()(kiss_fftr_state* state) const { kiss_fftr_free(state); }
  };

  std::unique_ptr<kiss_fftr_state, Release> state_;
  std::vector<kiss_fft_cpx> out_;
};

bool canTransform() { return true; }

std::size_t Transform::lengthFor(std::size_t count) {
  // kissfft counts in int; its real transforms have even lengths.
  return static_cast<std::size_t>(kiss_fftr_next_fast_size_real(static_cast<int>(count)));
}

Transform::Transform(std::size_t length) : plan_(std::make_unique<Plan>(length)) {}
Transform::~Transform() = default;

std::size_t Transform::length() const { return plan_->in.size(); }
std::span<float> Transform::in() { return plan_->in; }

std::span<const float> Transform::powers() {
  plan_->run();
  return plan_->powers;
}

}  // namespace KPF_TOOL
