// Conversion tables, and the conversion of the driver's UTF-8 names to the
// GB2312 the console expects.
#include <iconv.h>

#include <cerrno>
#include <cstring>

#include "bounded/bounded.h"
#include "uil/uil_objects_int.h"

const std::array<UilLbConvert, 3> g_astUILLbConvert{{
    {"round-robin", "round robin algorithm", "\xc2\xd6\xd1\xaf\xcb\xe3\xb7\xa8"},
    {"min-queue-depth", "minimal queue depth algorithm",
     "\xd7\xee\xd0\xa1\xb6\xd3\xc1\xd0\xc9\xee\xb6\xc8\xcb\xe3\xb7\xa8"},
    {"min-task", "minimal task algotithm", "\xd7\xee\xd0\xa1\xc8\xce\xce\xf1\xcb\xe3\xb7\xa8"},
}};

const std::array<UilOpenLb, 4> g_astUILOpenLB{{
    {MPI_OBJ_COMMON, "", ""},
    {MPI_OBJ_ARRAY, "for array id %u", "\xd5\xeb\xb6\xd4\xd5\xf3\xc1\xd0" "ID %u"},
    {MPI_OBJ_LUN, "for vlun id %u", "\xd5\xeb\xb6\xd4" "VLUN ID %u"},
    {MPI_OBJ_PATH, "for path id %u", "\xd5\xeb\xb6\xd4\xc2\xb7\xbe\xb6" "ID %u"},
}};

const std::array<UilControllerConvert, 16> g_astUILControllerConvert{{
    {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "7"},
    {8, "8"}, {9, "9"}, {10, "10"}, {11, "11"}, {12, "12"}, {13, "13"}, {14, "14"}, {15, "15"},
}};

const std::array<UilControllerConvert, 16> g_astUILPairControllerConvert{{
    {0, "0A"}, {1, "0B"}, {2, "1A"}, {3, "1B"}, {4, "2A"}, {5, "2B"}, {6, "3A"}, {7, "3B"},
    {8, "4A"}, {9, "4B"}, {10, "5A"}, {11, "5B"}, {12, "6A"}, {13, "6B"}, {14, "7A"}, {15, "7B"},
}};

const char* const UIL_gacControllerId[16][2] = {
    {"0A", "0B"},   {"1A", "1B"},   {"2A", "2B"},   {"3A", "3B"},   {"4A", "4B"},   {"5A", "5B"},
    {"6A", "6B"},   {"7A", "7B"},   {"8A", "8B"},   {"9A", "9B"},   {"10A", "10B"}, {"11A", "11B"},
    {"12A", "12B"}, {"13A", "13B"}, {"14A", "14B"}, {"15A", "15B"},
};

const std::array<UilPhyPathIoStateConvert, 6> g_astUILPhyPathIOStateConvert{{
    {"19", "normal", "\xd5\xfd\xb3\xa3"},
    {"21", "busy", "\xb7\xb1\xc3\xa6"},
    {"22", "unknown error", "\xce\xb4\xd6\xaa\xb4\xed\xce\xf3"},
    {"23", "not steady", "\xb2\xbb\xce\xc8\xb6\xa8"},
    {"24", "timeout", "\xb3\xac\xca\xb1"},
    {"25", "high latency", "\xb8\xdf\xca\xb1\xd1\xd3"},
}};

uint32_t UIL_ConvertStrToBool(const char* text, uint8_t* value)
{
    UIL_ASSERT(value != nullptr);
    if (text != nullptr && std::strcmp(text, "on") == 0) {
        *value = 1;
        return MPI_RET_SUCCESS;
    }
    if (text != nullptr && std::strcmp(text, "off") == 0) {
        *value = 0;
        return MPI_RET_SUCCESS;
    }
    return MPI_RET_INVALID_PARAM;
}

const char* UIL_ConvertBoolToStr(uint32_t value) { return value != 0 ? "on" : "off"; }

const char* UIL_LbPolicyDescription(const char* keyword)
{
    UIL_ASSERT(keyword != nullptr);
    for (const UilLbConvert& row : g_astUILLbConvert) {
        if (std::strcmp(row.keyword, keyword) == 0) {
            return row.english;
        }
    }
    return keyword;
}

namespace {

// One converter for the whole run: a table of 16384 VLUNs converts as many
// array names.
class Gb2312Converter {
public:
    Gb2312Converter() : m_cd(iconv_open("GB2312", "UTF-8")) {}
    ~Gb2312Converter()
    {
        if (ready()) {
            iconv_close(m_cd);
        }
    }
    Gb2312Converter(const Gb2312Converter&) = delete;
    Gb2312Converter& operator=(const Gb2312Converter&) = delete;

    bool ready() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
    iconv_t handle() const { return m_cd; }

private:
    iconv_t m_cd;
};

Gb2312Converter& converter()
{
    static Gb2312Converter instance;
    return instance;
}

// Length of the UTF-8 sequence that starts with `lead` (1 for a byte that
// cannot start one, so that it is replaced on its own).
size_t utf8SequenceLength(uint8_t lead)
{
    if (lead < 0xC2) {
        return 1;
    }
    if (lead < 0xE0) {
        return 2;
    }
    if (lead < 0xF0) {
        return 3;
    }
    return lead < 0xF5 ? 4 : 1;
}

bool isAscii(const uint8_t* raw, size_t len)
{
    for (size_t i = 0; i < len; ++i) {
        if (raw[i] >= 0x80) {
            return false;
        }
    }
    return true;
}

}  // namespace

void UIL_TransNameToGb2312(const uint8_t* raw, size_t len, char* out, size_t size)
{
    UIL_ASSERT(raw != nullptr && out != nullptr && size > 0);
    out[0] = '\0';
    // Text up to the first zero byte is what a C string can carry anyway
    // (which also drops the field's zero padding).
    const void* nul = std::memchr(raw, 0, len);
    if (nul != nullptr) {
        len = static_cast<size_t>(static_cast<const uint8_t*>(nul) - raw);
    }
    if (isAscii(raw, len) || !converter().ready()) {
        if (!converter().ready()) {
            UIL_ERR("iconv from UTF-8 to GB2312 is not available; the name is kept as it is");
        }
        size_t n = len < size - 1 ? len : size - 1;
        (void)memcpy_s(out, size, raw, n);
        out[n] = '\0';
        return;
    }
    iconv_t cd = converter().handle();
    (void)iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(reinterpret_cast<const char*>(raw));
    size_t inLeft = len;
    char* dst = out;
    size_t outLeft = size - 1;  // room for the terminator
    while (inLeft > 0) {
        if (iconv(cd, &in, &inLeft, &dst, &outLeft) != static_cast<size_t>(-1)) {
            break;
        }
        if (errno == E2BIG || outLeft == 0) {
            break;  // cut: the converted part stays whole
        }
        // EILSEQ (no GB2312 form, or not UTF-8) or EINVAL (cut sequence):
        // one '?' stands for the character, and the conversion goes on.
        size_t want = utf8SequenceLength(static_cast<uint8_t>(*in));
        size_t skip = 1;
        while (skip < want && skip < inLeft && (static_cast<uint8_t>(in[skip]) & 0xC0) == 0x80) {
            ++skip;
        }
        in += skip;
        inLeft -= skip;
        *dst++ = '?';
        --outLeft;
        (void)iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
    *dst = '\0';
}
