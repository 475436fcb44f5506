// Names of recordings as callers give them: UTF-8 on every system.
#ifndef CAPI_NAMES_H
#define CAPI_NAMES_H

#include <string>

#include "format/kpf_file_names.h"

namespace KPF_C {

/**
 * The path of a header file in the one form that gives its data the folder of its own name: with
 * `/` between folders, and at least one.
 *
 * Throws a KPF_ERROR_ARGUMENT for null, a KPF_ERROR_NAME for what cannot name a recording: no file
 * name, nothing before or no extension, and on Windows, where names are no plain bytes, what is not
 * UTF-8.
 */
std::string recordingName(const char* name);

/// What its data files are called.
KPF_FORMAT::DataNames dataNamesOf(const std::string& recordingName);

/// Whether `text` is UTF-8: no stray or missing continuation, no surrogate, nothing beyond U+10FFFF
/// and no character in more bytes than it needs.
bool isUtf8(const std::string& text);

}  // namespace KPF_C

#endif
