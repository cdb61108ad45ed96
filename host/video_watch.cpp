// video_watch.cpp: counts the pictures of MPEG video while it passes, and finds what the multiplexer can't time.
#include "video_watch.h"

#include "codes.h"

#include <cstring>

static constexpr uint8_t CODE_PICTURE = 0x00, CODE_SEQUENCE = 0xB3, CODE_EXTENSION = 0xB5, CODE_END = 0xB7,
                         CODE_GROUP = 0xB8;
static constexpr uint64_t HEADER_BYTES = 8;   // what is looked at of a header, its start code too

static constexpr uint8_t TYPE_I = 1, PICTURE_EXTENSION = 8, WHOLE_FRAME = 3;

static std::string number(uint64_t picture)
{
    return "picture " + std::to_string(picture);
}

static std::string takePicture(VideoWatch* watch, const uint8_t* header)
{
    const bool intra = (header[5] >> 3 & 7) == TYPE_I;
    watch->pictures++;
    const bool opens = watch->groupOpens;
    watch->groupOpens = false;
    if (opens) return "";
    if (watch->pictures == 1) return "no group header (00 00 01 B8) stands in front of its first picture";
    return intra ? number(watch->pictures) + " is an I picture without a group header (00 00 01 B8); it can't be timed"
                 : "";
}

static std::string takeExtension(const VideoWatch* watch, const uint8_t* header)
{
    constexpr uint8_t REPEATS_FIELD = 0x02;
    if (header[4] >> 4 != PICTURE_EXTENSION) return "";
    if ((header[6] & 3) != WHOLE_FRAME)
        return number(watch->pictures) + " is a single field; only whole frames can be timed";
    if (header[7] & REPEATS_FIELD)
        return number(watch->pictures) + " repeats a field (film at 24 a second); only frames of even length can be "
                                         "timed: encode the film with its fields repeated";
    return "";
}

static std::string takeSequence(VideoWatch* watch, const uint8_t* header)
{
    const uint8_t rate = header[7] & 0x0F;
    if (watch->rateCode == 0) watch->rateCode = rate;
    return rate == watch->rateCode ? ""
                                   : "behind " + number(watch->pictures) + " its number of pictures a second changes";
}

static std::string takeHeader(VideoWatch* watch, const uint8_t* header)
{
    if (watch->ended) return "it goes on behind a sequence end code (00 00 01 B7): cut it there";
    switch (header[3]) {
    case CODE_PICTURE: return takePicture(watch, header);
    case CODE_SEQUENCE: return takeSequence(watch, header);
    case CODE_EXTENSION: return takeExtension(watch, header);
    case CODE_GROUP: watch->groupOpens = true; return "";
    case CODE_END: watch->ended = true; return "";
    default: return "";
    }
}

void watchVideo(VideoWatch* watch, const uint8_t* data, uint64_t size)
{
    std::vector<uint8_t>& joined = watch->kept;
    joined.insert(joined.end(), data, data + size);
    watch->bytes += size;
    if (joined.size() < HEADER_BYTES) return;
    const uint64_t last = joined.size() - HEADER_BYTES;   // at which a header can still be seen whole
    const uint8_t* bytes = joined.data();
    for (uint64_t at = 0; at <= last; at++) {
        const void* one = std::memchr(bytes + at + 2, 0x01, last - at + 1);
        if (!one) break;
        at = uint64_t(static_cast<const uint8_t*>(one) - bytes) - 2;
        if (bytes[at] != 0 || bytes[at + 1] != 0) continue;
        std::string why = takeHeader(watch, bytes + at);
        if (!watch->fault && !why.empty()) watch->fault = { 0, why };
    }
    joined.erase(joined.begin(), joined.begin() + std::ptrdiff_t(last + 1));
}
