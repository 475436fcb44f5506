/*
 * Which version these headers belong to, counted by semantic versioning. The numbers stand here
 * only: the build reads them for the library's file name, the packages and `kpf --version`.
 */
#ifndef VLM_VERSION_H
#define VLM_VERSION_H

#define VLM_VERSION_MAJOR 1
#define VLM_VERSION_MINOR 0
#define VLM_VERSION_PATCH 0

/* In two steps: a macro's argument becomes text before its own value is put in its place. */
#define VLM_VERSION_JOIN_TEXT(major, minor, patch) #major "." #minor "." #patch
#define VLM_VERSION_JOIN(major, minor, patch) VLM_VERSION_JOIN_TEXT(major, minor, patch)
#define VLM_VERSION_STRING VLM_VERSION_JOIN(VLM_VERSION_MAJOR, VLM_VERSION_MINOR, VLM_VERSION_PATCH)

#endif
