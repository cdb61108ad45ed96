// raw_chapters_rig.h: navigation packs as bytes, a project with chapters, and one call with its answer.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <string>
#include <string_view>

/** What the out arguments hold before a call. */
inline constexpr uint64_t UNTOUCHED = 0x5A5A5A5A5A5A5A5A;

// The fields of a navigation pack that the call looks at.
struct PackFields {
    const char* position = "00 00 00 00";   // byte 1031
    const char* unitEnd = "00 00 00 07";    // byte 1039
    const char* cell = "01";                // byte 1058
    const char* videoEnd = "00 01 5F 90";   // byte 61
    const char* movieEnd = "00 00 00 00";   // byte 65
};

/** A pack whose other bytes are all different from what the call looks for, and from their neighbours. */
Bytes makeNavPack(const PackFields& fields = {});
/** Bytes given as hex text in the place of those at an offset. */
void setBytes(Bytes& bytes, uint64_t at, std::string_view hex);
/** `00 01 5F 90` for 90000. */
std::string hexOf(uint32_t value);

struct Answer {
    uint64_t result, nextVobu, changed;
    Bytes sector;
};

// A project file in a folder of its own.
struct ChapterProject {
    ChapterProject() = default;
    explicit ChapterProject(std::string_view text);

    Answer ask(const Bytes& sector, uint64_t titleSet = 1) const;
    Answer askNarrow(const Bytes& sector, uint64_t titleSet = 1) const;

    TempDir dir;
    std::u16string path = dir / u"project.ini";
};
