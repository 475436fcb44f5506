// What a name on the command line stands for.
#ifndef KPF_OPEN_H
#define KPF_OPEN_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/frame_range.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/frames/picture_output.h"
#include "tools/kpf/terminal/outcome.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

/// Whether a name stands for a recording: it ends in .kpf, in any case.
bool isRecording(const std::string& name);

/// A recording, or whatever FFmpeg opens. Of 12-bit recordings the 8-bit samples are the high
/// bytes. @throws ToolError, KPF_READER::RecordingError.
std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples);

/// A recording, whatever its name ends in, with a frame at least. @throws as openFrames does.
std::unique_ptr<FrameSource> openRecordedFrames(const std::string& name, Samples samples);

/// All files of a recording: what the reader finds, and what lies there under its names.
/// @throws KPF_READER::RecordingError.
FileIds filesOfRecording(const std::string& name);

/// The files that are read where `name` is: of a recording all of them, of a pattern all images.
/// @throws KPF_READER::RecordingError.
FileIds filesRead(const std::string& name);

/// `-`: bare frames or Y4M on standard output; anything else by its extension, see openPlainOutput
/// and openEncodedOutput.
/// @throws ToolError.
std::unique_ptr<PictureOutput> openOutput(const Destination& destination,
                                          const PictureFormat& format);

/// Whether what goes there is bare frames, for who looks for the very samples of the recording.
bool isBare(const std::string& output, bool y4m);

/// The error of a range that no frame is in.
ToolError noSuchFrames(const std::string& name, const std::string& why);

/// How many frames `range` asks for, at most; nothing where that is all of an input whose end
/// nobody knows. @throws ToolError when it is known to hold none.
std::optional<std::uint64_t> framesAskedFor(const FrameSource& source, const FrameRange& range,
                                            const std::string& name);

/// What to say of a range that ends behind the last of `count` frames; empty when it does not.
std::string beyondEnd(const FrameRange& range, std::uint64_t count);

/// Prints a line that is worth knowing and no failure; an empty one is none.
void remark(bool quiet, const std::string& line);

/// How a command ends that took all it was asked for from an input: a flaw of that is told, and is
/// no success. @param flaw see FrameSource::flaw.
Outcome endOf(const std::string& flaw, const std::string& name);

}  // namespace KPF_TOOL

#endif
