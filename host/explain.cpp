// explain.cpp: what a result code means and where to look, for people.
#include "explain.h"

#include "codes.h"
#include "text.h"

#include <charconv>

struct Explanation {
    uint64_t id;
    const char* text;
};

static const Explanation EXPLANATIONS[] = {
#define EXPLAIN(id, text) { id, text },
#include "explain_texts.inc"
#undef EXPLAIN
};

static constexpr uint64_t LIBRARY_IDS = 10000;   // ids of the library's messages end below this

static bool parseDigits(std::string_view digits, int base, uint64_t* number)
{
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, *number, base);
    return !digits.empty() && error == std::errc() && stop == end;
}

bool parseCode(const std::string& text, uint64_t* code)
{
    std::string_view digits = text;
    if (digits.starts_with("0x") || digits.starts_with("0X")) return parseDigits(digits.substr(2), 16, code);
    const bool negative = digits.starts_with("-");
    if (negative) digits.remove_prefix(1);
    if (!parseDigits(digits, 10, code)) return false;
    if (negative) *code = 0 - *code;
    // Numbers from 1000 on are the messages', as the texts themselves give them; below are the platform's.
    const bool message = !negative && *code >= 1000 && *code < LIBRARY_IDS;
    if (message) *code = libraryCode(*code);
    return true;
}

static bool isLibraryCode(uint64_t code)
{
    return code >= libraryCode(0) && code < libraryCode(LIBRARY_IDS);
}

std::string ownText(uint64_t code)
{
    switch (code) {
    case 0: return "success";
    case CODE_INVALID_ARGUMENT: return "a file has not the form that it should have, or an argument was invalid";
    case CODE_AUDIO_STREAMS: return "more than 8 audio streams";
    case CODE_TOO_MANY_TRACKS: return "too many tracks";
    case CODE_AOB_UNDERRUN: return "the decoder would run dry";
    case CODE_TITLE_SET_SKIPPED: return "a title set is skipped";
    case CODE_NO_PACK: return "a pack does not begin with the pack start code";
    case CODE_BASE_ARGUMENT: return "an argument was invalid";
    case CODE_BASE_MEMORY: return "out of memory";
    case CODE_SHORT_READ: return "a file is shorter than it should be";
    case CODE_NOTHING_SCANNED: return "the sources of a title hold no whole sector of 2048 bytes";
    case CODE_EXTRACT_MANAGER_UNREAD: return "VIDEO_TS.IFO can't be read";
    case CODE_EXTRACT_TITLE_SET_UNREAD: return "VTS_01_0.IFO can't be read";
    case CODE_EXTRACT_MANAGER: return "VIDEO_TS.IFO is no table of a disc's manager";
    case CODE_EXTRACT_TITLE_SET: return "VTS_01_0.IFO is no table of a title set";
    case CODE_EXTRACT_NO_LPCM: return "the sound of the first title set is not LPCM";
    case CODE_EXTRACT_NOT_OPEN: return "no disc is open";
    default: return "";
    }
}

std::string resultLine(uint64_t code, const std::string& text)
{
    const std::string own = ownText(code);
    std::string line = own.empty() ? text : own;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == ' ')) line.pop_back();
    if (line.empty()) line = "a result without a text";
    if (code == 0) return line;
    return line + (isPlatformCode(code) ? " (system error " + std::to_string(code) + ")" : " (" + hexCode(code) + ")");
}

std::string shortCode(uint64_t code)
{
    const bool message = isLibraryCode(code) && code >= libraryCode(1000);
    return message                ? std::to_string(code - libraryCode(0))
           : isPlatformCode(code) ? std::to_string(code)
                                  : hexCode(code);
}

static std::string familyText(uint64_t id)
{
    if (id >= 3000 && id < 4000) return "A result of the multiplexer.";
    if (id >= 4000 && id < 6000) return "A result of the functions that read finished discs.";
    if (id >= 6000 && id < 7000) return "A result of DVD-Audio authoring.";
    if (id >= 7000 && id < 8000) return "A result of the extraction of DVD-Audio tracks.";
    return "";
}

std::string explanation(uint64_t code)
{
    switch (code) {
    case 0: return "The run has done all that the project asked for.";
    case CODE_NOTHING_SCANNED:
        return "A title's `source` files must be finished program streams of 2048-byte packs; these are empty or far "
               "too short. Look at the size of the files that the project names.";
    case CODE_SHORT_READ:
        return "A file ended early. Often a bitmap or a stream file is cut: look at the menus' files.";
    case CODE_BASE_ARGUMENT:
        return "A routine of the library was handed something that it can't take. Often a file has not the form that "
               "its "
               "key promises.";
    case CODE_BASE_MEMORY: return "The system has no memory left for the library.";
    default: break;
    }
    if (isPlatformCode(code)) {
        return "A number of the operating system, passed on as it is. Often a file that the project names is missing "
               "or "
               "not permitted.";
    }
    if (!isLibraryCode(code)) return "";
    for (const Explanation& row : EXPLANATIONS) {
        if (libraryCode(row.id) == code) return row.text;
    }
    return familyText(code - libraryCode(0));
}
