// The files of the page, which the build puts into the program.
#ifndef KPF_PAGE_FILES_H
#define KPF_PAGE_FILES_H

#include <span>
#include <string_view>

namespace KPF_TOOL {

/// One of them, under the name by which the page asks for it.
struct PageFile {
  std::string_view name;
  const unsigned char* begin;
  const unsigned char* end;
};

/// All of them: those in page/, and chart.js.
std::span<const PageFile> pageFiles();

}  // namespace KPF_TOOL

#endif
