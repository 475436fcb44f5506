#include "tools/kpf/recording/record_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <system_error>

#include "format/kpf_file_names.h"
#include "format/kpf_layout.h"
#include "paths/native_path.h"
#include "tools/kpf/files/file_system.h"
#include "tools/kpf/files/new_file.h"
#include "tools/kpf/records/data_file.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using PATHS::nativePath;
namespace layout = KPF_FORMAT::HEADER;
namespace {

[[noreturn]] void failed(const std::string& name, const std::error_code& error) {
  throw ToolError(Outcome::kWriteFailed,
                  fmt::format("cannot write {}: {}", escaped(name), error.message()),
                  "Free some space, or choose another folder.");
}

std::error_code lastError() { return {errno, std::generic_category()}; }

std::vector<unsigned char> imageOf(const std::string& header) {
  std::vector<unsigned char> image(layout::kSize);
  if (DataFile(header).read(0, image) < image.size()) {
    throw KPF_READER::RecordingError(header, 0, "the file has become shorter");
  }
  return image;
}

}  // namespace

RecordWriter::RecordWriter(const std::string& header, const KPF_READER::Recording& like)
    : header_(header), like_(like.header()), image_(imageOf(like.path())) {
  const std::string folder = KPF_FORMAT::dataNamesOf(header_).folder;
  std::error_code error;
  if (fs::create_directory(nativePath(folder), error)) made_.push_back(nativePath(folder));
  if (error) failed(folder, error);
}

RecordWriter::~RecordWriter() {
  if (done_) return;
  file_.close();
  std::error_code ignored;
  // The folder last; it stays where somebody has put something into it.
  for (auto made = made_.rbegin(); made != made_.rend(); ++made) fs::remove(*made, ignored);
}

void RecordWriter::add(std::span<const unsigned char> record) {
  if (count_ % like_.framesPerDivFile == 0) nextFile();
  file_.write(reinterpret_cast<const char*>(record.data()),
              static_cast<std::streamsize>(record.size()));
  if (!file_) failed(fileName_, lastError());
  ++count_;
}

void RecordWriter::nextFile() {
  closeFile();
  fileName_ = KPF_FORMAT::divFileName(KPF_FORMAT::dataNamesOf(header_),
                                      count_ / like_.framesPerDivFile + 1);
  const fs::path path = nativePath(fileName_);
  // What has come there meanwhile is somebody else's: neither overwritten, nor removed at the end.
  if (const std::error_code error = makeNewFile(fileName_)) failed(fileName_, error);
  made_.push_back(path);
  file_.open(path, std::ios::binary | std::ios::trunc);
  if (!file_) failed(fileName_, lastError());
}

void RecordWriter::closeFile() {
  if (!file_.is_open()) return;
  file_.close();
  if (!file_) failed(fileName_, lastError());
}

void RecordWriter::finish() {
  closeFile();
  KPF_FORMAT::store(image_.data(), layout::kFrameCount, count_);
  const Destination destination{header_, false, {}};
  NewFile file(header_, destination);
  file.write(image_.data(), image_.size());
  file.commit();
  done_ = true;
}

}  // namespace KPF_TOOL
