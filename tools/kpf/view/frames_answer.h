// Frames for the page.
#ifndef KPF_FRAMES_ANSWER_H
#define KPF_FRAMES_ANSWER_H

#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/live_amplifier.h"
#include "tools/kpf/view/shown_frames.h"

namespace KPF_TOOL {

/**
 * `from`, `count` and `step` frames in one answer, each a head of 64 bytes and its pictures.
 *
 * `pictures` lists what is wanted: original, reference, amplified, marks. Without `tone` the
 * samples are those of the recording, all bits of them; with it (low, high, gamma) they are what
 * the screen shows, a byte a pixel, at the size that `cut` asks for. A lost frame has no pictures.
 *
 * The head holds little-endian numbers of 4 bytes: place, state (FrameState), sequence number,
 * microseconds, seconds (8 bytes), width, height, bytes a sample, pictures, wrapping pixels,
 * clipping pixels, 1 where the amplifier's window is full.
 */
Reply answerFrames(const Request& request, ShownRecording& recording, LiveAmplifier& amplifier);

}  // namespace KPF_TOOL

#endif
