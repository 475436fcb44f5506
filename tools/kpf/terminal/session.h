// What a long command keeps an eye on: the user's wish to stop, progress, the library's words.
#ifndef SESSION_H
#define SESSION_H

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace KPF_TOOL {

/// From its construction on, Ctrl-C and SIGTERM only leave a note.
class Interrupt {
 public:
  Interrupt();
  static bool requested();
};

/// A line on standard error with count, rate and remaining time, where that is a terminal.
class Progress {
 public:
  /// @param total `unit`s expected, or 0 when nobody knows.
  Progress(bool quiet, std::uint64_t total, const char* unit = "frames");
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::uint64_t done);

 private:
  using Clock = std::chrono::steady_clock;

  bool visible_;
  std::uint64_t total_;
  const char* unit_;
  Clock::time_point begin_;
  Clock::time_point shown_;
};

/**
 * Keeps the library's log lines off standard output, which is for results.
 *
 * The library writes each line to standard output; while this lives, that is a temporary file. Any
 * line means trouble, which is how a disk that fails in the middle of a recording is noticed.
 */
class LibraryWords {
 public:
  LibraryWords();
  ~LibraryWords();
  LibraryWords(const LibraryWords&) = delete;
  LibraryWords& operator=(const LibraryWords&) = delete;

  bool any() const;
  /// Gives standard output back and passes what was said on to standard error.
  void release();

 private:
  std::FILE* heard_;
  int output_;  // descriptor of the real standard output, -1 once it is given back
};

}  // namespace KPF_TOOL

#endif
