// Handle and streams of the multiplexer: what each kind's record begins with, slots, identifiers, refusals.
#include "base/memory.h"
#include "base/result.h"
#include "mux/ring.h"
#include "mux/stream_kinds.h"
#include "tests/mux/mux_host.h"
#include "tests/mux/mux_rig.h"
#include "tests/support/elementary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

typedef std::basic_string<OrvWChar> WidePath;

WidePath widePath(const std::u16string& path)
{
    return WidePath(path.begin(), path.end());
}

uint64_t refuse(uint64_t, const uint8_t*, uint64_t)
{
    return 5;
}

TEST(Registry, NewHandle)
{
    MuxContext* handle = nullptr;
    ASSERT_EQ(InitMuxer(&handle, refuse, 0x1122334455667788), 0u);
    EXPECT_EQ(handle->mode, 0u);
    EXPECT_EQ(handle->freeVideoSlots, 1u);
    EXPECT_EQ(handle->freeAudioSlots, 8u);
    EXPECT_EQ(handle->freeSubPictureSlots, 32u);
    EXPECT_EQ(handle->streamCount, 0u);
    EXPECT_EQ(osMemSize(handle->outBuffer), 0x200000u);
    EXPECT_EQ(handle->outPending, 0u);
    EXPECT_EQ(handle->packCount, 0u);
    EXPECT_EQ(handle->started, 0u);
    EXPECT_EQ(handle->clock, 0u);
    EXPECT_EQ(handle->refEndCount, 0u);
    EXPECT_EQ(handle->writeCallback, &refuse);
    EXPECT_EQ(handle->writeUser, 0x1122334455667788u);
    for (const MuxStream* stream : handle->streams) EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(ExitMuxer(handle), 0u);
}

TEST(Registry, NullHandles)
{
    EXPECT_EQ(InitMuxer(nullptr, refuse, 0), 0x84000057u);
    MuxStream* stream = nullptr;
    EXPECT_EQ(AddStream(nullptr, 0, ORV_MUX_AC3, &stream), 0x84000057u);
    EXPECT_EQ(stream, nullptr);
    const WidePath path = widePath(u"none");
    EXPECT_EQ(AddFileStream(nullptr, path.c_str(), ORV_MUX_AC3, &stream), 0x84000057u);
}

struct KindCase {
    const char* what;
    uint64_t flags, kind, streamId, subStreamId, stdSize, stdScale, stdBound, unitTicks, watermark;
    bool table, scratch, timed, next;
};

// clang-format off
const KindCase KINDS[] = {
    // what                      flags  kind  ids         model   P-STD     ticks  watermark  table  scratch timed  next
    { "video in units",          0x08,   2,   0xE0, 0,    237568, 1, 232,   3600,  0x20000,   true,  false, false, true  },
    { "video in any chunks",     0x400,  4,   0xE0, 0,    237568, 1, 232,   3600,  0x20000,   true,  false, true,  true  },
    { "LPCM",                    0x10,   8,   0xBD, 0xA0, 4096,   1, 58,    150,   0x20000,   false, false, false, false },
    { "LPCM, the other flag",    0x20,   8,   0xBD, 0xA0, 4096,   1, 58,    150,   0x20000,   false, false, false, false },
    { "MPEG audio",              0x40,   9,   0xC0, 0,    4096,   0, 32,    2160,  0x4000,    false, true,  true,  false },
    { "AC-3",                    0x80,   10,  0xBD, 0x80, 4096,   1, 58,    2880,  0x4000,    false, true,  false, false },
    { "AC-3 with a table",       0x800,  13,  0xBD, 0x80, 4096,   1, 58,    2880,  0x4000,    true,  false, true,  false },
};
// clang-format on

