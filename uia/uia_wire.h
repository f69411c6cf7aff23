// Payload buffers exchanged with the driver. Fields are read and written at
// the byte offsets of the wire layout (little-endian), never through struct
// overlays, so compiler padding can never shift a field. Every access is
// bounds-checked: an offset outside the buffer is a programming error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "mpi/mpi_usr.h"

class UiaPayload {
public:
    explicit UiaPayload(size_t size) : m_bytes(size, 0) {}

    size_t size() const { return m_bytes.size(); }
    uint8_t* data() { return m_bytes.data(); }
    const uint8_t* data() const { return m_bytes.data(); }
    void clear() { std::memset(m_bytes.data(), 0, m_bytes.size()); }

    uint8_t u8(size_t off) const { check(off, 1); return m_bytes[off]; }
    uint16_t u16(size_t off) const { return static_cast<uint16_t>(get(off, 2)); }
    uint32_t u32(size_t off) const { return static_cast<uint32_t>(get(off, 4)); }
    uint64_t u64(size_t off) const { return get(off, 8); }

    void setU8(size_t off, uint8_t v) { check(off, 1); m_bytes[off] = v; }
    void setU16(size_t off, uint16_t v) { put(off, 2, v); }
    void setU32(size_t off, uint32_t v) { put(off, 4, v); }
    void setU64(size_t off, uint64_t v) { put(off, 8, v); }

    // A fixed text field of `len` bytes copied into `out` (capacity `cap`,
    // normally len + 1): the copy stops at the first NUL and is always
    // terminated, whatever the driver left in the field.
    void text(size_t off, size_t len, char* out, size_t cap) const
    {
        check(off, len);
        if (cap == 0) {
            return;
        }
        size_t n = 0;
        while (n < len && n + 1 < cap && m_bytes[off + n] != 0) {
            out[n] = static_cast<char>(m_bytes[off + n]);
            ++n;
        }
        out[n] = '\0';
    }
    // Writes `s` into a fixed field of `len` bytes, zero-padded; a longer
    // text is cut so that the field keeps a terminator.
    void setText(size_t off, size_t len, const char* s)
    {
        check(off, len);
        std::memset(&m_bytes[off], 0, len);
        size_t n = s ? std::strlen(s) : 0;
        if (n >= len) {
            n = len ? len - 1 : 0;
        }
        if (n) {
            std::memcpy(&m_bytes[off], s, n);
        }
    }

private:
    void check(size_t off, size_t width) const
    {
        MPI_ASSERT_IN(MPI_MOD_UIA, MPI_SRC_UIA, off <= m_bytes.size() && width <= m_bytes.size() - off);
    }
    uint64_t get(size_t off, size_t width) const
    {
        check(off, width);
        uint64_t v = 0;
        for (size_t i = 0; i < width; ++i) {
            v |= static_cast<uint64_t>(m_bytes[off + i]) << (8 * i);
        }
        return v;
    }
    void put(size_t off, size_t width, uint64_t v)
    {
        check(off, width);
        for (size_t i = 0; i < width; ++i) {
            m_bytes[off + i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }

    std::vector<uint8_t> m_bytes;
};
