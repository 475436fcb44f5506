// Keeps the DLL loaded: threads of the OpenMP team, which runs inside it, outlive every call, and
// unloading it under them ends the process.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  HMODULE self = nullptr;
  const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
  return GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&DllMain), &self);
}
