// kpf speed: how many frames a second does this disk hold?
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "paths/native_path.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/recording/disk_trial.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/recording/trial_folder.h"
#include "tools/kpf/terminal/captured_output.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr double kShareOfRoom = 0.9;  // that a trial may fill: a full disk fails others too
constexpr std::uint64_t kFewestFrames = 10;
constexpr double kMinute = 60;  // seconds

struct SpeedOptions {
  std::string folder;              // on the disk that is tried
  std::string size = "2048x1536";  // pixels
  int bits = 12;                   // 8 or 12
  double seconds = 30;             // of recording
  bool json = false;
  bool quiet = false;
};

struct Size {
  unsigned width = 0;
  unsigned height = 0;
};

/// @throws ToolError unless it is WIDTHxHEIGHT.
Size parseSize(const std::string& text) {
  const std::size_t x = text.find('x');
  const auto side = [&text](std::size_t from, std::size_t to) -> unsigned {
    unsigned long number = 0;
    if (from == to || to - from > 5) return 0;
    for (; from < to; ++from) {
      if (text[from] < '0' || text[from] > '9') return 0;
      number = number * 10 + static_cast<unsigned long>(text[from] - '0');
    }
    return number > kLongestSide ? 0 : static_cast<unsigned>(number);
  };
  const Size size = x == std::string::npos ? Size{} : Size{side(0, x), side(x + 1, text.size())};
  if (size.width == 0 || size.height == 0) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no size", quoted(text)),
                    "Give one like --size 2048x1536; a side has 1 to 65535 pixels.");
  }
  return size;
}

/// Frames that no file system can compress or share, as a camera's noise cannot be.
std::vector<std::vector<unsigned char>> makeImages(const Size& size, int bits) {
  constexpr std::size_t kImages = 4;
  const std::size_t row = (size.width * (bits == 8 ? 1U : 2U) + 3U) / 4U * 4U;
  std::minstd_rand random;
  std::vector<std::vector<unsigned char>> images(kImages);
  for (auto& image : images) {
    image.resize(row * size.height);
    for (unsigned char& byte : image) byte = static_cast<unsigned char>(random() >> 8);
  }
  return images;
}

/// Records legs into a folder that is emptied after each.
class Trial {
 public:
  explicit Trial(const SpeedOptions& options)
      : options_(options),
        size_(parseSize(options.size)),
        recordSize_(recordBytes(size_.width, size_.height, options.bits)),
        progress_(options.quiet, static_cast<std::uint64_t>(options.seconds), "s") {}

  DiskSpeed run() {
    const TrialFolder folder(options_.folder);
    room_ = folder.room();
    if (framesThatFit(folder) < kFewestFrames) {
      throw ToolError(Outcome::kRefused,
                      fmt::format("{} has {} free, and a frame takes {}", escaped(options_.folder),
                                  sizeText(static_cast<double>(room_)),
                                  sizeText(static_cast<double>(recordSize_))),
                      "Free some space, or try smaller frames with --size.");
    }
    images_ = makeImages(size_, options_.bits);
    return searchSpeed(options_.seconds, [this, &folder](double rate, double seconds) {
      return record(folder, {rate, seconds, framesThatFit(folder)});
    });
  }

  /// Bytes of a frame's record.
  std::uint64_t recordSize() const { return recordSize_; }
  /// Bytes that were free before.
  std::uint64_t room() const { return room_; }

 private:
  std::uint64_t framesThatFit(const TrialFolder& folder) const {
    const double fit =
        kShareOfRoom * static_cast<double>(folder.room()) / static_cast<double>(recordSize_);
    return static_cast<std::uint64_t>(
        std::min(fit, static_cast<double>(std::numeric_limits<unsigned>::max())));
  }

  Leg record(const TrialFolder& folder, const LegPlan& plan) {
    std::filesystem::create_directories(PATHS::nativePath(folder.path()));
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = size_.width;
    configuration.height = size_.height;
    configuration.bitsPerPixel = options_.bits;
    configuration.frameRate = std::max(1, static_cast<int>(plan.rate));
    configuration.frameCount = static_cast<unsigned>(plan.frames);
    CapturedOutput captured;
    LibraryStream stream(folder.path() + "/trial.kpf", configuration);
    if (!stream.isOpen()) fail(captured);
    std::size_t next = 0;
    const Leg leg = runLeg(
        clock_, plan,
        [&] {
          stream.addImage(images_[next++ % images_.size()].data());
          progress_.show(static_cast<std::uint64_t>(clock_.now() - begun_));
        },
        [&captured] { return Interrupt::requested() || captured.any(); });
    if (captured.any()) fail(captured);
    stream.close();
    captured.drop();  // that frames are missing which nobody wanted
    folder.clear();
    return leg;
  }