TEST(Registry, RecordOfEachKind)
{
    for (const KindCase& each : KINDS) {
        SCOPED_TRACE(each.what);
        MuxHost host;
        const MuxStream* stream = host.add(each.flags);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(stream->kind, each.kind);
        EXPECT_EQ(stream->streamId, each.streamId);
        EXPECT_EQ(stream->subStreamId, each.subStreamId);
        EXPECT_EQ(stream->stdSize, each.stdSize);
        EXPECT_EQ(stream->stdScale, each.stdScale);
        EXPECT_EQ(stream->stdBound, each.stdBound);
        EXPECT_EQ(stream->unitTicks, each.unitTicks);
        EXPECT_EQ(stream->ring->watermark, each.watermark);
        EXPECT_EQ(stream->unitTable != nullptr, each.table);
        EXPECT_EQ(osMemSize(stream->unitTable), each.table ? 0 : ~uint64_t(0));
        EXPECT_EQ(stream->readScratch != nullptr, each.scratch);
        EXPECT_EQ(osMemSize(stream->readScratch), each.scratch ? 16384 : ~uint64_t(0));
        EXPECT_EQ(stream->parseTimed != nullptr, each.timed);
        EXPECT_EQ(stream->nextUnitAt != nullptr, each.next);
        EXPECT_NE(stream->planPack, nullptr);
        EXPECT_NE(stream->unitBytesAt, nullptr);
        EXPECT_NE(stream->unitAt, nullptr);
        EXPECT_NE(stream->unitTimes, nullptr);
        EXPECT_NE(stream->parse, nullptr);
        EXPECT_EQ(stream->sourceMode, 1u);
        EXPECT_EQ(stream->stdFill + stream->bytesPacked + stream->unitsDecoded, 0u);
        EXPECT_EQ(stream->headerSeen + stream->bytesIn + stream->unitCount + stream->groupCount, 0u);
        EXPECT_EQ(stream->file, 0u);
    }
}

TEST(Registry, LookBackOfVideoMatchesNothing)
{
    MuxHost host;
    EXPECT_EQ(toHex(host.add(ORV_MUX_VIDEO)->lookBack, 16), "FF FF FF FF FF FF FF FF 00 00 00 00 00 00 00 00");
    MuxHost other;
    EXPECT_EQ(toHex(other.add(ORV_MUX_VIDEO_UNITS)->lookBack, 16), "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST(Registry, RecordOfASubPicture)
{
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    const MuxStream* stream = host.add(ORV_MUX_SUBPICTURE);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->kind, 20u);
    EXPECT_EQ(stream->streamId, 0xBDu);
    EXPECT_EQ(stream->subStreamId, 0x20u);
    EXPECT_EQ(stream->stdSize, 53248u);
    EXPECT_EQ(stream->stdScale, 1u);
    EXPECT_EQ(stream->stdBound, 58u);
    EXPECT_EQ(stream->unitTicks, 0u);
    EXPECT_EQ(stream->ring->watermark, 0x20000u);
    EXPECT_EQ(stream->unitTable, nullptr);
    EXPECT_EQ(stream->readScratch, nullptr);
    EXPECT_EQ(host.handle->freeSubPictureSlots, 31u);
    EXPECT_EQ(host.handle->freeAudioSlots, 8u);
}

TEST(Registry, FlagsThatSelectNoKind)
{
    for (const uint64_t flags : { uint64_t(0), uint64_t(0x04), uint64_t(0x01), uint64_t(0x100), uint64_t(0x200),
                                  uint64_t(0x1000), ~uint64_t(0xCFA) }) {
        MuxHost host;
        MuxStream* stream = reinterpret_cast<MuxStream*>(&host);
        EXPECT_EQ(AddStream(host.handle, 0, flags, &stream), 0x84000BC1u) << flags;   // 3009
        EXPECT_EQ(stream, nullptr) << flags;
        EXPECT_EQ(AddStream(host.handle, 0, flags, nullptr), 0x84000BC1u) << flags;
        EXPECT_EQ(host.handle->streamCount, 0u) << flags;
    }
}

TEST(Registry, FlagsOverwriteTheKindNotTheWatermark)
{
    struct Case {
        uint64_t flags, kind, watermark;
    };
    // clang-format off
    const Case cases[] = {
        { 0x48,  2,  0x4000  },
        { 0x440, 4,  0x4000  },
        { 0x808, 2,  0x4000  },
        { 0x82,  20, 0x4000  },
        { 0x30,  8,  0x20000 },
        { 0x50,  9,  0x4000  },
        { 0xC0,  10, 0x4000  },
        { 0x8C0, 13, 0x4000  },
        { 0x90,  10, 0x4000  },
        { 0x12,  20, 0x20000 },
        { 0x0A,  2,  0x20000 },
        { 0x408, 4,  0x20000 },
        { 0xCFA, 4,  0x4000  },
    };
    // clang-format on
    for (const Case& each : cases) {
        uint64_t watermark = 0;
        EXPECT_EQ(orvKindOfFlags(each.flags, &watermark), each.kind) << std::hex << each.flags;
        EXPECT_EQ(watermark, each.watermark) << std::hex << each.flags;
    }
    MuxHost host;
    const MuxStream* stream = host.add(0x48);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->kind, 2u);
    EXPECT_EQ(stream->ring->watermark, 0x4000u);
    EXPECT_EQ(host.handle->streams[0], stream);
}

