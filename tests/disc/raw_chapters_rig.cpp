#include "tests/disc/raw_chapters_rig.h"

#include "base/wide.h"

#include <orven/disc.h>

#include <algorithm>
#include <filesystem>
#include <memory>

Bytes makeNavPack(const PackFields& fields)
{
    Bytes pack(2048);
    for (uint64_t i = 0; i < pack.size(); i++) pack[i] = uint8_t(i * 29 + (i >> 8) + 3);
    setBytes(pack, 0, "00 00 01 BA");
    setBytes(pack, 14, "FF FF 01 BB");   // the two bytes before do not count
    setBytes(pack, 38, "FF FF 01 BF");
    setBytes(pack, 61, fields.videoEnd);
    setBytes(pack, 65, fields.movieEnd);
    setBytes(pack, 1031, fields.position);
    setBytes(pack, 1039, fields.unitEnd);
    setBytes(pack, 1058, fields.cell);
    return pack;
}

void setBytes(Bytes& bytes, uint64_t at, std::string_view hex)
{
    const Bytes values = fromHex(hex);
    std::copy(values.begin(), values.end(), bytes.begin() + ptrdiff_t(at));
}

std::string hexOf(uint32_t value)
{
    return toHex({ uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value) });
}

ChapterProject::ChapterProject(std::string_view text)
{
    writeFile(path, text);
}

// The sector lies in a block of just its size, so that a sanitizer sees a step beside it.
template <class Call> static Answer answerOf(const Bytes& sector, const Call& call)
{
    const auto block = std::make_unique<uint8_t[]>(2048);
    std::copy_n(sector.begin(), 2048, block.get());
    Answer answer = { 0, UNTOUCHED, UNTOUCHED, {} };
    answer.result = call(block.get(), &answer.nextVobu, &answer.changed);
    answer.sector.assign(block.get(), block.get() + 2048);
    return answer;
}

Answer ChapterProject::ask(const Bytes& sector, uint64_t titleSet) const
{
    return answerOf(sector, [&](uint8_t* bytes, uint64_t* next, uint64_t* changed) {
        return SetRawChapterW(bytes, orvHostText(path.c_str()), titleSet, next, changed);
    });
}

Answer ChapterProject::askNarrow(const Bytes& sector, uint64_t titleSet) const
{
    const std::string narrow = std::filesystem::path(path).string();
    return answerOf(sector, [&](uint8_t* bytes, uint64_t* next, uint64_t* changed) {
        return SetRawChapter(bytes, narrow.c_str(), titleSet, next, changed);
    });
}
