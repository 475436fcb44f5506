// The user's browser.
#ifndef KPF_BROWSER_H
#define KPF_BROWSER_H

#include <memory>
#include <string>

namespace KPF_TOOL {

/// Opens a page in the browser of the desktop, if there is one.
class Browser {
 public:
  /// The address reaches it through a file that only the user can read: an argument would show the
  /// secret to everybody who lists processes.
  explicit Browser(const std::string& address);
  ~Browser();
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

  /// Whether it was asked to open the page.
  bool opened() const { return !file_.empty(); }

 private:
  std::string file_;
};

}  // namespace KPF_TOOL

#endif
