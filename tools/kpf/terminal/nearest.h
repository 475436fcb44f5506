// Slips of the finger.
#ifndef KPF_NEAREST_H
#define KPF_NEAREST_H

#include <string>
#include <vector>

namespace KPF_TOOL {

/// The word that `written` was meant to be: one that is no more than two slips away, of several the
/// nearest. A letter too many, too few or wrong is a slip, and so are two neighbours exchanged.
/// @return empty when there is none.
std::string nearestWord(const std::string& written, const std::vector<std::string>& words);

}  // namespace KPF_TOOL

#endif
