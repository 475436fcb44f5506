// The names of a recording's data files, which follow from the path of its header file.
#ifndef KPF_FILE_NAMES_H
#define KPF_FILE_NAMES_H

#include <fmt/printf.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "format/kpf_fixed.h"

namespace KPF_FORMAT {

/// What the names of all data files of a recording are made of.
struct DataNames {
  std::string folder;  // separator at its end
  std::string base;    // what the names in it begin with
};

/// The header's path up to its last dot, which may stand in the name of a folder; nothing when it
/// has none.
inline std::optional<std::string> withoutExtension(const std::string& headerPath) {
  const std::size_t dot = headerPath.rfind('.');
  if (dot == std::string::npos) return std::nullopt;
  return headerPath.substr(0, dot);
}

/**
 * The folder has the name of the header without its extension, and the data files that of the
 * folder.
 *
 * Text decides what a separator is, on every system alike: a slash where `stem` has one, else a
 * backslash.
 *
 * @param stem what withoutExtension() gave.
 */
inline DataNames dataNames(const std::string& stem) {
  const char separator = stem.find('/') != std::string::npos ? '/' : '\\';
  DataNames names{stem, stem.substr(stem.rfind(separator) + 1)};  // npos + 1 is the start
  if (stem.empty() || stem.back() != separator) names.folder += separator;
  return names;
}

/// The same of a header's path, which is taken whole where it has no extension.
inline DataNames dataNamesOf(const std::string& headerPath) {
  return dataNames(withoutExtension(headerPath).value_or(headerPath));
}

/// @param number of the data file, from 1.
inline std::string divFileName(const DataNames& names, std::uint32_t number) {
  return fmt::sprintf("%s%s_%04u.%s", names.folder, names.base, number, kDivExtension);
}

/// The beginning that the names of the data files beside `divFile` share, its folder included.
inline std::string divFilePrefix(const std::string& divFile) {
  return divFile.substr(0, divFile.rfind('_') + 1);
}

/// @return the number of the data file called `name`; 0 where `names` has no such data file.
inline std::uint32_t divFileNumber(const DataNames& names, const std::string& name) {
  const std::size_t digits = divFilePrefix(divFileName(names, 0)).size();
  std::uint32_t number = 0;
  if (name.size() > digits) {
    std::from_chars(name.data() + digits, name.data() + name.size(), number);
  }
  return name == divFileName(names, number) ? number : 0;
}

}  // namespace KPF_FORMAT

#endif