TEST(Registry, KindsWithANumberAndNoFlag)
{
    EXPECT_NE(orvMuxKind(2), nullptr);
    EXPECT_NE(orvMuxKind(20), nullptr);
    for (const uint64_t kind : { uint64_t(0), uint64_t(3), uint64_t(5), uint64_t(12), uint64_t(14), uint64_t(19),
                                 uint64_t(21), ~uint64_t(0) })
        EXPECT_EQ(orvMuxKind(kind), nullptr) << kind;
}

TEST(Registry, AudioKindsShareOneIndex)
{
    MuxHost host;
    EXPECT_EQ(host.add(ORV_MUX_VIDEO)->streamId, 0xE0u);
    EXPECT_EQ(host.add(ORV_MUX_MPEG_AUDIO)->streamId, 0xC0u);
    EXPECT_EQ(host.add(ORV_MUX_AC3)->subStreamId, 0x81u);
    EXPECT_EQ(host.add(ORV_MUX_LPCM)->subStreamId, 0xA2u);
    EXPECT_EQ(host.add(ORV_MUX_AC3_ANY)->subStreamId, 0x83u);
    EXPECT_EQ(host.add(ORV_MUX_MPEG_AUDIO)->streamId, 0xC4u);
    EXPECT_EQ(host.add(ORV_MUX_SUBPICTURE)->subStreamId, 0x20u);
    EXPECT_EQ(host.add(ORV_MUX_LPCM)->subStreamId, 0xA5u);
    EXPECT_EQ(host.add(ORV_MUX_SUBPICTURE)->subStreamId, 0x21u);
    EXPECT_EQ(host.handle->streamCount, 9u);
    EXPECT_EQ(host.handle->streams[8]->subStreamId, 0x21u);
}

TEST(Registry, NinthAudioStream)
{
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    for (uint64_t i = 0; i < 8; ++i) EXPECT_EQ(host.add(ORV_MUX_AC3)->subStreamId, 0x80 + i);
    for (const uint64_t flags : { 0x10u, 0x40u, 0x80u, 0x800u }) {
        MuxStream* stream = reinterpret_cast<MuxStream*>(&host);
        EXPECT_EQ(AddStream(host.handle, 0, flags, &stream), 0x84000BC3u);   // 3011, which speaks of four
        EXPECT_EQ(stream, nullptr);
    }
    EXPECT_EQ(host.handle->streamCount, 9u);
    EXPECT_EQ(host.handle->freeAudioSlots, 0u);
    EXPECT_EQ(host.handle->streams[8]->subStreamId, 0x87u);
    EXPECT_EQ(host.handle->streams[9], nullptr);
    // Those before can be used, and sub-pictures have room.
    EXPECT_EQ(host.feed(host.handle->streams[8], ac3Frame(20)), 0u);
    EXPECT_EQ(host.handle->streams[8]->bytesIn, ac3FrameBytes(20));
    EXPECT_EQ(host.add(ORV_MUX_SUBPICTURE), host.handle->streams[9]);
}

TEST(Registry, SecondVideoStream)
{
    MuxHost host;
    const MuxStream* first = host.add(ORV_MUX_VIDEO);
    for (const uint64_t flags : { 0x08u, 0x400u }) {
        MuxStream* stream = reinterpret_cast<MuxStream*>(&host);
        EXPECT_EQ(AddStream(host.handle, 0, flags, &stream), 0x84000BC4u);   // 3012
        EXPECT_EQ(stream, nullptr);
    }
    EXPECT_EQ(host.handle->streams[0], first);
    EXPECT_EQ(host.handle->streamCount, 1u);
    EXPECT_EQ(host.handle->freeVideoSlots, 0u);
}

TEST(Registry, ThirtyThirdSubPicture)
{
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    for (uint64_t i = 0; i < 8; ++i) host.add(ORV_MUX_LPCM);
    for (uint64_t i = 0; i < 32; ++i) EXPECT_EQ(host.add(ORV_MUX_SUBPICTURE)->subStreamId, 0x20 + i);
    EXPECT_EQ(host.handle->streamCount, 41u);
    EXPECT_EQ(AddStream(host.handle, 0, ORV_MUX_SUBPICTURE, nullptr), 0x84000BC3u);
    EXPECT_EQ(host.handle->streamCount, 41u);
}

