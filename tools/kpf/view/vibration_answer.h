// From a region of the picture to its vibration.
#ifndef KPF_VIBRATION_ANSWER_H
#define KPF_VIBRATION_ANSWER_H

#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/**
 * Mean value and displacement of `box` ("x,y,width,height"; a single pixel stands for those around
 * it) over the frames `from` to `to`, the spectrum of each, and its peaks.
 *
 * A long range is cut to what takes seconds; `frames` says how many there were.
 */
Reply answerVibration(const Request& request, ShownRecording& recording);

}  // namespace KPF_TOOL

#endif
