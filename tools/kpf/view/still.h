// One frame as it is on the screen, with a caption.
#ifndef KPF_STILL_H
#define KPF_STILL_H

#include "tools/kpf/terminal/json.h"
#include "tools/kpf/view/live_amplifier.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/**
 * Writes the frame of `place` as an image: in the tone of the screen, original, amplified,
 * reference or all three side by side as `show` says, below it which frame of what it is.
 *
 * @param wanted as the page sends it: `name`, `place`, `show`, `tone`, `frequency`, `gain`,
 * `clean`.
 * @throws ToolError, nlohmann::json::exception.
 */
void writeStill(const Json& wanted, ShownRecording& recording, LiveAmplifier& amplifier);

}  // namespace KPF_TOOL

#endif
