#include "tools/kpf/checks/check_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "paths/native_path.h"
#include "tools/kpf/checks/old_files.h"
#include "tools/kpf/checks/renamed.h"
#include "tools/kpf/checks/unreadable.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using KPF_READER::DivFile;
using KPF_READER::Header;
using KPF_READER::Recording;
using PATHS::nativePath;
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

/// @param last whether no record is behind this file: there a recording may end.
void checkLength(const Recording& recording, const DivFile& file, bool last, Findings& findings) {
  const Header& header = recording.header();
  const std::uint32_t full = header.recordsInDivFile(file.number);
  const std::uint64_t end = std::uint64_t{file.records} * header.recordSize();
  if (file.records == full) {
    if (file.trailingBytes == 0) return;
    findings.add({Problem::kLongFile, file.path, std::nullopt, end,
                  countText(file.trailingBytes, "byte") + " behind the last record"});
  } else if (!last || file.trailingBytes != 0) {
    findings.add({Problem::kShortFile, file.path, firstRecordOf(header, file.number) + file.records,
                  end, shortText(file, full, header.recordSize())});
  }
}

/// The number of the last file with anything in it: a frame that was refused may leave an empty
/// one.
std::uint32_t lastWithBytes(const std::vector<DivFile>& files) {
  std::uint32_t last = 0;
  for (const DivFile& file : files) {
    if (file.size != 0) last = file.number;
  }
  return last;
}

/// Walks over the files that are there and names those between them. Behind the last one nothing is
/// missing: the recording is shorter than announced, which is told once.
void checkDivFiles(const Recording& recording, Findings& findings) {
  const std::uint32_t last = lastWithBytes(recording.divFiles());
  std::uint64_t next = 1;
  for (const DivFile& file : recording.divFiles()) {
    if (file.number > last) break;
    addMissing(recording, next, file.number - 1, findings);
    checkLength(recording, file, file.number == last, findings);
    next = std::uint64_t{file.number} + 1;
  }
  if (!recording.divFiles().empty() || recording.header().frameCount == 0) return;
  const std::string elsewhere = whereDataMayBe(recording);
  if (elsewhere.empty()) return;
  findings.add({Problem::kMissingFile, recording.divFilePath(1), 0, 0, elsewhere});
}

/// The text with the line ends of this system.
std::string withoutCarriageReturns(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

std::string shortfallText(const Recording& recording, bool hasStatus) {
  const std::uint32_t announced = recording.header().frameCount;
  std::string frames =
      announcesCount(recording.header())
          ? fmt::format("{} of {} announced frames are there", recording.recordCount(), announced)
          : fmt::format("{} on disk, and the recorder never told how many there would be",
                        countText(recording.recordCount(), "frame"));
  if (hasStatus) return frames;
  return frames +
         ", and no status file: the recorder was stopped, ran out of space, or is still at work";
}

/// @return whether there is one.
bool checkStatusFile(const Recording& recording, bool complete, Findings& findings) {
  const auto about = [&](const std::string& text) {
    return Finding{Problem::kStatusFile, recording.statusFilePath(), std::nullopt, 0, text};
  };
  try {
    const std::optional<std::string> status = recording.statusFile();
    if (!status) return false;
    if (withoutCarriageReturns(*status) != KPF_FORMAT::kStatusText) {
      findings.add(about("not the text that a recorder leaves"));
    } else {
      // An earlier recording of this name may have left it: nobody takes it away.
      findings.addNote(about(complete ? "says that frames are missing, and none is"
                                      : "the recording was closed before it was complete"));
    }
  } catch (const KPF_READER::RecordingError& error) {
    findings.add(unreadable(error));
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
  findings.addNote({Problem::kIncomplete, recording.path(), std::nullopt, kFrameCountOffset,
                    shortfallText(recording, hasStatus)});
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
  const std::string firstPath = recording.divFilePath(1);
  const fs::path first = nativePath(firstPath);
  const fs::path folder = first.has_parent_path() ? first.parent_path() : fs::path(".");
  const std::string start = KPF_FORMAT::divFilePrefix(first.filename().string());
  const KPF_FORMAT::DataNames names{"", start.substr(0, start.size() - 1)};
  // Data files that lie beside the header have neighbours of their own right.
  std::error_code error;
  const bool shared = fs::exists(folder / nativePath(recording.path()).filename(), error);
  std::set<std::string> own;
  for (const DivFile& file : recording.divFiles()) {
    own.insert(nativePath(file.path).filename().string());
  }
  for (fs::directory_iterator entry(folder, error), none; !error && entry != none;
       entry.increment(error)) {
    const std::string found = entry->path().filename().string();
    if (own.count(found) != 0 || (shared && found.rfind(start, 0) != 0)) continue;
    const std::uint32_t number = KPF_FORMAT::divFileNumber(names, found);
    const std::string path = entry->path().string();
    findings.addNote(
        {number == 0 ? Problem::kStrayFile : Problem::kOldFile, path, std::nullopt, 0,
         number == 0 ? "does not belong to the recording" : leftoverText(path, number)});
  }
}

}  // namespace KPF_TOOL
