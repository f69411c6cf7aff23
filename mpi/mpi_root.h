// Sandbox root: when CVADM_ROOT is set and not empty, every absolute path the
// program uses is taken beneath it, so a test or a demo never touches the
// host's /etc, /opt or /dev.
#pragma once

#include <cstddef>
#include <string>

// The prefix ("" when CVADM_ROOT is unset or empty), without trailing '/'.
const char* MPI_Root();
// true when CVADM_ROOT is unusable (longer than MPI_ROOT_MAX - 1 characters).
bool MPI_RootTooLong();
// root + absPath, cut to fit `capacity` (always terminated).
void MPI_RootPath(const char* absPath, char* out, size_t capacity);
std::string MPI_HostPath(const char* absPath);
