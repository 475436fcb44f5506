// The amplifier's arithmetic as users of OpenCV would write it, on one thread.
#include <cstddef>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/support/jobs.h"

namespace BENCH {
namespace {

constexpr int kWindow = 9;
constexpr double kGain = 2.5;

cv::Size sizeOf(FrameSize size) {
  return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

cv::Mat imageAt(unsigned char* samples, FrameSize size) { return {sizeOf(size), CV_8U, samples}; }

/// The same results as the amplifier's: integer sums, truncated quotients, products from a table.
class Exact {
 public:
  explicit Exact(FrameSize size)
      : sums_(cv::Mat::zeros(sizeOf(size), CV_32S)), gains_(1, 256, CV_8U) {
    for (int d = 0; d < 256; ++d)
      gains_.at<unsigned char>(d) = cv::saturate_cast<unsigned char>(static_cast<int>(d * kGain));
  }

  void frame(const cv::Mat& newest, const cv::Mat& oldest, cv::Mat& out) {
    cv::add(sums_, newest, sums_, cv::noArray(), CV_32S);
    cv::subtract(sums_, oldest, sums_, cv::noArray(), CV_32S);
    // Rounding half a step lower, but for the least fraction, truncates.
    sums_.convertTo(reference_, CV_8U, 1.0 / kWindow, -0.5 + 0.5 / kWindow);
    cv::subtract(newest, reference_, difference_);
    cv::LUT(difference_, gains_, difference_);
    cv::add(newest, difference_, out);
  }

 private:
  cv::Mat sums_, gains_, reference_, difference_;
};

/// As one writes it at first: float sums, rounded quotients, a weighted addition.
class Natural {
 public:
  explicit Natural(FrameSize size) : sums_(cv::Mat::zeros(sizeOf(size), CV_32F)) {}

  void frame(const cv::Mat& newest, const cv::Mat& oldest, cv::Mat& out) {
    cv::accumulate(newest, sums_);
    cv::subtract(sums_, oldest, sums_, cv::noArray(), CV_32F);
    sums_.convertTo(reference_, CV_8U, 1.0 / kWindow);
    cv::subtract(newest, reference_, difference_);
    cv::addWeighted(newest, 1.0, difference_, kGain, 0.0, out);
  }

 private:
  cv::Mat sums_, reference_, difference_;
};

template <class Amplifier>
Job amplifierJob(FrameSize size) {
  auto amplifier = std::make_shared<Amplifier>(size);
  auto frames = std::make_shared<BufferRing>(size.pixels(), size.pixels());
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * 18);
  return [=] {
    const cv::Mat newest = imageAt(frames->next(), size);
    const cv::Mat oldest = imageAt(frames->next(), size);
    cv::Mat amplified = imageAt(out->next(), size);
    amplifier->frame(newest, oldest, amplified);
  };
}

}  // namespace

void addJobs() {
  cv::setNumThreads(1);
  for (const FrameSize size : kFrameSizes) {
    const std::size_t moved = size.pixels() * 18;
    addLoneJob("amplifier/opencv-exact", size, moved, [=] { return amplifierJob<Exact>(size); });
    addLoneJob("amplifier/opencv-natural", size, moved,
               [=] { return amplifierJob<Natural>(size); });
  }
}

}  // namespace BENCH
