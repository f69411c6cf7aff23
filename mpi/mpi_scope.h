// Owners for the program's paired calls. Every `...Start` that succeeded is
// matched by its `...End`, every lock by its unlock, on every return path:
// the owner runs the release when it goes out of scope.
#pragma once

#include <type_traits>
#include <utility>

// Runs `fn` at the end of the scope unless dismissed.
template <class Fn>
class MPI_ScopeExit {
public:
    explicit MPI_ScopeExit(Fn fn) : m_fn(std::move(fn)) {}
    MPI_ScopeExit(const MPI_ScopeExit&) = delete;
    MPI_ScopeExit& operator=(const MPI_ScopeExit&) = delete;
    ~MPI_ScopeExit()
    {
        if (m_armed) {
            m_fn();
        }
    }
    void dismiss() { m_armed = false; }

private:
    Fn m_fn;
    bool m_armed = true;
};

namespace mpi_detail {
template <class F>
struct EndArg;
template <class R, class A>
struct EndArg<R (*)(A)> {
    using type = A;
};
}  // namespace mpi_detail

// Owns what a `...Start` call filled and calls `End` on it once: a list
// head, a record or a list pointer, whatever `End` takes. The owner is
// armed only after the Start call succeeded:
//
//     MPI_ListNode head;
//     MPI_Ended<INTF_UIL_EnumerateArrayEnd> arrays;
//     if (INTF_UIL_EnumerateArrayStart(&head) != MPI_RET_SUCCESS) return ...;
//     arrays.own(&head);
template <auto End>
class MPI_Ended {
public:
    using Handle = typename mpi_detail::EndArg<decltype(End)>::type;

    MPI_Ended() = default;
    explicit MPI_Ended(Handle handle) : m_handle(handle), m_armed(true) {}
    MPI_Ended(const MPI_Ended&) = delete;
    MPI_Ended& operator=(const MPI_Ended&) = delete;
    ~MPI_Ended() { reset(); }

    void own(Handle handle)
    {
        reset();
        m_handle = handle;
        m_armed = true;
    }
    void reset()
    {
        if (m_armed) {
            m_armed = false;
            End(m_handle);
        }
    }
    Handle get() const { return m_handle; }

private:
    Handle m_handle{};
    bool m_armed = false;
};
