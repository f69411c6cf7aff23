// Bounded memory and string routines. Every routine takes the destination's
// capacity, refuses to write past it and reports what went wrong with a code;
// on most failures the destination is reset so that no half result survives.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

enum : int32_t {
    EOK = 0,
    BND_EINVAL = 22,         // destination absent: untouched
    BND_ERANGE = 34,         // capacity 0 or above BND_MAX_CAPACITY: untouched
    BND_EINVAL_RESET = 150,  // source absent (or no terminator): destination reset
    BND_ERANGE_RESET = 162,  // result does not fit: destination reset
    BND_EOVERLAP_RESET = 182,  // source and destination overlap: destination reset
};

inline constexpr uint64_t BND_MAX_CAPACITY = 0x7FFFFFFF;

int32_t memcpy_s(void* dest, uint64_t capacity, const void* src, uint64_t count);
int32_t memset_s(void* dest, uint64_t capacity, int byte, uint64_t count);
int32_t strcpy_s(char* dest, uint64_t capacity, const char* src);
int32_t strncpy_s(char* dest, uint64_t capacity, const char* src, uint64_t count);
int32_t strcat_s(char* dest, uint64_t capacity, const char* src);
int32_t strncat_s(char* dest, uint64_t capacity, const char* src, uint64_t count);
char* strtok_s(char* text, const char* delimiters, char** context);
int sprintf_s(char* dest, uint64_t capacity, const char* format, ...) __attribute__((format(printf, 3, 4)));
int vsprintf_s(char* dest, uint64_t capacity, const char* format, va_list args) __attribute__((format(printf, 3, 0)));
int snprintf_s(char* dest, uint64_t capacity, uint64_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
int vsnprintf_s(char* dest, uint64_t capacity, uint64_t count, const char* format, va_list args)
    __attribute__((format(printf, 4, 0)));
