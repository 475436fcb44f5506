// Videos and images: all that the tool asks of FFmpeg.
//
// Nothing outside this folder includes FFmpeg's headers, so a tool without it is this folder with
// without_ffmpeg.cpp in place of the other sources; recordings and raw frames go on working.
#ifndef KPF_MEDIA_H
#define KPF_MEDIA_H

#include <memory>
#include <string>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// What an input cannot tell of itself.
struct MediaHints {
  double rate = 0;        // frames per second of images and bare frames; 0: 25
  std::string rawSize;    // "640x480": there is no container, only frames
  std::string rawFormat;  // their pixels, in FFmpeg's words
};

/// Whether frames come without times, so that somebody must say their rate.
bool tellsNoRate(const std::string& name, const MediaHints& hints);

/**
 * Opens the first video stream of an input.
 *
 * Grey sources are taken as they are: shifted to the left where they have more than 8 bits, cut to
 * their upper bits where fewer are wanted. Colour is turned into grey of the full range. A frame
 * that is damaged keeps its place, see FrameSource::lost.
 *
 * @param name a path, an image pattern like `frame_%04d.png`, `/dev/video0`, or `-`.
 * @throws ToolError when nothing there is a video, and while frames are decoded.
 */
std::unique_ptr<FrameSource> openMedia(const std::string& name, Samples samples,
                                       const MediaHints& hints = {});

/**
 * Opens a file that the extension of its name tells how to encode.
 *
 * `.mkv` lossless (FFV1); `.mp4`, `.mov`, `.avi` for viewing (H.264, or MPEG-4 where FFmpeg has no
 * H.264), from the upper 8 bits; `.png`, `.tif`, `.tiff` lossless images, one or, with a pattern
 * like `frame_%06d.png`, many.
 *
 * @throws ToolError for anything else, and when something is in the way that may not be replaced.
 */
std::unique_ptr<PictureOutput> openEncodedOutput(const Destination& destination,
                                                 const PictureFormat& format);

}  // namespace KPF_TOOL

#endif