TEST(Registry, AudioMayComeFirst)
{
    MuxHost host;
    const MuxStream* audio = host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.handle->streams[1], audio);
    EXPECT_EQ(host.handle->streams[0], nullptr);
    const MuxStream* video = host.add(ORV_MUX_VIDEO);
    EXPECT_EQ(host.handle->streams[0], video);
    EXPECT_EQ(host.handle->streamCount, 2u);
    const MuxStream* next = host.add(ORV_MUX_MPEG_AUDIO);
    EXPECT_EQ(host.handle->streams[2], next);
    EXPECT_EQ(host.handle->streams[1], audio);
}

TEST(Registry, SecondAudioStreamReplacesTheFirst)
{
    MuxHost host;
    const MuxStream* first = host.add(ORV_MUX_AC3);
    const MuxStream* second = host.add(ORV_MUX_AC3);
    EXPECT_NE(first, second);
    EXPECT_EQ(host.handle->streams[1], second);
    EXPECT_EQ(host.handle->streamCount, 2u);
    EXPECT_EQ(first->subStreamId, 0x80u);
    EXPECT_EQ(second->subStreamId, 0x81u);
    EXPECT_EQ(host.handle->freeAudioSlots, 6u);
    const MuxStream* third = host.add(ORV_MUX_AC3);
    EXPECT_EQ(host.handle->streams[2], third);
    EXPECT_EQ(host.handle->streams[1], second);
    EXPECT_EQ(host.add(ORV_MUX_VIDEO), host.handle->streams[0]);
    EXPECT_EQ(host.handle->streamCount, 4u);
    EXPECT_EQ(host.handle->streams[3], nullptr);   // a slot that nobody has
    EXPECT_EQ(host.add(ORV_MUX_AC3), host.handle->streams[4]);
}

TEST(Registry, ReplacedStreamTakesNoPart)
{
    MuxHost host;
    MuxStream* first = host.add(ORV_MUX_AC3);
    MuxStream* second = host.add(ORV_MUX_AC3);
    MuxStream* video = host.add(ORV_MUX_VIDEO_UNITS);
    const Bytes still = makeVideo({ { .types = "I", .bytes = { 300 }, .end = true } }).bytes;
    EXPECT_EQ(host.feed(first, ac3Frames(20, 4)), 0u);
    EXPECT_EQ(host.feed(second, ac3Frames(20, 4)), 0u);
    EXPECT_EQ(host.feedSequence(video, still), 0u);
    EXPECT_EQ(host.exit(), 0u);
    // Navigation pack, 3072 bytes of the second audio stream in two packs, video; none of 0x80.
    ASSERT_EQ(host.sectors(), 4u);
    EXPECT_EQ(host.hexAt(1, 17, 1) + " " + host.hexAt(1, 31, 1), "BD 81");
    EXPECT_EQ(host.hexAt(2, 17, 1) + " " + host.hexAt(2, 28, 1), "BD 81");
    EXPECT_EQ(host.hexAt(3, 17, 1), "E0");
}

TEST(Registry, SubPictureInFrontOfTheVideo)
{
    MuxHost host;
    MuxStream* stream = reinterpret_cast<MuxStream*>(&host);
    EXPECT_EQ(AddStream(host.handle, 0, ORV_MUX_SUBPICTURE, &stream), 0x84000BC1u);
    EXPECT_EQ(stream, nullptr);
    ASSERT_NE(host.handle->streams[1], nullptr);   // registered for all that
    EXPECT_EQ(host.handle->streams[1]->kind, 20u);
    EXPECT_EQ(host.handle->streamCount, 1u);
    EXPECT_EQ(host.handle->freeSubPictureSlots, 31u);
}

TEST(Registry, SubPictureWithAnAudioFlagIsFound)
{
    MuxHost host;
    const MuxStream* stream = host.add(0x42);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->kind, 20u);
    EXPECT_EQ(stream->ring->watermark, 0x4000u);
    EXPECT_EQ(host.handle->streams[1], stream);
}

