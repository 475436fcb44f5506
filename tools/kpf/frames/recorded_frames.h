// The frames of a recording.
#ifndef KPF_RECORDED_FRAMES_H
#define KPF_RECORDED_FRAMES_H

#include <memory>
#include <string>

#include "tools/kpf/frames/frame_source.h"

namespace KPF_TOOL {

/// Gives a frame for every place, up to the last one whose record is there: what lies between is
/// lost. Of 12-bit recordings the 8-bit samples are the high bytes; 8-bit ones fill the upper half
/// of 16. @throws KPF_READER::RecordingError.
std::unique_ptr<FrameSource> openRecording(const std::string& name, Samples samples);

/// The samples in which nothing of a recording is lost. @throws KPF_READER::RecordingError.
Samples samplesOf(const std::string& recording);

}  // namespace KPF_TOOL

#endif
