/* Marks what the shared library offers. Users of the static library define VLM_INTERNAL_STATIC. */
#ifndef VLM_EXPORT_H
#define VLM_EXPORT_H

#if defined(VLM_INTERNAL_STATIC)
#define VLM_API
#elif defined(_WIN32) && defined(VLM_INTERNAL_BUILD)
#define VLM_API __declspec(dllexport)
#elif defined(_WIN32)
#define VLM_API __declspec(dllimport)
#else
#define VLM_API __attribute__((visibility("default")))
#endif

#endif
