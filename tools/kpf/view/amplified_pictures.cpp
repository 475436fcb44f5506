#include "tools/kpf/view/amplified_pictures.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "tools/kpf/analysis/clean_amplifier.h"

namespace KPF_TOOL {
namespace {

constexpr int kWhite = 255;
constexpr std::size_t kDifferences = 256;

SharedPicture shared(std::vector<unsigned char> picture) {
  return std::make_shared<const std::vector<unsigned char>>(std::move(picture));
}

/// What the library adds to a sample, by its difference from the reference: the product cut to a
/// whole number, of which a byte remains.
struct LibraryGain {
  explicit LibraryGain(double gain) : added{}, wraps{} {
    for (std::size_t difference = 0; difference < kDifferences; ++difference) {
      const auto product = static_cast<int>(static_cast<double>(difference) * gain);
      added[difference] = static_cast<unsigned char>(product);
      wraps[difference] = product > kWhite ? kWraps : kUnmarked;
    }
  }

  std::array<unsigned char, kDifferences> added;
  std::array<unsigned char, kDifferences> wraps;  // kWraps or kUnmarked
};

void amplifyByLibrary(const Moment& moment, double gain, bool marked, AmplifiedPictures& made) {
  const LibraryGain table(gain);
  const std::vector<unsigned char>&frame = *moment.frame, &reference = *moment.reference;
  std::vector<unsigned char> out(frame.size()), marks(marked ? frame.size() : 0);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto difference = static_cast<std::size_t>(std::max(frame[i] - reference[i], 0));
    const int sum = frame[i] + table.added[difference];
    const unsigned wraps = table.wraps[difference];
    const unsigned clips = wraps == kUnmarked && sum > kWhite ? kClips : kUnmarked;
    out[i] = static_cast<unsigned char>(std::min(sum, kWhite));
    made.wraps += wraps / kWraps;
    made.clips += clips;
    if (marked) marks[i] = static_cast<unsigned char>(wraps + clips);
  }
  made.reference = moment.reference;
  made.amplified = shared(std::move(out));
  made.marks = shared(std::move(marks));
}

void amplifyCleanly(const Moment& moment, double gain, bool marked, AmplifiedPictures& made) {
  const CleanAmplifier amplifier(moment.window, gain);
  const std::vector<unsigned char>& frame = *moment.frame;
  std::vector<unsigned char> mean(frame.size()), out(frame.size());
  std::vector<unsigned char> marks(marked ? frame.size() : 0);
  amplifier.correct(frame, *moment.reference, mean);
  amplifier.amplify(frame, *moment.reference, out);
  for (std::size_t i = 0; i < frame.size(); ++i) {
    const double wanted = frame[i] + (frame[i] - mean[i]) * gain;
    const unsigned clips = wanted <= -0.5 || wanted >= kWhite + 0.5 ? kClips : kUnmarked;
    made.clips += clips;
    if (marked) marks[i] = static_cast<unsigned char>(clips);
  }
  made.reference = shared(std::move(mean));
  made.amplified = shared(std::move(out));
  made.marks = shared(std::move(marks));
}

}  // namespace

AmplifiedPictures picturesOf(const Moment& moment, double gain, bool clean, bool marked) {
  AmplifiedPictures made;
  made.windowFull = moment.windowFull;
  if (!moment.windowFull) {
    made.reference = made.amplified = moment.frame;
    made.marks = shared(std::vector<unsigned char>(marked ? moment.frame->size() : 0, kUnmarked));
  } else if (clean) {
    amplifyCleanly(moment, gain, marked, made);
  } else {
    amplifyByLibrary(moment, gain, marked, made);
  }
  return made;
}

}  // namespace KPF_TOOL
