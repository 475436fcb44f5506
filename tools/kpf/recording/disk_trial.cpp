#include "tools/kpf/recording/disk_trial.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <thread>

namespace KPF_TOOL {
namespace {

constexpr int kProbes = 3;       // after the fastest leg, to search between none and all of it
constexpr double kFirst = 0.8;   // of the fastest rate: what a disk usually holds
constexpr int kLongLegs = 5;     // tried before no rate is said to hold
constexpr double kSlower = 0.8;  // from one long leg to the next

double secondsOf(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

/// Whole frames a second, which is what the format holds; slow ones as they are.
double wholeRate(double rate) { return rate < 1 ? rate : std::floor(rate); }

}  // namespace

double WallClock::now() { return secondsOf(std::chrono::steady_clock::now().time_since_epoch()); }

// Sleeping ends late by some ten microseconds, so the last ones are spent awake.
void WallClock::waitUntil(double time) {
  constexpr double kAwake = 0.0002;  // seconds
  while (now() < time) {
    const double left = time - kAwake - now();
    if (left > 0) std::this_thread::sleep_for(std::chrono::duration<double>(left));
  }
}

Leg runLeg(TrialClock& clock, const LegPlan& plan, const std::function<void()>& addFrame,
           const std::function<bool()>& stop) {
  const double frameTime = plan.rate > 0 ? 1 / plan.rate : 0;
  Leg leg;
  leg.rate = plan.rate;
  const double start = clock.now();
  while (leg.frames < plan.frames) {
    const double sinceStart = static_cast<double>(leg.frames) * frameTime;
    if (std::max(sinceStart, leg.seconds) >= plan.seconds) break;
    leg.cutShort = stop();
    if (leg.cutShort) break;
    const double due = start + sinceStart;
    if (frameTime > 0) clock.waitUntil(due);
    const double before = clock.now();
    addFrame();
    const double after = clock.now();
    ++leg.frames;
    leg.seconds = after - start;
    leg.worstCall = std::max(leg.worstCall, after - before);
    if (frameTime == 0) continue;
    leg.latest = std::max(leg.latest, after - due);
    if (after - due > frameTime) ++leg.late;
  }
  if (frameTime == 0 && leg.seconds > 0) leg.rate = static_cast<double>(leg.frames) / leg.seconds;
  return leg;
}

DiskSpeed searchSpeed(double seconds,
                      const std::function<Leg(double rate, double seconds)>& runLegAt) {
  const double probe = seconds / 2 / (kProbes + 1);
  DiskSpeed speed;
  speed.fastest = runLegAt(0, probe);
  speed.cutShort = speed.fastest.cutShort;
  double holds = 0;  // shares of the fastest rate
  double fails = 1;
  for (int i = 0; i < kProbes && !speed.cutShort; ++i) {
    const double share = i == 0 ? kFirst : (holds + fails) / 2;
    const Leg leg = runLegAt(wholeRate(share * speed.fastest.rate), probe);
    speed.cutShort = leg.cutShort;
    (leg.holds() ? holds : fails) = share;
  }
  double share = holds > 0 ? holds : fails / 2;
  for (int i = 0; i < kLongLegs && !speed.cutShort; ++i, share *= kSlower) {
    const Leg leg = runLegAt(wholeRate(share * speed.fastest.rate), seconds / 2);
    speed.cutShort = leg.cutShort;
    if (!leg.holds()) continue;
    speed.held = leg;
    break;
  }
  return speed;
}

}  // namespace KPF_TOOL