TEST(Registry, FlagThatLooksInTheVideoSlot)
{
    MuxHost host;
    MuxStream* stream = reinterpret_cast<MuxStream*>(&host);
    EXPECT_EQ(AddStream(host.handle, 0, 0x84, &stream), 0x84000BC1u);   // slot 0 is empty
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(host.handle->streams[1]->kind, 10u);

    MuxHost other;
    MuxStream* video = other.add(ORV_MUX_VIDEO);
    video->sourceMode = 2;
    EXPECT_EQ(other.add(0x84), video);
    EXPECT_EQ(video->sourceMode, 1u);
    EXPECT_EQ(other.handle->streams[1]->kind, 10u);
    EXPECT_EQ(other.handle->streams[1]->sourceMode, 0u);   // the one that was found has it
}

TEST(Registry, ArgumentsThatDoNotCount)
{
    MuxHost host;
    MuxStream* stream = nullptr;
    EXPECT_EQ(AddStream(host.handle, 0xFFFFFFFFFFFFFFFF, ORV_MUX_VIDEO, &stream), 0u);
    EXPECT_NE(stream, nullptr);
    EXPECT_EQ(AddStream(host.handle, 0, ORV_MUX_AC3, nullptr), 0u);
    EXPECT_EQ(host.handle->streamCount, 2u);
}

// ---- files ------------------------------------------------------------------------------------------------------

uint64_t addFile(MuxHost& host, const std::u16string& path, uint64_t flags, MuxStream** stream)
{
    return AddFileStream(host.handle, widePath(path).c_str(), flags, stream);
}

TEST(Registry, FileIsPeekedForItsByteOrder)
{
    struct Case {
        const char* begin;
        uint64_t swapped;
    };
    const Case cases[] = { { "0B 77 01 02", 0 }, { "77 0B 01 02", 1 }, { "77 0B", 1 }, { "77", 0 }, { "", 0 },
                           { "77 0C 77 0B", 0 }, { "76 0B", 0 } };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.begin);
        TempDir folder;
        writeFile(folder / u"a.ac3", fromHex(each.begin));
        MuxHost host;
        host.add(ORV_MUX_VIDEO);
        MuxStream* stream = nullptr;
        ASSERT_EQ(addFile(host, folder / u"a.ac3", ORV_MUX_AC3, &stream), 0u);
        ASSERT_EQ(stream, host.handle->streams[1]);
        EXPECT_EQ(stream->byteSwapped, each.swapped);
        EXPECT_EQ(stream->sourceMode, 2u);
        EXPECT_EQ(stream->filePosition, 0u);
        EXPECT_NE(stream->file, 0u);
        uint64_t position = 99;
        EXPECT_EQ(osTellFile(stream->file, &position), 0u);
        EXPECT_EQ(position, 0u);
    }
}

TEST(Registry, FileThatIsNotThere)
{
    TempDir folder;
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    MuxStream* stream = nullptr;
    EXPECT_EQ(addFile(host, folder / u"none.ac3", ORV_MUX_AC3, &stream), 2u);   // ENOENT, ERROR_FILE_NOT_FOUND
    ASSERT_EQ(host.handle->streamCount, 2u);                                    // registered for all that
    EXPECT_EQ(host.handle->streams[1]->sourceMode, 1u);
    EXPECT_EQ(host.handle->streams[1]->file, 0u);
}

TEST(Registry, FileWithoutAnOut)
{
    TempDir folder;
    writeFile(folder / u"a.ac3", ac3Frame(20));
    MuxHost host;
    host.add(ORV_MUX_VIDEO);
    EXPECT_EQ(addFile(host, folder / u"a.ac3", ORV_MUX_AC3, nullptr), 0x84000057u);
    EXPECT_EQ(host.handle->streamCount, 2u);
    EXPECT_EQ(host.handle->streams[1]->sourceMode, 1u);
}

TEST(Registry, FileOfAStreamThatIsRefused)
{
    TempDir folder;
    writeFile(folder / u"a.ac3", ac3Frame(20));
    MuxHost host;
    MuxStream* stream = nullptr;
    EXPECT_EQ(addFile(host, folder / u"a.ac3", 0, &stream), ORV_UNKNOWN_STREAM);
    EXPECT_EQ(stream, nullptr);
    host.add(ORV_MUX_VIDEO);
    EXPECT_EQ(addFile(host, folder / u"a.ac3", ORV_MUX_VIDEO, &stream), ORV_SECOND_VIDEO_STREAM);
    for (int i = 0; i < 8; ++i) host.add(ORV_MUX_AC3);
    EXPECT_EQ(addFile(host, folder / u"a.ac3", ORV_MUX_MPEG_AUDIO, &stream), ORV_TOO_MANY_STREAMS);
    EXPECT_EQ(stream, nullptr);
}

}   // namespace
