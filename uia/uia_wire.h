// Payload buffers exchanged with the driver. Fields are read and written at
// the byte offsets of the wire layout (little-endian), never through struct
// overlays, so compiler padding can never shift a field. Every access is
// bounds-checked: an offset outside the buffer is a programming error.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "mpi/mpi_usr.h"

// One field of a wire layout: its byte offset and width. Layouts are
// written as constexpr tables of these (uil/uil_wire_*.h), so that the
// compiler checks every field against its request's declared size.
struct UiaField {
    size_t off;
    size_t len;
    constexpr size_t end() const { return off + len; }
};

// True when every field lies inside a payload of `size` bytes.
constexpr bool UiaFieldsFit(std::span<const UiaField> fields, size_t size)
{
    for (const UiaField& f : fields) {
        if (f.len == 0 || f.off > size || f.len > size - f.off) {
            return false;
        }
    }
    return true;
}

// True when no two fields share a byte.
constexpr bool UiaFieldsDisjoint(std::span<const UiaField> fields)
{
    for (size_t i = 0; i < fields.size(); ++i) {
        for (size_t j = i + 1; j < fields.size(); ++j) {
            if (fields[i].off < fields[j].end() && fields[j].off < fields[i].end()) {
                return false;
            }
        }
    }
    return true;
}

class UiaPayload {
public:
    explicit UiaPayload(size_t size) : m_bytes(size, 0) {}

    size_t size() const { return m_bytes.size(); }
    uint8_t* data() { return m_bytes.data(); }
    const uint8_t* data() const { return m_bytes.data(); }
    void clear() { std::memset(m_bytes.data(), 0, m_bytes.size()); }
    // Zeroes the first `n` bytes only (a reused buffer whose tail is known clean).
    void clearFirst(size_t n) { std::memset(m_bytes.data(), 0, n < m_bytes.size() ? n : m_bytes.size()); }

    uint8_t u8(size_t off) const { check(off, 1); return m_bytes[off]; }
    uint16_t u16(size_t off) const { return static_cast<uint16_t>(get(off, 2)); }
    uint32_t u32(size_t off) const { return static_cast<uint32_t>(get(off, 4)); }
    uint64_t u64(size_t off) const { return get(off, 8); }

    void setU8(size_t off, uint8_t v) { check(off, 1); m_bytes[off] = v; }
    void setU16(size_t off, uint16_t v) { put(off, 2, v); }
    void setU32(size_t off, uint32_t v) { put(off, 4, v); }
    void setU64(size_t off, uint64_t v) { put(off, 8, v); }

    // The same through a layout's field; the field's width must match.
    uint8_t u8(UiaField f) const { checkWidth(f, 1); return u8(f.off); }
    uint16_t u16(UiaField f) const { checkWidth(f, 2); return u16(f.off); }
    uint32_t u32(UiaField f) const { checkWidth(f, 4); return u32(f.off); }
    uint64_t u64(UiaField f) const { checkWidth(f, 8); return u64(f.off); }
    void setU8(UiaField f, uint8_t v) { checkWidth(f, 1); setU8(f.off, v); }
    void setU32(UiaField f, uint32_t v) { checkWidth(f, 4); setU32(f.off, v); }
    // Element `i` of a field holding u32 words.
    uint32_t u32At(UiaField f, size_t i) const
    {
        MPI_ASSERT_IN(MPI_MOD_UIA, MPI_SRC_UIA, 4 * i + 4 <= f.len);
        return u32(f.off + 4 * i);
    }
    void text(UiaField f, char* out, size_t cap) const { text(f.off, f.len, out, cap); }
    template <size_t N>
    void text(UiaField f, char (&out)[N]) const { text(f.off, f.len, out, N); }
    void setText(UiaField f, const char* s) { setText(f.off, f.len, s); }
    // The raw bytes of a field (for decoders that convert a whole field).
    const uint8_t* bytes(UiaField f) const { check(f.off, f.len); return m_bytes.data() + f.off; }

    // A fixed text field of `len` bytes copied into `out` (capacity `cap`,
    // normally len + 1): the copy stops at the first NUL and is always
    // terminated, whatever the driver left in the field.
    void text(size_t off, size_t len, char* out, size_t cap) const
    {
        check(off, len);
        if (cap == 0) {
            return;
        }
        size_t n = len < cap - 1 ? len : cap - 1;
        const void* nul = std::memchr(&m_bytes[off], 0, n);
        if (nul != nullptr) {
            n = static_cast<size_t>(static_cast<const uint8_t*>(nul) - &m_bytes[off]);
        }
        if (n != 0) {
            std::memcpy(out, &m_bytes[off], n);
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
    static void checkWidth(UiaField f, size_t want) { MPI_ASSERT_IN(MPI_MOD_UIA, MPI_SRC_UIA, f.len == want); }
    void check(size_t off, size_t width) const
    {
        MPI_ASSERT_IN(MPI_MOD_UIA, MPI_SRC_UIA, off <= m_bytes.size() && width <= m_bytes.size() - off);
    }
    uint64_t get(size_t off, size_t width) const
    {
        check(off, width);
        uint64_t v = 0;
        if constexpr (std::endian::native == std::endian::little) {
            std::memcpy(&v, &m_bytes[off], width);
            return v;
        }
        for (size_t i = 0; i < width; ++i) {
            v |= static_cast<uint64_t>(m_bytes[off + i]) << (8 * i);
        }
        return v;
    }
    void put(size_t off, size_t width, uint64_t v)
    {
        check(off, width);
        if constexpr (std::endian::native == std::endian::little) {
            std::memcpy(&m_bytes[off], &v, width);
            return;
        }
        for (size_t i = 0; i < width; ++i) {
            m_bytes[off + i] = static_cast<uint8_t>(v >> (8 * i));
        }
    }

    std::vector<uint8_t> m_bytes;
};
