// Payload and request-code decoding of the simulated driver.
#include "model.h"

#include <cstring>

namespace cvsim {

SimCode DecodeCode(unsigned long code)
{
    SimCode c{};
    c.dir = static_cast<uint32_t>((code >> 30) & 0x3);
    c.size = static_cast<uint32_t>((code >> 16) & 0x3FFF);
    c.type = static_cast<uint32_t>((code >> 8) & 0xFF);
    c.nr = static_cast<uint32_t>(code & 0xFF);
    return c;
}

void SimPayload::outOfBounds(size_t off, size_t width) const
{
    throw SimError("payload access at " + std::to_string(off) + "+" + std::to_string(width) + " beyond its " +
                   std::to_string(m_size) + " bytes");
}

void SimPayload::zero(size_t off, size_t len)
{
    check(off, len);
    std::memset(m_base + off, 0, len);
}

void SimPayload::setText(size_t off, size_t len, std::string_view text)
{
    check(off, len);
    if (text.size() > len) {
        throw SimError("text \"" + std::string(text) + "\" longer than its " + std::to_string(len) +
                       "-byte field");
    }
    std::memset(m_base + off, 0, len);
    std::memcpy(m_base + off, text.data(), text.size());
}

void PutWireTime(SimPayload& p, size_t off, std::time_t t)
{
    std::tm tm{};
    if (gmtime_r(&t, &tm) == nullptr || tm.tm_year + 1900 < 0 || tm.tm_year + 1900 > 0xFFFF) {
        throw SimError("time " + std::to_string(static_cast<long long>(t)) + " cannot be expressed");
    }
    p.setU16(off, static_cast<uint16_t>(tm.tm_year + 1900));
    p.setU8(off + 2, static_cast<uint8_t>(tm.tm_mon + 1));
    p.setU8(off + 3, static_cast<uint8_t>(tm.tm_mday));
    p.setU8(off + 4, static_cast<uint8_t>(tm.tm_hour));
    p.setU8(off + 5, static_cast<uint8_t>(tm.tm_min));
    p.setU8(off + 6, static_cast<uint8_t>(tm.tm_sec));
}

}  // namespace cvsim
