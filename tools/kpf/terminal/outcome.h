// How a command ends.
#ifndef KPF_OUTCOME_H
#define KPF_OUTCOME_H

namespace KPF_TOOL {

/// The named ends. Scripts see them as one of three exit codes, see exitCodeOf.
enum class Outcome {
  kDone,
  kProblemsFound,    // the job was to look for problems, and there are some
  kCutShort,         // interrupted, or the input ended early: what is there can be used
  kWriteFailed,      // the system did not take what was to be written
  kFailed,           // anything that nobody foresaw
  kWrongUsage,       // options or values that do not go together with each other or the input
  kUnreadableInput,  // there is no such input, or it is something else
  kRefused           // what lies in the way is kept, or there is no room: nothing was begun
};

/// A word for it, for programs.
const char* nameOf(Outcome outcome);

/// 0: done. 1: problems, or not all was done. 2: nothing was begun.
int exitCodeOf(Outcome outcome);

}  // namespace KPF_TOOL

#endif
