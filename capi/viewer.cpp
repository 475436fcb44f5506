#include "capi/viewer.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "capi/calls.h"
#include "capi/names.h"
#include "format/kpf_layout.h"
#include "paths/native_path.h"

namespace KPF_C {
namespace {

using KPF_READER::DivFile;
using KPF_READER::FrameRecord;
using KPF_READER::Header;
using KPF_READER::Recording;
using KPF_READER::RecordingError;
using PATHS::nativePath;

/// Tells a header file that cannot be read from one that is wrong.
Recording open(const std::string& name, KPF_READER::Access access) {
  namespace fs = std::filesystem;
  const fs::path path = nativePath(name);
  std::error_code error;
  const bool isFile = fs::is_regular_file(path, error);
  if (error) throw Failure(KPF_ERROR_OPEN, name + ": " + error.message());
  if (!isFile) throw Failure(KPF_ERROR_OPEN, name + ": not a file");
  if (!std::ifstream(path)) throw Failure(KPF_ERROR_OPEN, name + ": cannot be opened for reading");
  return Recording(name, access);
}

Geometry geometryOf(const Header& header) { return {header.width, header.height, header.packed12}; }

/// One behind the place of the last record that is there.
std::uint32_t placesOf(const Recording& recording) {
  std::uint32_t places = 0;
  for (const DivFile& file : recording.divFiles()) {
    if (file.records == 0) continue;
    places = (file.number - 1) * recording.header().framesPerDivFile + file.records;
  }
  return places;
}

bool isSameRecording(const Header& a, const Header& b) {
  return a.width == b.width && a.height == b.height && a.packed12 == b.packed12 &&
         a.framesPerDivFile == b.framesPerDivFile && a.identifier == b.identifier;
}

template <std::size_t N>
void copyText(const std::string& from, char (&to)[N]) {
  std::copy_n(from.data(), std::min(from.size(), N - 1), to);
}

}  // namespace

Viewer::Viewer(const std::string& name, KPF_READER::Access access)
    : name_(name),
      access_(access),
      recording_(open(name, access)),
      geometry_(geometryOf(recording_.header())) {}

kpf_recording_info Viewer::describe() const {
  const Header& header = recording_.header();
  kpf_recording_info info{};
  info.width = header.width;
  info.height = header.height;
  info.bits = header.bitsPerPixel();
  info.frame_rate = header.frameRate;
  info.frame_count = placesOf(recording_);
  info.announced = header.frameCount;
  info.complete = recording_.recordCount() == header.frameCount ? 1 : 0;
  info.frames_per_file = header.framesPerDivFile;
  info.frame_size = header.frameSize();
  std::error_code ignored;
  info.has_status_file =
      std::filesystem::exists(nativePath(recording_.statusFilePath()), ignored) ? 1 : 0;
  info.value5 = header.value5;
  info.value3 = header.value3;
  info.value7 = header.value7;
  copyText(header.text5, info.text5);
  copyText(header.text2, info.text2);
  std::copy(header.identifier.begin(), header.identifier.end(), info.identifier);
  return info;
}

FrameRecord Viewer::recordAt(std::uint32_t n, bool& lost) const {
  const std::uint32_t places = placesOf(recording_);
  if (n >= places) {
    throw Failure(KPF_ERROR_RANGE, name_ + ": there is no frame " + std::to_string(n) + " of " +
                                       std::to_string(places));
  }
  const std::uint32_t perFile = recording_.header().framesPerDivFile;
  const auto& files = recording_.divFiles();
  const auto file = std::find_if(files.begin(), files.end(), [&](const DivFile& candidate) {
    return candidate.number == n / perFile + 1;
  });
  lost = file == files.end() || n % perFile >= file->records;
  if (lost) return {};
  try {
    FrameRecord record = recording_.record(file->firstRecord + n % perFile);
    lost = record.placeholder;
    return record;
  } catch (const RecordingError& error) {
    throw Failure(KPF_ERROR_OPEN, error.what());
  }
}

kpf_frame Viewer::frame(std::uint32_t n) {
  kpf_frame frame{};
  bool lost = false;
  const FrameRecord record = recordAt(n, lost);
  frame.lost = lost ? 1 : 0;
  frame.number = lost ? n : record.sequenceNumber;
  if (lost) return frame;
  held_[record.fileNumber] = record.mapping;
  frame.seconds = record.seconds;
  frame.microseconds = record.microseconds;
  frame.pixels = record.pixels.data();
  frame.pixel_offset = record.offset + KPF_FORMAT::FRAME_HEADER::kSize;
  frame.file_number = record.fileNumber;
  return frame;
}

void Viewer::unpack(std::uint32_t n, std::uint16_t* samples, std::size_t count,
                    std::uint32_t form) const {
  require(samples != nullptr, "samples is null");
  require(count >= geometry_.pixels(), "there is room for fewer samples than the frame's");
  requireSamplesForm(form);
  bool lost = false;
  const FrameRecord record = recordAt(n, lost);
  if (lost) {
    throw Failure(KPF_ERROR_LOST, name_ + ": frame " + std::to_string(n) + " was lost");
  }
  unpackFrame(geometry_, record.pixels.data(), samples, form);
}

const char* Viewer::dataFile(std::uint32_t number) {
  require(number >= 1, "data files are numbered from 1");
  dataFile_ = recording_.divFilePath(number);
  return dataFile_.c_str();
}

void Viewer::refresh() {
  Recording now = open(name_, access_);
  if (!isSameRecording(recording_.header(), now.header())) {
    throw Failure(KPF_ERROR_FORMAT, name_ + ": another recording is there now");
  }
  recording_ = std::move(now);
  held_.clear();
}

}  // namespace KPF_C
