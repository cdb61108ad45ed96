// spoiled.cpp: spoils project files.
#include "spoiled.h"

#include <cstdint>

std::string spoiled(std::string text, std::mt19937& chance)
{
    static const char bytes[] = "0123456789,,.():;= \t\f\x01\"'xA[]\n\r\xC3";
    for (uint64_t changes = 1 + chance() % 3; changes > 0; changes--) {
        const size_t at = chance() % text.size();
        const char byte = bytes[chance() % (sizeof bytes - 1)];
        const size_t line = text.rfind('\n', at) == text.npos ? 0 : text.rfind('\n', at) + 1;
        switch (chance() % 4) {
        case 0: text[at] = byte; break;
        case 1: text.insert(at, 1, byte); break;
        case 2: text.erase(at, 1 + chance() % 3); break;
        default: text.erase(line, text.find('\n', line) - line); break;
        }
    }
    return text;
}
