// What the page wants made, as a command line.
#ifndef KPF_JOB_REQUEST_H
#define KPF_JOB_REQUEST_H

#include <string>
#include <vector>

#include "tools/kpf/terminal/json.h"

namespace KPF_TOOL {

/// The commands that a page may ask for; `kinds` of them that this tool has.
std::vector<std::string> offeredJobs();

/// The name of a new file in the current folder: without any folder, and not hidden.
/// @throws ToolError.
std::string checkedNewName(const std::string& name);

/**
 * The arguments of kpf that do what the page asks: `kind` (export, cut, amplify, compare), `name`,
 * `from`, `to`, `frequency`, `gain`, `clean`.
 *
 * Names are led by a path, so that none is taken for an option or an address.
 * @throws ToolError, nlohmann::json::exception.
 */
std::vector<std::string> argumentsOf(const Json& wanted, const std::string& recording);

}  // namespace KPF_TOOL

#endif
