// wide.h: the host's wide text as the engine's own, and back. Both are UTF-16 units of 16 bits; only the type's name
// differs.
#pragma once

#include <orven/types.h>

[[nodiscard]] inline const char16_t* orvText(const OrvWChar* text)
{
    static_assert(sizeof(OrvWChar) == sizeof(char16_t));
    return reinterpret_cast<const char16_t*>(text);
}

[[nodiscard]] inline const OrvWChar* orvHostText(const char16_t* text)
{
    static_assert(sizeof(OrvWChar) == sizeof(char16_t));
    return reinterpret_cast<const OrvWChar*>(text);
}
