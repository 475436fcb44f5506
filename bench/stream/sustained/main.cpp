// sustained [OPTION VALUE]...: recordings of minutes, by the library and by others.
//
//   --gigabytes N   written by every turn (8)
//   --rate MB       a second, of the paced turns (six tenths of what O_DIRECT reached)
//   --turns N       of every writer (2)
//   --only NAMES    these writers alone, with commas between them
//   --threads N     of the team that packs (the runtime's own choice)
//   --picture FILE  draws the calls of library and write, paced, as SVG
//   --trace N       shows the N slowest calls of the library, paced, with their parts
//   --small 0       leaves out the row of small frames
//
// Writes below TMPDIR and removes what it wrote, also when it is interrupted.
#include <fmt/format.h>
#include <omp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/stream/sustained/report.h"
#include "bench/stream/sustained/trace.h"

namespace BENCH {
namespace {

struct Options {
  double gigabytes = 8;
  double rate = 0;
  unsigned turns = 2;
  std::string only;
  int threads = 0;
  std::string picture;
  unsigned trace = 0;
  bool small = true;
};

Options parse(int argc, char** argv) {
  std::map<std::string, std::string> given;
  for (int i = 1; i + 1 < argc; i += 2) given[argv[i]] = argv[i + 1];
  if (argc % 2 == 0) throw std::invalid_argument("every option takes a value");
  Options options;
  for (const auto& [name, value] : given) {
    if (name == "--gigabytes") {
      options.gigabytes = std::stod(value);
    } else if (name == "--rate") {
      options.rate = std::stod(value) * 1e6;
    } else if (name == "--turns") {
      options.turns = static_cast<unsigned>(std::stoul(value));
    } else if (name == "--only") {
      options.only = "," + value + ",";
    } else if (name == "--threads") {
      options.threads = std::stoi(value);
    } else if (name == "--picture") {
      options.picture = value;
    } else if (name == "--trace") {
      options.trace = static_cast<unsigned>(std::stoul(value));
    } else if (name == "--small") {
      options.small = value != "0";
    } else {
      throw std::invalid_argument("no such option: " + name);
    }
  }
  if (!(options.gigabytes > 0)) throw std::invalid_argument("--gigabytes: more than 0");
  return options;
}

class Session {
 public:
  explicit Session(const Options& options) : options_(options) {
    for (const NamedWriter& writer : allWriters()) {
      if (options.only.empty() || options.only.find("," + writer.name + ",") != std::string::npos) {
        writers_.push_back(writer);
      }
    }
    parent_ = std::filesystem::temp_directory_path().string();
    const double free = static_cast<double>(std::filesystem::space(parent_).available);
    // 16 bits a pixel take a third more than the records.
    if (free < options.gigabytes * 1.4e9) {
      throw std::runtime_error(
          fmt::format("{} has {:.1f} GB free, and {:.1f} are needed: take "
                      "--gigabytes or another TMPDIR",
                      parent_, free / 1e9, options.gigabytes * 1.4));
    }
  }

  void run() {
    const Material large({2048, 1536});
    const double rate = unpaced(planFor(large, 1, 0));
    if (rate > 0) {
      const Plan one = planFor(large, 1, rate);
      paced(one, writers_);
      traced(one);
      const Material medium({1280, 1024});
      paced(planFor(medium, 4, rate), streamWriters());
    }
    if (options_.small) printSmallFrames(parent_);
  }

 private:
  Plan planFor(const Material& material, unsigned streams, double rate) const {
    Plan plan;
    plan.material = &material;
    plan.streams = streams;
    plan.parent = parent_;
    const auto record = static_cast<double>(material.recordSize());
    const auto each = static_cast<unsigned>(options_.gigabytes * 1e9 / record / streams);
    plan.frames = std::max(1U, each) * streams;
    if (rate > 0) plan.interval = record / rate;
    return plan;
  }

  /// @return the rate of the paced turns.
  double unpaced(const Plan& plan) const {
    double fastestDirect = 0;
    printUnpacedHead();
    for (unsigned turn = 1; turn <= options_.turns; ++turn) {
      for (const NamedWriter& writer : writers_) {
        const Course course = takeTurn(writer.open, plan);
        printUnpaced(writer.name, turn, course, plan);
        if (writer.name != "O_DIRECT") continue;
        fastestDirect = std::max(fastestDirect, plan.bytes() / course.seconds);
      }
    }
    return options_.rate > 0 ? options_.rate : 0.6 * fastestDirect;
  }

  void paced(const Plan& plan, const std::vector<NamedWriter>& writers) const {
    std::vector<Series> series;
    printPacedHead(plan);
    for (unsigned turn = 1; turn <= options_.turns; ++turn) {
      for (const NamedWriter& writer : writers) {
        const Course course = takeTurn(writer.open, plan);
        printPaced(writer.name, turn, course, plan);
        const bool drawn = writer.name == "library" || writer.name == "write";
        if (turn == 1 && plan.streams == 1 && drawn) series.push_back({writer.name, course.calls});
      }
    }
    if (!options_.picture.empty() && !series.empty()) {
      drawCalls(options_.picture, series, plan.frameTime());
    }
  }

  void traced(const Plan& plan) const {
    if (options_.trace == 0) return;
    std::vector<Stages> stages;
    takeTurn(openTraced(stages), plan);
    printSlowest(stages, options_.trace);
  }

  /// The issue of many streams is the page cache's: the other formats add nothing to it.
  std::vector<NamedWriter> streamWriters() const {
    std::vector<NamedWriter> found;
    for (const NamedWriter& writer : writers_) {
      if (writer.name != "libtiff" && writer.name != "HDF5") found.push_back(writer);
    }
    return found;
  }

  const Options& options_;
  std::vector<NamedWriter> writers_;
  std::string parent_;
};

}  // namespace
}  // namespace BENCH

int main(int argc, char** argv) try {
  const BENCH::Options options = BENCH::parse(argc, argv);
  if (options.threads > 0) omp_set_num_threads(options.threads);
  BENCH::listenToInterrupts();
  BENCH::Session(options).run();
  return EXIT_SUCCESS;
} catch (const BENCH::Interrupted&) {
  return 130;
} catch (const std::exception& error) {
  std::fprintf(stderr, "sustained: %s\n", error.what());
  return EXIT_FAILURE;
}
