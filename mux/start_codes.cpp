// start_codes.cpp: finds start codes of MPEG video by the one byte of their prefix that is rare.

#include "mux/start_codes.h"

#include <cstring>

uint64_t orvFindStartCode(const uint8_t* data, uint64_t from, uint64_t limit)
{
    uint64_t at = from + 2;
    while (at < limit) {
        const void* found = std::memchr(data + at, 0x01, limit - at);
        if (!found) return limit;
        at = uint64_t(static_cast<const uint8_t*>(found) - data);
        if (data[at - 1] == 0 && data[at - 2] == 0) return at - 2;
        at += 3;   // a prefix that ends sooner would need a 0 here
    }
    return limit;
}
