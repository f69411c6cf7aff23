#include <cstdio>
#include <cstdlib>

#include "mpi/mpi_usr.h"

namespace {

// A counter used before its init or after its destroy means memory is
// already corrupt: report it on the console and stop the process.
void checkAtomic(const MPI_Atomic* atomic, const char* func, int line)
{
    if (atomic->state == MPI_ATOMIC_INITED) {
        return;
    }
    MPI_FlushConsole();
    if (atomic->state == MPI_ATOMIC_DESTROYED) {
        std::printf("*** Atomic %p is destroyed twice on file \"%s\" function \"%s\" line %d.\n",
                    static_cast<const void*>(atomic), MPI_SRC_MPI, func, line);
    } else {
        std::printf("*** Atomic %p is not initialized on file \"%s\" function \"%s\" line %d.\n",
                    static_cast<const void*>(atomic), MPI_SRC_MPI, func, line);
    }
    std::printf("*** System panic at file \"%s\" function \"%s\" line %d.\n", MPI_SRC_MPI, func, line);
    std::fflush(stdout);
    std::exit(-1);
}

int64_t changeBy(MPI_Atomic* atomic, int64_t delta, const char* func, int line)
{
    checkAtomic(atomic, func, line);
    std::lock_guard<std::mutex> guard(atomic->lock);
    int64_t before = atomic->value;
    atomic->value += delta;
    return before;
}

}  // namespace

void MPI_AtomicInit(MPI_Atomic* atomic, int64_t value)
{
    atomic->value = value;
    atomic->state = MPI_ATOMIC_INITED;
}

void MPI_AtomicDestroy(MPI_Atomic* atomic)
{
    checkAtomic(atomic, __func__, __LINE__);
    atomic->state = MPI_ATOMIC_DESTROYED;
}

int64_t MPI_AtomicRead(MPI_Atomic* atomic) { return changeBy(atomic, 0, __func__, __LINE__); }

int64_t MPI_AtomicIncrease(MPI_Atomic* atomic) { return changeBy(atomic, 1, __func__, __LINE__); }

int64_t MPI_AtomicDecrease(MPI_Atomic* atomic) { return changeBy(atomic, -1, __func__, __LINE__); }
