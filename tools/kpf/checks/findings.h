// What is wrong with a recording, and what is worth knowing about it, place by place.
#ifndef KPF_FINDINGS_H
#define KPF_FINDINGS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// The kinds of findings. Programs know them by the words of nameOf, so these do not change.
enum class Problem {
  kHeader,         // a header field has a value that it cannot have
  kFramesPerFile,  // the header announces another number of frames a data file than fit
  kMissingFile,    // one or several data files
  kShortFile,      // a data file ends too early
  kLongFile,       // a data file goes on behind its last record
  kStrayFile,      // something else in the folder
  kOldFile,        // a data file that an older recording of this name has left
  kIncomplete,     // fewer frames than announced
  kStatusFile,     // the recorder left one, or it is not one
  kUnreadable,     // the system cannot read the file
  kSequence,       // a record bears another number than its place
  kTime,           // a time that is none, runs backwards or jumps
  kBetweenRows,    // bytes that belong to no pixel are not zero
  kPlaceholders,   // frames that were lost before they reached the recorder
  kChecksum        // a record is not the one whose checksum was kept
};

/// A word for it, for programs.
const char* nameOf(Problem problem);

/// One thing that is not as it must be, and where.
struct Finding {
  Problem problem;
  std::string file;                     // as it was opened, not escaped
  std::optional<std::uint32_t> record;  // number in the stream, from 0, where it is about one
  std::uint64_t offset = 0;             // in the file
  std::string text;
};

/// Findings in the order in which they came. Of each kind it keeps the first hundred, and counts
/// the others: a recording of a million damaged records must not fill the memory.
class FindingList {
 public:
  void add(const Finding& finding);
  const std::vector<Finding>& kept() const { return kept_; }
  /// All of them, also those that were not kept.
  std::uint64_t count() const { return count_; }

 private:
  std::vector<Finding> kept_;
  std::map<Problem, std::uint64_t> countOf_;
  std::uint64_t count_ = 0;
};

/// Collects what the checks find.
class Findings {
 public:
  /// A problem: no caller of the library can bring it about.
  void add(const Finding& finding);
  /// What is legal and worth knowing.
  void addNote(const Finding& note) { notes_.add(note); }

  const FindingList& problems() const { return problems_; }
  const FindingList& notes() const { return notes_; }
  /// Of the problems with missing or damaged records, the one with the lowest record.
  const std::optional<Finding>& firstDamage() const { return firstDamage_; }

 private:
  FindingList problems_;
  FindingList notes_;
  std::optional<Finding> firstDamage_;
};

}  // namespace KPF_TOOL

#endif
