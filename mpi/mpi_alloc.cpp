#include <cstdlib>

#include "mpi/mpi_usr.h"

namespace {

void* zeroAlloc(size_t size, const char* func, int line)
{
    if (size == 0 || size > MPI_ALLOC_MAX) {
        MPI_TraceMsg(MPI_MOD_UIL, MPI_LOG_ERROR, func, line, "Invalid parameter");
        return nullptr;
    }
    void* block = std::calloc(1, size);
    if (block == nullptr) {
        MPI_TraceMsg(MPI_MOD_UIL, MPI_LOG_ERROR, func, line, "Malloc fail");
    }
    return block;
}

}  // namespace

void* UIL_ZMalloc(size_t size) { return zeroAlloc(size, __func__, __LINE__); }

void* MPCLI_ZMalloc(size_t size) { return zeroAlloc(size, __func__, __LINE__); }
