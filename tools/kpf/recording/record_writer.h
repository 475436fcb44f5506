// Makes a recording of records that are there already.
#ifndef KPF_RECORD_WRITER_H
#define KPF_RECORD_WRITER_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "kpf_reader.h"

namespace KPF_TOOL {

/**
 * Writes the data files first and the header last: what has no header yet is no recording, and is
 * removed again when it does not come to one.
 */
class RecordWriter {
 public:
  /// Makes the folder of the data files. Nothing of the recording may be there, see checkTarget.
  /// @param header of the new recording. @param like the recording whose records will come.
  /// @throws ToolError, KPF_READER::RecordingError.
  RecordWriter(const std::string& header, const KPF_READER::Recording& like);
  ~RecordWriter();
  RecordWriter(const RecordWriter&) = delete;
  RecordWriter& operator=(const RecordWriter&) = delete;

  /// Writes the record at the next place. @throws ToolError when the system does not take it.
  void add(std::span<const unsigned char> record);

  /// Closes the recording; its header is that of `like`, but for the number of frames.
  /// @throws ToolError.
  void finish();

 private:
  void nextFile();
  void closeFile();

  const std::string header_;
  const KPF_READER::Header like_;
  std::vector<unsigned char> image_;         // of the header file
  std::vector<std::filesystem::path> made_;  // the folder, where it was not there, and the files
  std::ofstream file_;
  std::string fileName_;
  std::uint32_t count_ = 0;  // records so far
  bool done_ = false;
};

}  // namespace KPF_TOOL

#endif
