// The motion amplifier: a window of recent frames, their sums, and what can be seen against them.
#ifndef VX_KPF_MOTIONAMPL_H
#define VX_KPF_MOTIONAMPL_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

namespace VLM_KPF {

/**
 * Keeps the newest 8-bit frames of one size and brightens in the newest what moves.
 *
 * A frame is width x height samples of one byte, one run without rows. The window holds W - 1
 * frames, W being `refWindowSize`; the reference is their sum divided by W, a little below their
 * mean, so that a still scene is brightened evenly rather than by its noise.
 *
 * Threads: addFrame, getReference and amplifyFrame may be called by any thread and take turns;
 * amplifyAvailable and a change of `ampFactor` (through std::atomic_ref) may come beside them.
 * Nothing else on the same amplifier may run beside setParameters, reset and the destructor.
 */
class VxKPFMotionAmpl {
 public:
  /// Cycles of the motion that the window spans.
  static constexpr std::int32_t NUM_CYCLES_REQD = 3;

  VxKPFMotionAmpl() = default;
  ~VxKPFMotionAmpl();
  VxKPFMotionAmpl(const VxKPFMotionAmpl&) = delete;
  VxKPFMotionAmpl& operator=(const VxKPFMotionAmpl&) = delete;

  /**
   * Starts with an empty window, W = 3 x (frameRate / motionFrequency, truncated), or 1 when that
   * is 0. Nothing is checked: with W <= 0 no frame leaves the window and none is ever delivered.
   *
   * Throws std::length_error when width x height, a 32-bit product that wraps, is negative, and
   * std::bad_alloc; the arguments and W are stored even then, frames and sums stay as they were.
   */
  void setParameters(double frameRate, double motionFrequency, std::int32_t width,
                     std::int32_t height, double ampFactor);

  /// Empties the window and zeroes the sums.
  void reset();

  /**
   * Takes `frame` into the window; the oldest leaves a full one.
   *
   * @param frame not null, from ::operator new; freed with ::operator delete when it leaves. It
   *        stays the caller's when there are no sums yet (which is logged) and on an exception.
   */
  void addFrame(unsigned char* frame);

  /// Whether W - 1 frames are held.
  bool amplifyAvailable() const;

  /// Writes the sum of the frames held divided by W, truncated.
  /// @return false, and `out` untouched, with fewer than W - 1 frames or without sums.
  bool getReference(unsigned char* out);

  /**
   * Writes the newest frame, every sample raised by its positive difference from the reference
   * times `ampFactor`, reduced modulo 256, and clipped at 255.
   *
   * A frame that another thread adds meanwhile may be amplified against the reference before it.
   *
   * @return false, logged and `out` untouched, where there is no reference or no frame.
   */
  bool amplifyFrame(unsigned char* out);

  /// a - b, not below 0.
  static unsigned char minus_floor(const unsigned char& a, const unsigned char& b);
  /// a + b, not above 255.
  static unsigned char plus_clip(const unsigned char& a, const unsigned char& b);

  double ampFactor = 1.0;
  std::int32_t refWindowSize = 1;
  std::int32_t width = 0;             // samples
  std::int32_t height = 0;            // rows of `width` samples
  std::mutex mutex;                   // guards `frames` and `summer`
  std::deque<unsigned char*> frames;  // owned, the oldest at the front
  // Of every sample, over all frames held, modulo 2^32; null before setParameters.
  std::unique_ptr<std::vector<std::uint32_t>> summer;

 private:
  std::int32_t samplesPerFrame() const;
  bool windowIsFull(std::size_t held) const;
  bool amplifyNewest(const unsigned char* reference, unsigned char* out);

  std::atomic<std::size_t> heldFrames_{0};  // frames.size(), for those who do not hold the mutex
};

}  // namespace VLM_KPF

#endif
