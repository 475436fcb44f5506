// The user's wish to begin.
#ifndef KPF_START_SIGNAL_H
#define KPF_START_SIGNAL_H

namespace KPF_TOOL {

/// From its construction on, SIGUSR1 leaves a note, and so does Enter where standard input is not
/// taken for something else.
class StartSignal {
 public:
  explicit StartSignal(bool readsKeys);
  /// Whether the user wished to begin since this was asked last.
  bool given();

 private:
  bool enterPressed();

  bool readsKeys_;
};

}  // namespace KPF_TOOL

#endif