  [[noreturn]] void fail(CapturedOutput& captured) const {
    captured.release();
    throw ToolError(Outcome::kWriteFailed,
                    fmt::format("frames cannot be written to {}", escaped(options_.folder)),
                    "See the lines above.");
  }

  const SpeedOptions& options_;
  Size size_;
  std::uint64_t recordSize_;
  Progress progress_;
  WallClock clock_;
  double begun_ = clock_.now();
  std::uint64_t room_ = 0;
  std::vector<std::vector<unsigned char>> images_;
};

double minutesThatFit(const Trial& trial, const Leg& leg) {
  if (leg.frames == 0) return 0;
  return static_cast<double>(trial.room()) / static_cast<double>(trial.recordSize()) / leg.rate /
         kMinute;
}

std::string rateText(const Leg& leg, const Trial& trial) {
  return fmt::format("{:.{}f} frames/s ({}/s)", leg.rate, leg.rate < 10 ? 1 : 0,
                     sizeText(leg.rate * static_cast<double>(trial.recordSize())));
}

void print(const SpeedOptions& options, const Trial& trial, const DiskSpeed& speed) {
  fmt::print("{}: frames of {} pixels, {} bits, {} each\n", escaped(options.folder), options.size,
             options.bits, sizeText(static_cast<double>(trial.recordSize())));
  if (speed.held.frames == 0) {
    fmt::print(
        "No rate held: even slow frames came late. Is something else writing to this disk?\n");
  } else {
    fmt::print("holds    {}: none of {} late in {:.1f} s, worst call {:.1f} ms of {:.1f}\n",
               rateText(speed.held, trial), countText(speed.held.frames, "frame"),
               speed.held.seconds, speed.held.worstCall * 1e3, 1e3 / speed.held.rate);
  }
  fmt::print("reaches  {}, as fast as it goes\n", rateText(speed.fastest, trial));
  if (speed.held.frames == 0) return;
  fmt::print("{} free: {:.1f} minutes at the rate it holds\n",
             sizeText(static_cast<double>(trial.room())), minutesThatFit(trial, speed.held));
}

Json jsonOf(const Leg& leg, const Trial& trial) {
  return {{"framesPerSecond", leg.rate},
          {"bytesPerSecond", leg.rate * static_cast<double>(trial.recordSize())},
          {"frames", leg.frames},
          {"seconds", leg.seconds},
          {"worstCallSeconds", leg.worstCall}};
}

Json jsonOf(const SpeedOptions& options, const Trial& trial, const DiskSpeed& speed) {
  Json json{{"folder", options.folder},
            {"size", options.size},
            {"bits", options.bits},
            {"recordBytes", trial.recordSize()},
            {"freeBytes", trial.room()}};
  const bool holds = speed.held.frames > 0;
  json["holds"] = holds ? jsonOf(speed.held, trial) : Json(nullptr);
  json["reaches"] = jsonOf(speed.fastest, trial);
  json["minutes"] = holds ? Json(minutesThatFit(trial, speed.held)) : Json(nullptr);
  return json;
}

Outcome runSpeed(const SpeedOptions& options) {
  const Interrupt interrupt;
  Trial trial(options);
  const DiskSpeed speed = trial.run();
  if (speed.cutShort) {
    tell("kpf: interrupted; what was written is removed\n");
    return Outcome::kCutShort;
  }
  if (options.json) {
    printJson(jsonOf(options, trial, speed));
  } else {
    print(options, trial, speed);
  }
  return speed.held.frames > 0 ? Outcome::kDone : Outcome::kProblemsFound;
}

}  // namespace

void addSpeed(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "speed", "Try how many frames a second a disk holds", runSpeed);
  line.add_option("FOLDER", options.folder, "on the disk to try; all that is written is removed")
      ->required();
  line.add_option("--size", options.size, "of a frame in pixels, WIDTHxHEIGHT")
      ->capture_default_str();
  line.add_option("--bits", options.bits, "bits a pixel: 8 or 12")
      ->check(CLI::IsMember({8, 12}))
      ->capture_default_str();
  line.add_option("--seconds", options.seconds, "of recording")
      ->check(between(1, 3600))
      ->capture_default_str();
  addJson(line, options.json);
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf speed . --size 1280x1024 --seconds 2",
            {"a rate held", "no rate held, or interrupted, or the system refused to write",
             kNotBegunText});
}

}  // namespace KPF_TOOL
