// The user's wish to stop.
#ifndef KPF_INTERRUPT_H
#define KPF_INTERRUPT_H

namespace KPF_TOOL {

/**
 * From its construction on, Ctrl-C, SIGTERM and the end of the terminal only leave a note.
 *
 * A recording that is half written must still be closed, so commands that write look at the note
 * between two frames and end in good order. A command that only reads needs none of this.
 */
class Interrupt {
 public:
  Interrupt();
  /// Whether the user wished to stop since the program began.
  static bool requested();
};

}  // namespace KPF_TOOL

#endif
