#include "bounded/bounded.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

bool capacityInvalid(uint64_t capacity) { return capacity == 0 || capacity > BND_MAX_CAPACITY; }

// Compares addresses as integers: the two ranges may belong to unrelated
// objects, where relational operators on pointers are not defined.
bool rangesOverlap(const void* a, uint64_t aLen, const void* b, uint64_t bLen)
{
    const auto aBegin = reinterpret_cast<uintptr_t>(a);
    const auto bBegin = reinterpret_cast<uintptr_t>(b);
    return aLen != 0 && bLen != 0 && aBegin < bBegin + bLen && bBegin < aBegin + aLen;
}

int32_t resetMemory(void* dest, uint64_t capacity, int32_t code)
{
    std::memset(dest, 0, capacity);
    return code;
}

int32_t resetString(char* dest, int32_t code)
{
    dest[0] = '\0';
    return code;
}

// Common tail of the two copy routines once the source is known to hold
// `length` characters that fit with their terminator.
int32_t copyText(char* dest, const char* src, uint64_t length)
{
    if (rangesOverlap(dest, length + 1, src, length + 1)) {
        return resetString(dest, BND_EOVERLAP_RESET);
    }
    std::memcpy(dest, src, length);
    dest[length] = '\0';
    return EOK;
}

// Common body of the two appending routines; `limit` is the most characters
// of src the caller allows (count for strncat_s, unlimited for strcat_s).
int32_t appendText(char* dest, uint64_t capacity, const char* src, uint64_t limit)
{
    const uint64_t destLen = strnlen(dest, capacity);
    if (destLen == capacity) {
        return resetString(dest, BND_EINVAL_RESET);
    }
    const uint64_t room = capacity - destLen;  // includes the byte for the terminator
    const uint64_t srcLen = strnlen(src, std::min(limit, room));
    if (srcLen == room) {
        return resetString(dest, BND_ERANGE_RESET);
    }
    // The whole result, old text included, must stay clear of the source:
    // a source inside the old text would lose its terminator to the copy.
    if (rangesOverlap(dest, destLen + srcLen + 1, src, srcLen + 1)) {
        return resetString(dest, BND_EOVERLAP_RESET);
    }
    std::memcpy(dest + destLen, src, srcLen);
    dest[destLen + srcLen] = '\0';
    return EOK;
}

// The checks the copying and appending routines open with: EOK when the
// operation may go on, else the code to return (a null source also clears
// the destination).
int32_t checkStringArgs(char* dest, uint64_t capacity, const char* src)
{
    if (capacityInvalid(capacity)) {
        return BND_ERANGE;
    }
    if (dest == nullptr) {
        return BND_EINVAL;
    }
    if (src == nullptr) {
        return resetString(dest, BND_EINVAL_RESET);
    }
    return EOK;
}

}  // namespace

int32_t memcpy_s(void* dest, uint64_t capacity, const void* src, uint64_t count)
{
    if (capacityInvalid(capacity)) {
        return BND_ERANGE;
    }
    if (dest == nullptr) {
        return BND_EINVAL;
    }
    if (src == nullptr) {
        return resetMemory(dest, capacity, BND_EINVAL_RESET);
    }
    if (count > capacity) {
        return resetMemory(dest, capacity, BND_ERANGE_RESET);
    }
    if (dest == src) {
        return EOK;
    }
    if (rangesOverlap(dest, count, src, count)) {
        return resetMemory(dest, capacity, BND_EOVERLAP_RESET);
    }
    std::memcpy(dest, src, count);
    return EOK;
}

int32_t memset_s(void* dest, uint64_t capacity, int byte, uint64_t count)
{
    if (capacityInvalid(capacity)) {
        return BND_ERANGE;
    }
    if (dest == nullptr) {
        return BND_EINVAL;
    }
    std::memset(dest, byte, std::min(count, capacity));
    return count > capacity ? BND_ERANGE_RESET : EOK;
}

int32_t strcpy_s(char* dest, uint64_t capacity, const char* src)
{
    return strncpy_s(dest, capacity, src, capacity);
}

int32_t strncpy_s(char* dest, uint64_t capacity, const char* src, uint64_t count)
{
    if (const int32_t ret = checkStringArgs(dest, capacity, src); ret != EOK) {
        return ret;
    }
    // Never read more of src than could fit: a length equal to the capacity
    // already leaves no byte for the terminator.
    const uint64_t length = strnlen(src, std::min(count, capacity));
    if (length == capacity) {
        return resetString(dest, BND_ERANGE_RESET);
    }
    return copyText(dest, src, length);
}

int32_t strcat_s(char* dest, uint64_t capacity, const char* src)
{
    return strncat_s(dest, capacity, src, capacity);
}

int32_t strncat_s(char* dest, uint64_t capacity, const char* src, uint64_t count)
{
    if (const int32_t ret = checkStringArgs(dest, capacity, src); ret != EOK) {
        return ret;
    }
    return appendText(dest, capacity, src, count);
}

char* strtok_s(char* text, const char* delimiters, char** context)
{
    if (delimiters == nullptr || context == nullptr) {
        return nullptr;
    }
    char* cursor = text != nullptr ? text : *context;
    if (cursor == nullptr) {
        return nullptr;
    }
    cursor += std::strspn(cursor, delimiters);
    if (*cursor == '\0') {
        *context = cursor;
        return nullptr;
    }
    char* token = cursor;
    cursor += std::strcspn(cursor, delimiters);
    if (*cursor != '\0') {
        *cursor++ = '\0';
    }
    *context = cursor;
    return token;
}

int sprintf_s(char* dest, uint64_t capacity, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int written = vsprintf_s(dest, capacity, format, args);
    va_end(args);
    return written;
}

int vsprintf_s(char* dest, uint64_t capacity, const char* format, va_list args)
{
    if (capacityInvalid(capacity) || dest == nullptr) {
        return -1;
    }
    if (format == nullptr) {
        dest[0] = '\0';
        return -1;
    }
    const int written = std::vsnprintf(dest, capacity, format, args);
    if (written < 0 || static_cast<uint64_t>(written) >= capacity) {
        dest[0] = '\0';
        return -1;
    }
    return written;
}

int snprintf_s(char* dest, uint64_t capacity, uint64_t count, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int written = vsnprintf_s(dest, capacity, count, format, args);
    va_end(args);
    return written;
}

int vsnprintf_s(char* dest, uint64_t capacity, uint64_t count, const char* format, va_list args)
{
    if (capacityInvalid(capacity) || dest == nullptr) {
        return -1;
    }
    if (format == nullptr) {
        dest[0] = '\0';
        return -1;
    }
    // Unlike vsprintf_s, a cut result is kept: the caller asked for at most
    // `limit` characters and gets them, with -1 telling that more existed.
    const uint64_t limit = std::min(count, capacity - 1);
    const int written = std::vsnprintf(dest, limit + 1, format, args);
    if (written < 0) {
        dest[0] = '\0';
        return -1;
    }
    return static_cast<uint64_t>(written) > limit ? -1 : written;
}
