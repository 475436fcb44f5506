// What the page finds behind each of its addresses.
#ifndef KPF_PAGE_ANSWER_H
#define KPF_PAGE_ANSWER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/jobs.h"
#include "tools/kpf/view/live_amplifier.h"
#include "tools/kpf/view/shown_recording.h"
#include "tools/kpf/view/view.h"

namespace KPF_TOOL {

/// Answers every request. Reads the named recordings and the files of the page, nothing else; what
/// it makes are new files in the current folder.
class PageAnswer {
 public:
  /// @throws KPF_READER::RecordingError.
  explicit PageAnswer(const ViewOptions& options);

  /// Any thread may ask.
  Reply of(const Request& request);

 private:
  Reply dispatch(const Request& request);
  Reply answerRecordings();
  Reply answerLost(const Request& request);
  Reply startJob(const Json& wanted);
  ShownRecording& recordingOf(std::uint32_t index);

  const ViewOptions options_;
  std::vector<std::unique_ptr<ShownRecording>> recordings_;
  LiveAmplifier amplifier_;
  Jobs jobs_;
};

}  // namespace KPF_TOOL

#endif
