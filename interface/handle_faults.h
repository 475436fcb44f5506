// A handle looked up for an exported function, which says in the log what is wrong with it.
#ifndef HANDLE_FAULTS_H
#define HANDLE_FAULTS_H

#include "interface/handle_table.h"

namespace VLM_INTERNAL {

/// How the lines about a bad handle read: "NAME is 0!" and "NAME (7) is invalid!", or as of a
/// pointer, "NAME is nullptr!" and "NAME (0x7) is invalid!".
struct HandleWording {
  const char* name;
  bool asPointer;
};

/// Logs what is wrong with a handle that is not live, under the name of the exported `function`.
void logFault(HandleState state, unsigned handle, const HandleWording& wording,
              const char* function);

/// lookUp, and the fault logged.
template <class Object>
LookUp<Object> lookUpOrLog(const HandleTable<Object>& table, unsigned handle,
                           const HandleWording& wording, const char* function) {
  const auto found = lookUp(table, handle);
  if (found.state != HandleState::kLive) logFault(found.state, handle, wording, function);
  return found;
}

}  // namespace VLM_INTERNAL

#endif
