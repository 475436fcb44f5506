// The one way from a name, as callers and headers of files spell it, to what the system opens.
#ifndef NATIVE_PATH_H
#define NATIVE_PATH_H

#include <filesystem>
#include <string>

namespace PATHS {

/**
 * The path that `name` stands for.
 *
 * On Windows a name is UTF-8 when it is valid UTF-8, else text in the system's code page, whatever
 * setlocale says. Elsewhere names are bytes and stay as they are.
 */
std::filesystem::path nativePath(const std::string& name);

}  // namespace PATHS

#endif
