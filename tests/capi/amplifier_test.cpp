// The amplifier through the C front.
#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;

class Amplifier : public testing::Test {
 protected:
  Amplifier() {
    options.width = 2;
    options.height = 1;
    options.frame_rate = 25;
    options.motion_frequency = 20;  // a window of 3, of which 2 are held
    options.gain = 3;
  }
  kpf_amplifier* create() {
    kpf_amplifier* amplifier = nullptr;
    EXPECT_OK(kpf_amplifier_create(&options, &amplifier));
    return amplifier;
  }
  static void add(kpf_amplifier* to, const Bytes& pixels) {
    EXPECT_OK(kpf_amplifier_add(to, pixels.data(), 0));
  }
  static Bytes get(kpf_amplifier* from) {
    Bytes pixels(2);
    EXPECT_OK(kpf_amplifier_get(from, pixels.data(), 2));
    return pixels;
  }

  kpf_amplifier_options options = KPF_AMPLIFIER_OPTIONS_INIT;
};

TEST_F(Amplifier, BrightensWhatIsAboveTheReference) {
  kpf_amplifier* const amplifier = create();
  std::uint32_t window = 0;
  EXPECT_OK(kpf_amplifier_window(amplifier, &window));
  EXPECT_EQ(window, 2U);
  add(amplifier, {10, 200});
  add(amplifier, {20, 100});
  EXPECT_EQ(get(amplifier), (Bytes{50, 100}));
  add(amplifier, {90, 50});
  Bytes reference(2);
  EXPECT_OK(kpf_amplifier_reference(amplifier, reference.data(), 2));
  EXPECT_EQ(reference, (Bytes{36, 50}));
  EXPECT_EQ(get(amplifier), (Bytes{252, 50}));
  EXPECT_OK(kpf_amplifier_set_gain(amplifier, 2.5));
  EXPECT_EQ(get(amplifier), (Bytes{225, 50}));
  EXPECT_OK(kpf_amplifier_destroy(amplifier));
}

TEST_F(Amplifier, GivesNothingBeforeTheWindowIsFull) {
  kpf_amplifier* const amplifier = create();
  std::uint32_t available = 7;
  EXPECT_OK(kpf_amplifier_available(amplifier, &available));
  EXPECT_EQ(available, 0U);
  add(amplifier, {10, 200});
  Bytes pixels = {7, 7};
  EXPECT_EQ(kpf_amplifier_get(amplifier, pixels.data(), 2), KPF_ERROR_NOT_READY);
  EXPECT_EQ(kpf_amplifier_reference(amplifier, pixels.data(), 2), KPF_ERROR_NOT_READY);
  EXPECT_EQ(pixels, (Bytes{7, 7}));
  add(amplifier, {10, 200});
  EXPECT_OK(kpf_amplifier_available(amplifier, &available));
  EXPECT_EQ(available, 1U);
  EXPECT_OK(kpf_amplifier_destroy(amplifier));
}

TEST_F(Amplifier, FramesAreCopiedByTheirStride) {
  options.width = 1, options.height = 2;
  kpf_amplifier* const amplifier = create();
  Bytes padded = {10, 99, 200, 99};
  EXPECT_OK(kpf_amplifier_add(amplifier, padded.data(), 2));
  EXPECT_OK(kpf_amplifier_add(amplifier, padded.data(), 2));
  padded.assign(4, 0);
  Bytes reference(2);
  EXPECT_OK(kpf_amplifier_reference(amplifier, reference.data(), 2));
  EXPECT_EQ(reference, (Bytes{6, 133}));
  EXPECT_OK(kpf_amplifier_destroy(amplifier));
}

TEST_F(Amplifier, OptionsOutOfTheirRangeAreRefused) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const auto refused = [&](auto change) {
    kpf_amplifier_options changed = options;
    change(changed);
    kpf_amplifier* made = nullptr;
    EXPECT_EQ(kpf_amplifier_create(&changed, &made), KPF_ERROR_ARGUMENT);
    EXPECT_EQ(made, nullptr);
  };
  refused([](auto& o) { o.width = 0; });
  refused([](auto& o) { o.height = 65536; });
  refused([](auto& o) { o.width = 65535, o.height = 65535; });
  refused([](auto& o) { o.reserved = 1; });
  for (const double rate : {0.0, -1.0, kNan, kInfinity})
    refused([=](auto& o) { o.frame_rate = rate; });
  for (const double frequency : {0.0, -1.0, kNan, kInfinity, 25.1, 1e-300, 1e-6}) {
    refused([=](auto& o) { o.motion_frequency = frequency; });
  }
  for (const double gain : {kNan, kInfinity}) refused([=](auto& o) { o.gain = gain; });
}

TEST_F(Amplifier, BuffersThatDoNotFitAreRefused) {
  kpf_amplifier* const amplifier = create();
  Bytes pixels = {7, 7};
  EXPECT_EQ(kpf_amplifier_add(amplifier, nullptr, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_amplifier_add(amplifier, pixels.data(), 1), KPF_ERROR_ARGUMENT);
  add(amplifier, pixels);
  add(amplifier, pixels);
  EXPECT_EQ(kpf_amplifier_get(amplifier, nullptr, 2), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_amplifier_get(amplifier, pixels.data(), 1), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_amplifier_set_gain(amplifier, std::nan("")), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(pixels, (Bytes{7, 7}));
  EXPECT_OK(kpf_amplifier_destroy(amplifier));
}

TEST_F(Amplifier, DestroyedOneIsToldAmongItsThreads) {
  options.width = 400, options.height = 300;
  kpf_amplifier* const amplifier = create();
  const Bytes pixels(400 * 300, 5);
  std::thread feeder([&] {
    kpf_result result = KPF_OK;
    while (result == KPF_OK) result = kpf_amplifier_add(amplifier, pixels.data(), 0);
    EXPECT_EQ(result, KPF_ERROR_HANDLE);
  });
  Bytes out(400 * 300);
  int had = 0;
  while (had < 20) had += kpf_amplifier_get(amplifier, out.data(), out.size()) == KPF_OK ? 1 : 0;
  EXPECT_OK(kpf_amplifier_destroy(amplifier));
  feeder.join();
  EXPECT_EQ(out[0], 11);  // a reference of 3, and 3 x 2 on top
}

}  // namespace
