#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "bounded/bounded.h"

// Buffers are compared over their full size, bytes past the capacity
// included, written as text with '.' standing for a NUL byte.
namespace {

constexpr uint64_t kOverMax = BND_MAX_CAPACITY + 1;

std::string shown(const char* bytes, size_t size)
{
    std::string text(bytes, size);
    for (char& c : text) {
        c = c == '\0' ? '.' : c;
    }
    return text;
}

std::vector<char> arena(const char* text)
{
    std::vector<char> bytes(text, text + std::strlen(text));
    for (char& c : bytes) {
        c = c == '.' ? '\0' : c;
    }
    return bytes;
}

std::string shown(const std::vector<char>& bytes) { return shown(bytes.data(), bytes.size()); }

// ---------------------------------------------------------------------------
// Checks every routine makes before it looks at the data.

using Routine = int32_t (*)(char* dest, uint64_t capacity, const char* src);

struct ArgRow {
    const char* name;
    Routine call;
    const char* afterNullSource;  // 12 bytes of "############" after reset
};

constexpr ArgRow kArgRows[] = {
    {"memcpy_s", [](char* d, uint64_t c, const char* s) { return memcpy_s(d, c, s, 2); }, "........####"},
    {"strcpy_s", [](char* d, uint64_t c, const char* s) { return strcpy_s(d, c, s); }, ".###########"},
    {"strncpy_s", [](char* d, uint64_t c, const char* s) { return strncpy_s(d, c, s, 2); }, ".###########"},
    {"strcat_s", [](char* d, uint64_t c, const char* s) { return strcat_s(d, c, s); }, ".###########"},
    {"strncat_s", [](char* d, uint64_t c, const char* s) { return strncat_s(d, c, s, 2); }, ".###########"},
};

TEST(BoundedArgs, CapacityThenDestinationThenSource)
{
    for (const ArgRow& row : kArgRows) {
        SCOPED_TRACE(row.name);
        char buf[12];
        std::memset(buf, '#', sizeof buf);

        EXPECT_EQ(row.call(buf, 0, "ab"), BND_ERANGE);
        EXPECT_EQ(row.call(buf, kOverMax, "ab"), BND_ERANGE);
        EXPECT_EQ(row.call(nullptr, 0, nullptr), BND_ERANGE);  // capacity is looked at first
        EXPECT_EQ(shown(buf, sizeof buf), "############");

        EXPECT_EQ(row.call(nullptr, 8, "ab"), BND_EINVAL);
        EXPECT_EQ(row.call(nullptr, BND_MAX_CAPACITY, nullptr), BND_EINVAL);

        EXPECT_EQ(row.call(buf, 8, nullptr), BND_EINVAL_RESET);
        EXPECT_EQ(shown(buf, sizeof buf), row.afterNullSource);
    }
}

TEST(BoundedArgs, MemsetChecksCapacityThenDestination)
{
    char buf[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(memset_s(buf, 0, '*', 2), BND_ERANGE);
    EXPECT_EQ(memset_s(buf, kOverMax, '*', 2), BND_ERANGE);
    EXPECT_EQ(shown(buf, sizeof buf), "####");
    EXPECT_EQ(memset_s(nullptr, 4, '*', 2), BND_EINVAL);
}

// ---------------------------------------------------------------------------
// Copies, appends and fills, run inside one arena: the destination at
// destOff, the source at srcOff of the same bytes, so that overlap can be set
// up in both directions, or a text of its own when `src` is given. For the
// string routines overlap is judged on the text actually copied, terminator
// included.

using CountedRoutine = int32_t (*)(char* dest, uint64_t capacity, const char* src, uint64_t count);

constexpr CountedRoutine kMemcpy = [](char* d, uint64_t c, const char* s, uint64_t n) { return memcpy_s(d, c, s, n); };
constexpr CountedRoutine kMemset = [](char* d, uint64_t c, const char* s, uint64_t n) {
    return memset_s(d, c, s[0], n);
};
constexpr CountedRoutine kStrcpy = [](char* d, uint64_t c, const char* s, uint64_t) { return strcpy_s(d, c, s); };
constexpr CountedRoutine kStrncpy = [](char* d, uint64_t c, const char* s, uint64_t n) {
    return strncpy_s(d, c, s, n);
};
constexpr CountedRoutine kStrcat = [](char* d, uint64_t c, const char* s, uint64_t) { return strcat_s(d, c, s); };
constexpr CountedRoutine kStrncat = [](char* d, uint64_t c, const char* s, uint64_t n) {
    return strncat_s(d, c, s, n);
};

struct CallRow {
    const char* name;
    CountedRoutine call;
    const char* before;  // the arena, '.' for NUL
    size_t destOff;
    uint64_t capacity;
    const char* src;  // nullptr: the source is in the arena at srcOff
    size_t srcOff;
    uint64_t count;
    int32_t rc;
    const char* after;
};

constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345";
constexpr const char* kHashes = "############";

constexpr CallRow kCallRows[] = {
    {"memcpy", kMemcpy, kLetters, 0, 8, nullptr, 16, 4, EOK, "QRSTEFGHIJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy count == capacity", kMemcpy, kLetters, 0, 4, nullptr, 16, 4, EOK, "QRSTEFGHIJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy nothing", kMemcpy, kLetters, 0, 8, nullptr, 16, 0, EOK, "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy too long", kMemcpy, kLetters, 0, 8, nullptr, 16, 9, BND_ERANGE_RESET, "........IJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy same address", kMemcpy, kLetters, 4, 8, nullptr, 4, 8, EOK, "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy source below", kMemcpy, kLetters, 4, 8, nullptr, 0, 8, BND_EOVERLAP_RESET,
     "ABCD........MNOPQRSTUVWXYZ012345"},
    {"memcpy source above", kMemcpy, kLetters, 0, 8, nullptr, 4, 8, BND_EOVERLAP_RESET,
     "........IJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy one shared byte", kMemcpy, kLetters, 0, 8, nullptr, 7, 8, BND_EOVERLAP_RESET,
     "........IJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy adjacent", kMemcpy, kLetters, 0, 8, nullptr, 8, 8, EOK, "IJKLMNOPIJKLMNOPQRSTUVWXYZ012345"},
    {"memcpy adjacent below", kMemcpy, kLetters, 8, 8, nullptr, 0, 8, EOK, "ABCDEFGHABCDEFGHQRSTUVWXYZ012345"},
    {"memcpy only count bytes count", kMemcpy, kLetters, 8, 16, nullptr, 0, 8, EOK,
     "ABCDEFGHABCDEFGHQRSTUVWXYZ012345"},
    {"memset", kMemset, "ABCDEFGHIJKL", 0, 8, "*", 0, 4, EOK, "****EFGHIJKL"},
    {"memset whole", kMemset, "ABCDEFGHIJKL", 0, 8, "*", 0, 8, EOK, "********IJKL"},
    {"memset nothing", kMemset, "ABCDEFGHIJKL", 0, 8, "*", 0, 0, EOK, "ABCDEFGHIJKL"},
    {"memset zero too long", kMemset, "ABCDEFGHIJKL", 0, 8, "", 0, 16, BND_ERANGE_RESET, "........IJKL"},
    {"memset too long fills the byte asked for", kMemset, "ABCDEFGHIJKL", 0, 8, "*", 0, 9, BND_ERANGE_RESET,
     "********IJKL"},
    {"strcpy", kStrcpy, kHashes, 0, 8, "abc", 0, 0, EOK, "abc.########"},
    {"strcpy fits exactly", kStrcpy, kHashes, 0, 4, "abc", 0, 0, EOK, "abc.########"},
    {"strcpy too long", kStrcpy, kHashes, 0, 4, "abcd", 0, 0, BND_ERANGE_RESET, ".###########"},
    {"strcpy empty", kStrcpy, kHashes, 0, 8, "", 0, 0, EOK, ".###########"},
    {"strncpy cut by count", kStrncpy, kHashes, 0, 8, "abcdef", 0, 3, EOK, "abc.########"},
    {"strncpy count past text", kStrncpy, kHashes, 0, 8, "abc", 0, 10, EOK, "abc.########"},
    {"strncpy cut fits", kStrncpy, kHashes, 0, 4, "abcdef", 0, 3, EOK, "abc.########"},
    {"strncpy cut too long", kStrncpy, kHashes, 0, 4, "abcdef", 0, 4, BND_ERANGE_RESET, ".###########"},
    {"strncpy huge count", kStrncpy, kHashes, 0, 4, "abcdef", 0, UINT64_MAX, BND_ERANGE_RESET, ".###########"},
    {"strncpy zero count", kStrncpy, kHashes, 0, 8, "abc", 0, 0, EOK, ".###########"},
    {"strcat", kStrcat, "ab.#########", 0, 8, "cde", 0, 0, EOK, "abcde.######"},
    {"strcat fits exactly", kStrcat, "ab.#########", 0, 6, "cde", 0, 0, EOK, "abcde.######"},
    {"strcat no room", kStrcat, "ab.#########", 0, 5, "cde", 0, 0, BND_ERANGE_RESET, ".b.#########"},
    {"strcat onto empty", kStrcat, ".###########", 0, 4, "abc", 0, 0, EOK, "abc.########"},
    {"strcat unterminated", kStrcat, kHashes, 0, 8, "c", 0, 0, BND_EINVAL_RESET, ".###########"},
    {"strcat NUL past capacity", kStrcat, "abcdefg.####", 0, 7, "h", 0, 0, BND_EINVAL_RESET, ".bcdefg.####"},
    {"strncat", kStrncat, "ab.#########", 0, 8, "cdef", 0, 2, EOK, "abcd.#######"},
    {"strncat fits exactly", kStrncat, "ab.#########", 0, 5, "cdef", 0, 2, EOK, "abcd.#######"},
    {"strncat no room", kStrncat, "ab.#########", 0, 4, "cdef", 0, 2, BND_ERANGE_RESET, ".b.#########"},
    {"strncat count past text", kStrncat, "ab.#########", 0, 8, "cd", 0, 10, EOK, "abcd.#######"},
    {"strncat zero count", kStrncat, "ab.#########", 0, 8, "cd", 0, 0, EOK, "ab.#########"},
    {"strncat unterminated", kStrncat, kHashes, 0, 8, "cd", 0, 1, BND_EINVAL_RESET, ".###########"},
    {"strcpy source above", kStrcpy, "abcdef.#########", 0, 8, nullptr, 2, 0, BND_EOVERLAP_RESET, ".bcdef.#########"},
    {"strcpy source below", kStrcpy, "abcdef.#########", 3, 8, nullptr, 0, 0, BND_EOVERLAP_RESET, "abc.ef.#########"},
    {"strcpy same address", kStrcpy, "abcdef.#########", 0, 8, nullptr, 0, 0, BND_EOVERLAP_RESET, ".bcdef.#########"},
    {"strcpy adjacent", kStrcpy, "abc.############", 4, 8, nullptr, 0, 0, EOK, "abc.abc.########"},
    {"strncpy cut clear of source", kStrncpy, "abcdef.#########", 4, 8, nullptr, 0, 3, EOK, "abcdabc.########"},
    {"strncpy cut onto source", kStrncpy, "abcdef.#########", 4, 8, nullptr, 0, 4, BND_EOVERLAP_RESET,
     "abcd.f.#########"},
    {"strcat itself", kStrcat, "ab.#############", 0, 8, nullptr, 0, 0, BND_EOVERLAP_RESET, ".b.#############"},
    {"strcat tail of own text", kStrcat, "abcd.###########", 0, 16, nullptr, 2, 0, BND_EOVERLAP_RESET,
     ".bcd.###########"},
    {"strcat source past NUL", kStrcat, "ab.cd.##########", 0, 16, nullptr, 3, 0, BND_EOVERLAP_RESET,
     ".b.cd.##########"},
    {"strcat source clear", kStrcat, "ab.#####cd.#####", 0, 8, nullptr, 8, 0, EOK, "abcd.###cd.#####"},
    {"strcat source below", kStrcat, "cd.ab.##########", 3, 8, nullptr, 0, 0, EOK, "cd.abcd.########"},
    {"strcat source runs into dest", kStrcat, "cdab.###########", 2, 8, nullptr, 0, 0, BND_EOVERLAP_RESET,
     "cd.b.###########"},
    {"strncat source inside own text", kStrncat, "abcd.###########", 0, 16, nullptr, 1, 1, BND_EOVERLAP_RESET,
     ".bcd.###########"},
    {"strncat cut clear", kStrncat, "ab.##cdef.######", 0, 5, nullptr, 5, 2, EOK, "abcd.cdef.######"},
    {"strncat cut onto source", kStrncat, "ab.##cdef.######", 0, 6, nullptr, 5, 3, BND_EOVERLAP_RESET,
     ".b.##cdef.######"},
};

TEST(BoundedCopy, CallTable)
{
    for (const CallRow& row : kCallRows) {
        SCOPED_TRACE(row.name);
        std::vector<char> bytes = arena(row.before);
        const char* src = row.src != nullptr ? row.src : bytes.data() + row.srcOff;
        EXPECT_EQ(row.call(bytes.data() + row.destOff, row.capacity, src, row.count), row.rc);
        EXPECT_EQ(shown(bytes), row.after);
    }
}

// Long texts are cut at the count, not at some internal buffer.
TEST(BoundedCopy, LongTextsAreCutAtTheCount)
{
    const std::string text(100, 't');
    char dest[80];
    std::memset(dest, '#', sizeof dest);
    EXPECT_EQ(strncpy_s(dest, 64, text.c_str(), 63), EOK);
    EXPECT_EQ(shown(dest, 65), std::string(63, 't') + ".#");
    std::memset(dest, '#', sizeof dest);
    EXPECT_EQ(snprintf_s(dest, 65, 64, " %s", text.c_str()), -1);
    EXPECT_EQ(shown(dest, 66), " " + std::string(63, 't') + ".#");
}

// ---------------------------------------------------------------------------
// Tokenizer.

struct TokenRow {
    const char* text;
    const char* delimiters;
    const char* tokens;  // joined with '|'
};

constexpr TokenRow kTokenRows[] = {
    {"a,b,,c", ",", "a|b|c"}, {",,,a,,b,,,", ",", "a|b"}, {"", ",", ""},        {",,,", ",", ""},
    {"abc", ",", "abc"},      {"abc", "", "abc"},         {"key=val; x = y", "=; ", "key|val|x|y"},
};

TEST(BoundedStrtok, SplitsOnRunsOfDelimiters)
{
    for (const TokenRow& row : kTokenRows) {
        SCOPED_TRACE(row.text);
        std::string text = row.text;
        std::string joined;
        char* context = nullptr;
        for (char* tok = strtok_s(text.data(), row.delimiters, &context); tok != nullptr;
             tok = strtok_s(nullptr, row.delimiters, &context)) {
            joined += joined.empty() ? "" : "|";
            joined += tok;
        }
        EXPECT_EQ(joined, row.tokens);
        EXPECT_EQ(strtok_s(nullptr, row.delimiters, &context), nullptr);  // stays exhausted
    }
}

// The delimiter is overwritten and the context carries on from after it;
// delimiters may change per call, and two contexts do not disturb each other.
TEST(BoundedStrtok, ContextsCarryOn)
{
    char first[] = "a=1,b=2";
    char second[] = "x,y";
    char* ctxFirst = nullptr;
    char* ctxSecond = nullptr;
    EXPECT_STREQ(strtok_s(first, "=", &ctxFirst), "a");
    EXPECT_STREQ(ctxFirst, "1,b=2");
    EXPECT_STREQ(strtok_s(second, ",", &ctxSecond), "x");
    EXPECT_STREQ(strtok_s(nullptr, ",", &ctxFirst), "1");
    EXPECT_STREQ(strtok_s(nullptr, ",", &ctxSecond), "y");
    EXPECT_STREQ(strtok_s(nullptr, "=", &ctxFirst), "b");
    EXPECT_STREQ(strtok_s(nullptr, "=", &ctxFirst), "2");
    EXPECT_EQ(strtok_s(nullptr, "=", &ctxFirst), nullptr);
    EXPECT_EQ(strtok_s(nullptr, ",", &ctxSecond), nullptr);
    EXPECT_EQ(shown(first, sizeof first), "a.1.b.2.");
}

TEST(BoundedStrtok, AbsentArgumentsGiveNothing)
{
    char text[] = "a,b";
    char* context = nullptr;
    EXPECT_EQ(strtok_s(text, nullptr, &context), nullptr);
    EXPECT_EQ(strtok_s(text, ",", nullptr), nullptr);
    EXPECT_EQ(strtok_s(nullptr, ",", &context), nullptr);  // nothing to continue from
    EXPECT_EQ(shown(text, sizeof text), "a,b.");
}

// ---------------------------------------------------------------------------
// Formatting. The output "ab-42" has 5 characters.

struct FormatRow {
    bool counted;  // snprintf_s with `count`, else sprintf_s
    uint64_t capacity;
    uint64_t count;
    int rc;
    const char* after;  // 8 bytes
};

constexpr FormatRow kFormatRows[] = {
    {false, 16, 0, 5, "ab-42.##"},
    {false, 6, 0, 5, "ab-42.##"},
    {false, 5, 0, -1, ".b-4.###"},  // vsnprintf wrote "ab-4" before the reset
    {false, 1, 0, -1, ".#######"},
    {true, 16, 16, 5, "ab-42.##"},
    {true, 16, 5, 5, "ab-42.##"},
    {true, 6, 5, 5, "ab-42.##"},
    {true, 6, 99, 5, "ab-42.##"},
    {true, 16, 4, -1, "ab-4.###"},  // cut by count, kept
    {true, 4, 10, -1, "ab-.####"},  // cut by capacity, kept
    {true, 16, 0, -1, ".#######"},
    {true, 1, 10, -1, ".#######"},
};

TEST(BoundedFormat, FormatTable)
{
    for (const FormatRow& row : kFormatRows) {
        SCOPED_TRACE(testing::Message() << (row.counted ? "snprintf" : "sprintf") << " cap " << row.capacity
                                        << " count " << row.count);
        std::vector<char> dest = arena("########");
        EXPECT_EQ(row.counted ? snprintf_s(dest.data(), row.capacity, row.count, "%s-%d", "ab", 42)
                              : sprintf_s(dest.data(), row.capacity, "%s-%d", "ab", 42),
                  row.rc);
        EXPECT_EQ(shown(dest), row.after);
    }
}

TEST(BoundedFormat, InvalidArgumentsGiveMinusOne)
{
    const char* noFormat = nullptr;
    char dest[4] = {'#', '#', '#', '#'};

    EXPECT_EQ(sprintf_s(dest, 0, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(dest, kOverMax, "%d", 1), -1);
    EXPECT_EQ(snprintf_s(dest, 0, 2, "%d", 1), -1);
    EXPECT_EQ(snprintf_s(dest, kOverMax, 2, "%d", 1), -1);
    EXPECT_EQ(shown(dest, sizeof dest), "####");  // capacity unknown: not touched
    EXPECT_EQ(sprintf_s(nullptr, 4, "%d", 1), -1);
    EXPECT_EQ(snprintf_s(nullptr, 4, 2, "%d", 1), -1);

    EXPECT_EQ(sprintf_s(dest, 4, noFormat, 1), -1);
    EXPECT_EQ(shown(dest, sizeof dest), ".###");
    dest[0] = '#';
    EXPECT_EQ(snprintf_s(dest, 4, 2, noFormat, 1), -1);
    EXPECT_EQ(shown(dest, sizeof dest), ".###");
}

}  // namespace
