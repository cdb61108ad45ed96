// messages.cpp: the texts of result codes, for hosts: the library's from messages.inc, others from the platform.
#include "base/files.h"
#include "base/strings.h"

#include <orven/results.h>

#include <algorithm>
#include <iterator>

namespace {

struct Message {
    uint16_t id;
    const char* text;   // ASCII
};

#define ORV_MESSAGE(id, name, text) { id, text },
constexpr Message MESSAGES[] = {
#include "base/messages.inc"
};
#undef ORV_MESSAGE

constexpr bool ascending(const Message* first, const Message* end)
{
    return std::adjacent_find(first, end, [](const Message& a, const Message& b) { return a.id >= b.id; }) == end;
}
static_assert(ascending(std::begin(MESSAGES), std::end(MESSAGES)));   // the look-up is a binary search

constexpr uint32_t LIBRARY_MASK = 0x0FFF0000;   // these bits tell a library code ...
constexpr uint32_t LIBRARY_BITS = 0x04000000;   // ... when they are so; the id is what lies below them
constexpr uint64_t TEXT_ROOM = 4096;            // characters; no text of the platform comes near

const char* messageText(uint32_t id)
{
    const auto* found = std::lower_bound(std::begin(MESSAGES), std::end(MESSAGES), id,
                                         [](const Message& message, uint32_t wanted) { return message.id < wanted; });
    return found != std::end(MESSAGES) && found->id == id ? found->text : "";
}

// Text of a code with its terminator, and its length. A library text is cut to room, another one is empty if it doesn't
// fit. room is 1 to TEXT_ROOM.
uint64_t textOf(uint64_t code, char16_t* text, uint64_t room)
{
    const auto low = uint32_t(code);
    uint64_t length = 0;
    if ((low & LIBRARY_MASK) == LIBRARY_BITS) {
        const char* source = messageText(low & 0xFFFF);
        while (source[length] && length + 1 < room) {
            text[length] = char16_t(source[length]);
            length++;
        }
    } else {
        length = osSystemText(low, text, room);
    }
    text[length] = 0;
    return length;
}

}   // namespace

extern "C" {

ORV_API uint64_t ErrorToStringW(uint64_t code, OrvWChar* buffer, uint64_t bufferLength)
{
    if (!buffer || bufferLength == 0) return 0;
    char16_t text[TEXT_ROOM];
    const uint64_t length = textOf(code, text, std::min(bufferLength, TEXT_ROOM));
    for (uint64_t i = 0; i <= length; i++) buffer[i] = OrvWChar(text[i]);
    return 0;
}

ORV_API uint64_t ErrorToString(uint64_t code, char* buffer, uint64_t bufferLength)
{
    if (!buffer || bufferLength == 0) return 0;
    char16_t text[TEXT_ROOM];
    (void)textOf(code, text, std::min(bufferLength, TEXT_ROOM));
    if (osWideToAnsi(buffer, text, nullptr, bufferLength)) buffer[0] = 0;   // more bytes than characters, and too many
    return 0;
}

ORV_API uint64_t GetServiceInfo(void)
{
    return 0;
}
}
