// What stands where a new recording is to go.
#ifndef CAPI_REPLACING_H
#define CAPI_REPLACING_H

#include <string>

namespace KPF_C {

/**
 * Makes sure that nothing bears a name that the new recording will use, data files and status file
 * included: what is left of an older one would read as part of the new.
 *
 * @param replace whether to remove a recording that is there; anything else is never removed.
 *
 * Throws a KPF_ERROR_EXISTS when something is in the way, a KPF_ERROR_OPEN when it cannot be
 * removed.
 */
void makeWay(const std::string& recordingName, bool replace);

}  // namespace KPF_C

#endif
