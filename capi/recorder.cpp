#include "capi/recorder.h"

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include "capi/calls.h"
#include "capi/durable.h"
#include "capi/names.h"
#include "capi/structs.h"
#include "format/kpf_frame_count.h"
#include "paths/native_path.h"
#include "reader/kpf_div_files.h"

namespace KPF_C {
namespace {

namespace fs = std::filesystem;
using KPF_FORMAT::kFrameCountUnknown;
using PATHS::nativePath;
using VX_KPF_PACKED::VxKPFPacked;

VX_FRAME_MEMORY::SpareFrame frames;

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationOf(const kpf_writer_options& options) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  if (options.text2 != nullptr) configuration.text2 = options.text2;
  if (options.text5 != nullptr) configuration.text5 = options.text5;
  configuration.width = options.width;
  configuration.height = options.height;
  configuration.bitsPerPixel = static_cast<int>(options.bits);
  configuration.frameRate = static_cast<int>(options.frame_rate);
  configuration.frameCount = options.frame_count == 0 ? kFrameCountUnknown : options.frame_count;
  configuration.value3 = options.value3;
  configuration.value5 = options.value5;
  configuration.value7 = options.value7;
  configuration.startSeconds = static_cast<unsigned long long>(options.start_seconds);
  configuration.startMicroseconds = options.start_microseconds;
  return configuration;
}

[[noreturn]] void throwUnprepared(unsigned status, const std::string& name) {
  switch (status) {
    case STREAM_OPEN_FAILED:
      throw Failure(KPF_ERROR_OPEN,
                    name + ": the header file cannot be made; is its folder there?");
    case STREAM_HEADER_FAILED:
      throw Failure(KPF_ERROR_WRITE, name + ": the header file cannot be written");
    case STREAM_BAD_PATH:
      throw Failure(KPF_ERROR_OPEN, name +
                                        ": the folder for the data files cannot be made; is a "
                                        "file of its name there?");
    default:
      throw Failure(KPF_ERROR_INTERNAL, name + ": status " + std::to_string(status));
  }
}

/// Windows lets a name that ends in a separator pass for a file, so the writer's own look at its
/// folder may take one for it; without the separator it is told.
bool hasDataFolder(const std::string& name) {
  std::error_code none;  // a name that leads nowhere is no folder: what is wrong, opening tells
  return fs::is_directory(nativePath(KPF_FORMAT::withoutExtension(name).value()), none);
}

unsigned prepare(VLM_KPF::VxKPFPackedStream& stream, const std::string& name,
                 const kpf_writer_options& options) {
  try {
    const unsigned status = stream.prepareForWriting(name, configurationOf(options));
    if (status != STREAM_WRITING || hasDataFolder(name)) return status;
  } catch (const fs::filesystem_error&) {  // the folder's name leads through something else
  }
  return STREAM_BAD_PATH;
}

/// A new stream switches flags of the one logger, so streams are made one at a time.
Stream prepared(const std::string& name, const kpf_writer_options& options) {
  static std::mutex& mutex = *new std::mutex;
  const std::lock_guard lock(mutex);
  Stream stream(new VLM_KPF::VxKPFPackedStream);
  const unsigned status = prepare(*stream, name, options);
  if (status == STREAM_WRITING) return stream;
  std::error_code ignored;
  if (status != STREAM_OPEN_FAILED) fs::remove(nativePath(name), ignored);
  throwUnprepared(status, name);
}

}  // namespace

Recorder::Recorder(const std::string& name, const kpf_writer_options& options)
    : name_(name),
      announced_(options.frame_count != 0),
      durable_(options.durable != 0),
      form_(options.samples),
      geometry_(geometryOf(options.width, options.height, options.bits)),
      stream_(prepared(name, options)) {
  counts_.struct_size = sizeof counts_;
  counts_.announced = options.frame_count;
}

void Recorder::requirePlace() const {
  if (stream_->seqNum < stream_->getFrameCount()) return;
  throw Failure(KPF_ERROR_FULL, name_ + ": all " + std::to_string(stream_->seqNum) +
                                    " frames that were announced have been added");
}

