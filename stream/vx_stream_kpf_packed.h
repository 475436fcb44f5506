// The writer of one recording: a .kpf header file and a folder of numbered .div data files.
#ifndef VX_STREAM_KPF_PACKED_H
#define VX_STREAM_KPF_PACKED_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "format/kpf_fixed.h"
#include "packed/vx_kpf_packed.h"
#include "stream/write_behind.h"
#include "vlm_configuration.h"
#include "vlm_results.h"

namespace VLM_KPF {

/**
 * Writes a recording frame by frame, in the order of arrival, and keeps none of them.
 *
 * Results are the STREAM_ codes of vlm_results.h. Trouble is logged and told by the result; what
 * may throw is the standard library (memory, std::filesystem::status in prepareForWriting).
 * One thread at a time may use a writer.
 */
class VxKPFPackedStream {
 public:
  static constexpr std::string_view KPF_PACKED_HEADER_EXTENSION = KPF_FORMAT::kHeaderExtension;
  static constexpr std::string_view KPF_PACKED_DIV_EXTENSION = KPF_FORMAT::kDivExtension;
  static constexpr std::string_view KPF_PACKED_FILE_v3_0 = KPF_FORMAT::kVersion;
  static constexpr std::string_view KPF_PACKED_CONVERTED = KPF_FORMAT::kConverted;
  static constexpr std::string_view VELMAR_GENERATED = KPF_FORMAT::kGenerated;

  /// Switches the logger's standard-output and syslog flags on, whatever they were.
  VxKPFPackedStream();
  /// The same, with advice about the data files' pages given to `cache`, which must outlive it.
  explicit VxKPFPackedStream(PageCache& cache);
  /// Closes the stream when nobody has: one cut short still leaves its status file.
  ~VxKPFPackedStream();
  VxKPFPackedStream(const VxKPFPackedStream&) = delete;
  VxKPFPackedStream& operator=(const VxKPFPackedStream&) = delete;

  /**
   * Copies the configuration, derives sizes and names, writes the header file and makes the folder
   * for the data files. Works once.
   *
   * @param streamName path of the header file; the folder is the name without its extension.
   * @return STREAM_WRITING, or the code of the first check that failed. What was written until
   *         then stays.
   */
  unsigned prepareForWriting(const std::string& streamName,
                             const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& config);

  /// Closes the files; writes the status file beside the header file when frames are missing.
  /// @return always STREAM_CLOSED.
  unsigned closeStream();

  /// @return STREAM_COMPLETE once every configured frame is written, else the current status.
  unsigned isStreamWriterComplete();

  /// Replacing a frame is not offered: drops `frame`, changes nothing, returns STREAM_REFUSED.
  unsigned editVideoFrame(unsigned frameNumber, std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> frame);

  /// Replaces the writer's copy of the configuration. Nothing is checked.
  void setConfiguration(const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& config);

  // Of the configuration; 0 without one.
  int getBitsPerPixel() const;
  unsigned getHeight() const;
  unsigned getWidth() const;
  unsigned getFrameCount() const;

  /// Which data file holds a frame (from 1), and at which record (from 0). Both 0 as long as the
  /// frames have no size.
  void calcDivFileInfo(unsigned frame, unsigned& divFileNumber, unsigned& indexInDivFile) const;

  /// The time of a frame: start time plus frame number over frame rate, cut to the microsecond.
  void calcFrameTime(unsigned frame, unsigned long long& seconds, unsigned& microseconds) const;

  /// Writes the whole header file image. @return false when there is no stream or it failed.
  bool initializeHeader(std::ofstream* streamPtr);

  /// Fills 16 bytes from the C library's generator, seeded with the current second: two headers of
  /// one second carry the same identifier.
  static void guidGen(unsigned char* out);

  /**
   * Writes one frame at the next place; a frame without a header is stamped with that place and
   * its time.
   *
   * @return STREAM_COMPLETE after the last frame, else the status: a refused frame (see the log)
   *         changes neither status nor seqNum.
   */
  unsigned addFrame(std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> frame);

  /// Writes an all-zero record at the next place. @return always STREAM_WRITING.
  unsigned vxAddPlaceholderFrame();

  /// Writes one frame into the data file of its place. When this returns, the record is with the
  /// operating system: the end of the process loses none of it.
  void queueFrame(std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> frame);

  unsigned streamStatus = STREAM_CONSTRUCTED;
  std::ofstream divFile;        // the data file being filled
  unsigned currentDivFile = 0;  // number of that file, from 1; 0: none yet
  std::unique_ptr<VLM_INTERNAL::VXP_STREAM_CONFIGURATION> configuration;
  unsigned frameSize = 0;         // bytes of a frame's packed pixels
  unsigned framesPerDivFile = 0;  // records in one data file
  std::string streamName;         // path of the header file, as given
  std::string baseName;           // its last component, without the extension
  std::string divFolder;          // folder of the data files, separator at its end
  unsigned seqNum = 0;            // frames written so far; the number of the next one
  unsigned failedRecords = 0;  // of these, that did not reach their file and read as placeholders

 private:
  bool sizeFrames(const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& config);
  bool deriveNames(const std::string& name);
  unsigned createFiles();
  unsigned createDivFolder();
  /// Takes what the first frames would take anew while a camera waits.
  void prepareMemory() noexcept;
  void writeStatusFile() const;

  bool acceptsFrame(const VX_KPF_PACKED::VxKPFPacked* frame);
  std::filesystem::path divFileName(unsigned number) const;
  void switchDivFile();
  /// What the data file that begins with the next frame will hold if all goes on as announced.
  std::uint64_t bytesOfDivFile() const;
  void writeRecord(const VX_KPF_PACKED::VxKPFPacked& frame);
  void writePixels(const unsigned char* bytes, std::uint64_t size, std::uint64_t at);
  void closeDivFile();

  WriteBehind writeBehind_;
};

}  // namespace VLM_KPF

#endif
