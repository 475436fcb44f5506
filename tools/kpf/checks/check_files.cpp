#include "tools/kpf/checks/check_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using KPF_READER::DivFile;
using KPF_READER::Header;
using KPF_READER::Recording;
namespace {

constexpr std::uint64_t kFrameCountOffset = KPF_FORMAT::HEADER::kFrameCount.offset;

std::uint32_t firstRecordOf(const Header& header, std::uint64_t divFile) {
  return static_cast<std::uint32_t>((divFile - 1) * header.framesPerDivFile);
}

/// One finding for a whole run of data files: a wrong header may announce millions.
void addMissing(const Recording& recording, std::uint64_t first, std::uint64_t last,
                Findings& findings) {
  if (first > last) return;
  const auto number = static_cast<std::uint32_t>(first);
  const std::string text =
      first == last
          ? "the data file is missing"
          : fmt::format("this and the next {} missing",
                        last - first == 1 ? "data file are"
                                          : fmt::format("{} data files are", last - first));
  findings.add({Problem::kMissingFile, recording.divFilePath(number),
                firstRecordOf(recording.header(), first), 0, text});
}

/// How far a data file goes that ends too early.
std::string shortText(const DivFile& file, std::uint32_t full, std::size_t recordSize) {
  const std::string cut =
      file.trailingBytes == 0
          ? ""
          : fmt::format(" and {} of the {} bytes of the next", file.trailingBytes, recordSize);
  return fmt::format("the file ends after {} of {} records{}", file.records, full, cut);
}

void checkLength(const Recording& recording, const DivFile& file, Findings& findings) {
  const Header& header = recording.header();
  const std::uint32_t full = header.recordsInDivFile(file.number);
  const std::uint64_t end = std::uint64_t{file.records} * header.recordSize();
  if (file.records < full) {
    findings.add({Problem::kShortFile, file.path, firstRecordOf(header, file.number) + file.records,
                  end, shortText(file, full, header.recordSize())});
  } else if (file.trailingBytes != 0) {
    findings.add({Problem::kLongFile, file.path, std::nullopt, end,
                  countText(file.trailingBytes, "byte") + " behind the last record"});
  }
}

/// Walks over the files that are there and names those between them.
void checkDivFiles(const Recording& recording, Findings& findings) {
  std::uint64_t next = 1;
  for (const DivFile& file : recording.divFiles()) {
    addMissing(recording, next, file.number - 1, findings);
    checkLength(recording, file, findings);
    next = std::uint64_t{file.number} + 1;
  }
  addMissing(recording, next, recording.header().divFileCount(), findings);
}

/// The text with the line ends of this system.
std::string withoutCarriageReturns(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

/// @return whether there is one.
bool checkStatusFile(const Recording& recording, bool complete, Findings& findings) {
  const auto add = [&](const std::string& text) {
    findings.add({Problem::kStatusFile, recording.statusFilePath(), std::nullopt, 0, text});
  };
  try {
    const std::optional<std::string> status = recording.statusFile();
    if (!status) return false;
    if (withoutCarriageReturns(*status) != KPF_FORMAT::kStatusText) {
      add("not the text that a recorder leaves");
    } else {
      add(complete ? "says that frames are missing, and none is"
                   : "the recording was closed before it was complete");
    }
  } catch (const KPF_READER::RecordingError&) {
    add("cannot be read");
  }
  return true;
}

}  // namespace

void checkCompleteness(const Recording& recording, Findings& findings) {
  checkDivFiles(recording, findings);
  const Header& header = recording.header();
  const bool complete = recording.recordCount() == header.frameCount;
  const bool hasStatus = checkStatusFile(recording, complete, findings);
  if (header.frameCount == 0) {
    findings.add({Problem::kHeader, recording.path(), std::nullopt, kFrameCountOffset,
                  "no frames are announced"});
  }
  if (complete) return;
  findings.add({Problem::kIncomplete, recording.path(), std::nullopt, kFrameCountOffset,
                fmt::format("{} of {} announced frames are there{}", recording.recordCount(),
                            header.frameCount,
                            hasStatus ? ""
                                      : ", and no status file: the recorder was stopped, ran "
                                        "out of space, or is still at work")});
}

void checkHeader(const Recording& recording, Findings& findings) {
  using Kind = KPF_READER::HeaderDeviation::Kind;
  for (const auto& deviation : recording.headerDeviations()) {
    const bool frames = deviation.kind == Kind::kFramesPerDivFile;
    findings.add({frames ? Problem::kFramesPerFile : Problem::kHeader, recording.path(),
                  std::nullopt, deviation.offset, deviation.problem});
  }
}

void checkStrayFiles(const Recording& recording, Findings& findings) {
  const fs::path first(recording.divFilePath(1));
  const fs::path folder = first.has_parent_path() ? first.parent_path() : fs::path(".");
  const std::string start = KPF_FORMAT::divFilePrefix(first.filename().string());
  // Data files that lie beside the header have neighbours of their own right.
  std::error_code error;
  const bool shared = fs::exists(folder / fs::path(recording.path()).filename(), error);
  std::set<std::string> own;
  for (const DivFile& file : recording.divFiles())
    own.insert(fs::path(file.path).filename().string());

  for (fs::directory_iterator entry(folder, error), none; !error && entry != none;
       entry.increment(error)) {
    const std::string found = entry->path().filename().string();
    if (own.count(found) != 0 || (shared && found.rfind(start, 0) != 0)) continue;
    findings.add({Problem::kStrayFile, entry->path().string(), std::nullopt, 0,
                  "does not belong to the recording"});
  }
}

}  // namespace KPF_TOOL
