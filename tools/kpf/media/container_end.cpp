#include "tools/kpf/media/container_end.h"

#include <cstddef>
#include <map>
#include <string_view>

namespace KPF_TOOL {
namespace {

constexpr const char* kNoMark = "the mark of its end";

/// 0 where the bytes do not reach that far.
std::uint64_t littleEndian(std::string_view bytes, std::size_t at, unsigned count) {
  if (at + count > bytes.size()) return 0;
  std::uint64_t value = 0;
  while (count-- > 0) value = value << 8 | static_cast<unsigned char>(bytes[at + count]);
  return value;
}

unsigned byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned>(littleEndian(bytes, at, 1));
}

/// RIFF: its name, and the bytes that follow. A recorder that cannot go back leaves 0 or the most.
std::uint64_t sizeOfRiff(std::string_view head) {
  const std::uint64_t size = littleEndian(head, 4, 4);
  return head.starts_with("RIFF") && size != UINT32_MAX ? size : 0;
}

/// ASF: among the first objects one has the file's size, unless its flags say that nobody knew.
std::uint64_t sizeOfAsf(std::string_view head) {
  constexpr std::string_view kProperties(
      "\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65", 16);
  const std::size_t object = head.find(kProperties);
  if (object == std::string_view::npos || (byteAt(head, object + 88) & 1) != 0) return 0;
  return littleEndian(head, object + 40, 8);
}

/// GIF: after the last picture come extensions, of blocks with a length each, then a semicolon.
bool endsLikeGif(std::string_view bytes) {
  std::size_t at = 0;
  while (byteAt(bytes, at) == '!') {
    for (at += 2; byteAt(bytes, at) != 0;) at += byteAt(bytes, at) + 1;
    ++at;
  }
  return byteAt(bytes, at) == ';';
}

/// Ogg: pages whose flags tell the last one of each stream.
bool endsLikeOgg(std::string_view bytes) {
  constexpr std::string_view kPage("OggS\0", 5);
  constexpr std::size_t kSegments = 27;
  std::map<std::uint64_t, bool> ended;  // by the number of the stream
  for (std::size_t at = 0; (at = bytes.find(kPage, at)) != std::string_view::npos;) {
    ended[littleEndian(bytes, at + 14, 4)] = (byteAt(bytes, at + 5) & 4) != 0;
    const unsigned segments = byteAt(bytes, at + kSegments - 1);
    std::size_t end = at + kSegments + segments;
    for (unsigned i = 0; i < segments; ++i) end += byteAt(bytes, at + kSegments + i);
    if (end > bytes.size()) return false;
    at = end;
  }
  for (const auto& [stream, end] : ended) {
    if (!end) return false;
  }
  return !ended.empty();
}

/// NUT: an index comes last, and in front of its sum the bytes from its beginning to there.
bool endsLikeNut(std::string_view bytes, std::uint64_t size) {
  constexpr std::string_view kIndex("NX\xDD\x67\x2F\x23\xE6\x4E", 8);
  if (bytes.size() < 12) return false;
  std::uint64_t length = 0;
  for (std::size_t at = bytes.size() - 12; at < bytes.size() - 4; ++at) {
    length = length << 8 | byteAt(bytes, at);
  }
  if (length > bytes.size()) return length <= size;  // too long to be looked at
  return bytes.substr(bytes.size() - length).starts_with(kIndex);
}

/// MP4: the index may name bytes that a copy which broke off has not brought.
bool indexIsWithin(const AVStream& stream, std::uint64_t size) {
  for (int i = avformat_index_get_entries_count(&stream) - 1; i >= 0; --i) {
    // The function only reads.
    const AVIndexEntry* const entry = avformat_index_get_entry(const_cast<AVStream*>(&stream), i);
    if (entry->pos > 0 && static_cast<std::uint64_t>(entry->pos + entry->size) > size) return false;
  }
  return true;
}

}  // namespace

std::uint64_t statedSize(const AVFormatContext& file, const WatchedInput& input) {
  const std::string_view kind(file.iformat->name);
  if (kind == "avi") return sizeOfRiff(input.head());
  return kind == "asf" ? sizeOfAsf(input.head()) : 0;
}

std::string missingEnd(const AVFormatContext& file, int video, const WatchedInput& input,
                       std::uint64_t packetsEnd) {
  const std::string_view kind(file.iformat->name);
  if (kind == "gif" && !endsLikeGif(input.from(packetsEnd))) return kNoMark;
  if (kind == "ogg" && !endsLikeOgg(input.tail())) return kNoMark;
  if (kind == "apng" && input.tail().find("IEND") == std::string::npos) return kNoMark;
  if (kind == "nut" && !endsLikeNut(input.tail(), input.size())) return "its index";
  if (kind == "asf" && statedSize(file, input) > input.size()) return "what its header counts";
  if (kind.starts_with("mov,") && !indexIsWithin(*file.streams[video], input.size())) {
    return "what its index names";
  }
  return "";
}

}  // namespace KPF_TOOL
