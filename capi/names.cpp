#include "capi/names.h"

#include <algorithm>
#include <cstddef>

#include "capi/calls.h"

namespace KPF_C {
namespace {

void requireName(bool holds, const std::string& name, const char* problem) {
  if (!holds) throw Failure(KPF_ERROR_NAME, name + ": " + problem);
}

#ifdef _WIN32
/// Windows takes both separators; the writer derives the folder of the data by one of them.
std::string withSlashes(std::string name) {
  requireName(isUtf8(name), "a name", "it is not valid UTF-8");
  std::replace(name.begin(), name.end(), '\\', '/');
  const bool onDrive = name.size() > 1 && name[1] == ':';
  if (onDrive && name.find('/') == std::string::npos) name.insert(2, "./");
  return name;
}
#else
std::string withSlashes(std::string name) { return name; }
#endif

/// A sequence of UTF-8: how many bytes it has, and the smallest character that needs them.
struct Sequence {
  std::size_t length;
  char32_t smallest;
};

Sequence sequenceOf(unsigned char first) {
  if (first < 0x80) return {1, 0};
  if (first >= 0xC2 && first < 0xE0) return {2, 0x80};
  if (first >= 0xE0 && first < 0xF0) return {3, 0x800};
  if (first >= 0xF0 && first < 0xF5) return {4, 0x10000};
  return {0, 0};
}

/// Bytes of the character that begins at `at`; 0 when there is none.
std::size_t characterLength(const std::string& text, std::size_t at) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const Sequence sequence = sequenceOf(byte(at));
  if (sequence.length <= 1) return sequence.length;
  if (text.size() - at < sequence.length) return 0;
  char32_t character = byte(at) & (0x7FU >> sequence.length);
  for (std::size_t i = at + 1; i < at + sequence.length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    character = character << 6 | (byte(i) & 0x3FU);
  }
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  const bool exists = character >= sequence.smallest && character <= 0x10FFFF && !surrogate;
  return exists ? sequence.length : 0;
}

}  // namespace

std::string recordingName(const char* given) {
  require(given != nullptr, "the name is null");
  std::string name = withSlashes(given);
  requireName(!name.empty(), "\"\"", "the name is empty");
  // Without any folder the writer would take `\` for the separator, on every system.
  if (name.find('/') == std::string::npos) name.insert(0, "./");
  const std::string file = name.substr(name.rfind('/') + 1);
  const std::size_t dot = file.rfind('.');
  requireName(dot != std::string::npos, name, "the name has no extension; add .kpf");
  requireName(dot != 0, name, "the name has nothing before its extension");
  return name;
}

KPF_FORMAT::DataNames dataNamesOf(const std::string& name) {
  return KPF_FORMAT::dataNames(KPF_FORMAT::withoutExtension(name).value());
}

bool isUtf8(const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = characterLength(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace KPF_C