std::unique_ptr<VxKPFPacked> Recorder::newFrame(const kpf_stamp* stamp) const {
  requirePlace();
  auto frame = std::make_unique<VxKPFPacked>();
  if (stamp != nullptr) {
    const kpf_stamp time = taken(stamp);
    require(time.microseconds < 1000000, "the stamp's microseconds must be 0 to 999999");
    frame->setHeader(stream_->seqNum, time.seconds, time.microseconds);
  }
  frame->packedSize = static_cast<unsigned>(geometry_.frameSize());
  frame->packedData = frames.allocate(geometry_.frameSize());
  return frame;
}

/// What became of one frame: the writer only logs it, but its counts tell.
template <class Add>
void Recorder::add(Add&& addToStream) {
  const unsigned place = stream_->seqNum;
  const unsigned failed = stream_->failedRecords;
  addToStream();
  const std::string frame = name_ + ": frame " + std::to_string(place);
  if (stream_->seqNum == place) {
    hasDataFile_ = false;
    throw Failure(KPF_ERROR_OPEN, frame + " has no data file: it cannot be opened");
  }
  if (stream_->failedRecords != failed) {
    throw Failure(KPF_ERROR_WRITE, frame + " could not be written; is the disk full?");
  }
}

void Recorder::addImage(const unsigned char* pixels, std::size_t rowStride,
                        const kpf_stamp* stamp) {
  require(pixels != nullptr, "pixels is null");
  const std::size_t stride = strideOf(geometry_, rowStride);
  auto frame = newFrame(stamp);
  require(packImage(geometry_, pixels, stride, form_, frame->packedData.get()),
          "a sample is above 4095; KPF_SAMPLES_LEFT takes left-justified ones");
  add([&] { stream_->addFrame(std::move(frame)); });
}

void Recorder::addPacked(const unsigned char* pixels, std::size_t size, const kpf_stamp* stamp) {
  require(pixels != nullptr, "pixels is null");
  require(size == geometry_.frameSize(), "size is not that of a frame as stored");
  auto frame = newFrame(stamp);
  std::memcpy(frame->packedData.get(), pixels, size);
  add([&] { stream_->addFrame(std::move(frame)); });
}

void Recorder::addLost() {
  requirePlace();
  add([&] { stream_->vxAddPlaceholderFrame(); });
  ++counts_.lost;
}

kpf_writer_counts Recorder::counts() const {
  kpf_writer_counts counts = counts_;
  counts.added = stream_->seqNum;
  counts.failed = stream_->failedRecords;
  return counts;
}

void Recorder::close() {
  // Told the true count, the writer finds nothing missing and leaves no status file.
  if (!announced_) stream_->configuration->frameCount = stream_->seqNum;
  const unsigned missing = stream_->getFrameCount() - stream_->seqNum;
  stream_->closeStream();
  if (!announced_ && !KPF_FORMAT::writeFrameCount(nativePath(name_), stream_->seqNum)) {
    throw Failure(KPF_ERROR_WRITE, name_ + ": the true frame count could not be set");
  }
  if (durable_) makeDurable();
  if (stream_->failedRecords != 0) {
    throw Failure(KPF_ERROR_WRITE, name_ + ": " + std::to_string(stream_->failedRecords) +
                                       " frames could not be written and read as lost");
  }
  if (hasDataFile_ && stream_->divFile.fail()) {
    throw Failure(KPF_ERROR_WRITE, name_ + ": the last data file could not be closed");
  }
  if (missing != 0) {
    throw Failure(KPF_ERROR_INCOMPLETE, name_ + ": " + std::to_string(missing) +
                                            " of the announced frames were not added");
  }
}

// Files before the folders that name them.
void Recorder::makeDurable() const {
  bool synced = true;
  for (const auto& [number, file] : KPF_READER::findDivFiles(dataNamesOf(name_))) {
    synced = syncFile(nativePath(file)) && synced;
  }
  synced = syncFile(nativePath(name_)) && synced;
  const fs::path header = nativePath(name_);
  synced = syncFolder(nativePath(stream_->divFolder)) && synced;
  synced = syncFolder(header.parent_path()) && synced;
  if (!synced) throw Failure(KPF_ERROR_WRITE, name_ + ": not all files could be brought to disk");
}

}  // namespace KPF_C
