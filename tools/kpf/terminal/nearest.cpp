#include "tools/kpf/terminal/nearest.h"

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostSlips = 2;

/// The fewest slips that turn `a` into `b`, by the table of all their beginnings.
std::size_t slipsBetween(const std::string& a, const std::string& b) {
  using Row = std::vector<std::size_t>;
  std::vector<Row> slips(a.size() + 1, Row(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        slips[i][j] = i + j;
        continue;
      }
      const std::size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
      slips[i][j] =
          std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + wrong});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
      }
    }
  }
  return slips[a.size()][b.size()];
}

}  // namespace

std::string nearestWord(const std::string& written, const std::vector<std::string>& words) {
  std::string nearest;
  std::size_t fewest = kMostSlips + 1;
  for (const std::string& word : words) {
    // A word that is all slips was not meant.
    const std::size_t slips = slipsBetween(written, word);
    if (slips >= fewest || slips >= word.size()) continue;
    fewest = slips;
    nearest = word;
  }
  return nearest;
}

}  // namespace KPF_TOOL
