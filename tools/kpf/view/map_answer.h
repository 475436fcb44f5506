// The whole picture by what swings in it.
#ifndef KPF_MAP_ANSWER_H
#define KPF_MAP_ANSWER_H

#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/**
 * `kind` energy: how strongly each pixel swings at `frequency`; dominant: at which frequency it
 * swings most. Over the frames `from` to `to`, of which a long range is cut to what takes seconds.
 *
 * The answer has a value for each cell of `cell` x `cell` pixels, its largest one; null where
 * nothing swings.
 */
Reply answerMap(const Request& request, ShownRecording& recording);

}  // namespace KPF_TOOL

#endif
