// The replay of finished elementary files: what goes out, in which order, over buffers of 512 KiB.
#include "tests/mux/handler_rig.h"
#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr uint64_t READ_FAILED = 0x84000FB4, INVALID_ARGUMENT = 0x84000057;
constexpr uint64_t BUFFER = 524288;

// ---- what the callbacks get -------------------------------------------------------------------------------------

/** Bytes as text: their number, the first few, and a sum of all. */
std::string bytesText(const Bytes& bytes)
{
    uint64_t sum = 14695981039346656037u;
    for (const uint8_t byte : bytes) sum = (sum ^ byte) * 1099511628211u;
    char text[60];
    snprintf(text, sizeof(text), "%llu bytes %s #%08llX", static_cast<unsigned long long>(bytes.size()),
             toHex(part(bytes, 0, 4)).c_str(), static_cast<unsigned long long>(sum & 0xFFFFFFFF));
    return text;
}

typedef std::vector<std::string> Calls;

struct Recorder {
    Calls calls;
    std::vector<Bytes> blocks;    // of the audio calls
    uint64_t failAt = NONE;       // index of the call that fails
    uint64_t failure = 0x12345;   // with this
};

uint64_t note(Recorder* recorder, const std::string& call)
{
    recorder->calls.push_back(call);
    return recorder->calls.size() - 1 == recorder->failAt ? recorder->failure : 0;
}

uint64_t onVideo(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    return note(reinterpret_cast<Recorder*>(user), "V " + bytesText(Bytes(data, data + bytes)));
}

uint64_t onAudio(const uint8_t* data, uint64_t bytes, uint64_t user)
{
    Recorder* const recorder = reinterpret_cast<Recorder*>(user);
    if (!data) return note(recorder, "A null, " + std::to_string(bytes));
    recorder->blocks.emplace_back(data, data + bytes);
    return note(recorder, "A " + bytesText(recorder->blocks.back()));
}

/** A call with bytes from one offset to another. */
std::string call(char who, const Bytes& bytes, uint64_t from, uint64_t to)
{
    return std::string(1, who) + " " + bytesText(part(bytes, from, to - from));
}

const char* const ASK = "A null, 0";   // the host is asked for its AC-3

// ---- runs -------------------------------------------------------------------------------------------------------

enum Variant { PLAIN, PCM, LAYER, AC3 };

struct Replay {
    uint64_t result;
    Calls calls;
    std::vector<Bytes> blocks;
};

struct Recipe {
    Bytes audio = {};
    uint64_t block = 300;
    uint64_t failAt = NONE;
    uint64_t videoMode = OS_READ, audioMode = OS_READ;
};

Replay replay(Variant variant, const Bytes& video, const Recipe& recipe = {})
{
    const TempDir folder;
    const OpenFile videoFile(folder, u"video", video, recipe.videoMode);
    const OpenFile audioFile(folder, u"audio", recipe.audio, recipe.audioMode);
    Recorder recorder;
    recorder.failAt = recipe.failAt;
    const uint64_t user = reinterpret_cast<uint64_t>(&recorder);
    uint64_t result = 0;
    switch (variant) {
    case PLAIN: result = muxEmulateLigos(videoFile.file, onVideo, user); break;
    case PCM: result = muxEmulateLigosPCM(videoFile.file, audioFile.file, onVideo, onAudio, recipe.block, user); break;
    case LAYER:
        result = muxEmulateLigosLayer(videoFile.file, audioFile.file, onVideo, onAudio, recipe.block, user);
        break;
    case AC3: result = muxEmulateLigosAC3(videoFile.file, onVideo, onAudio, user); break;
    }
    return { result, recorder.calls, recorder.blocks };
}

const Variant ALL[] = { PLAIN, PCM, LAYER, AC3 };

/** Calls of the video callback alone. */
Calls videoCalls(const Replay& run)
{
    Calls calls;
    for (const std::string& each : run.calls) {
        if (each[0] == 'V') calls.push_back(each);
    }
    return calls;
}

uint64_t asks(const Replay& run)
{
    return uint64_t(std::count(run.calls.begin(), run.calls.end(), ASK));
}

/** Pieces between these offsets, one behind the other. */
Calls pieces(const Bytes& video, const std::vector<uint64_t>& offsets)
{
    Calls calls;
    for (uint64_t i = 0; i + 1 < offsets.size(); i++) calls.push_back(call('V', video, offsets[i], offsets[i + 1]));
    return calls;
}

Calls joined(Calls first, const Calls& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Units at 0, 12, 20, 70; the end code at 130; 134 bytes.
Bytes oneSequence()
{
    return sequenceHeader() + gopHeader() + videoPicture(50, 0, 'I', 3) + videoPicture(60, 1, 'P', 4) + sequenceEnd();
}

Bytes someAudio(uint64_t bytes)
{
    return assetBytes(bytes, 99);
}

const std::string END_MARK = "A " + bytesText(fromHex("45 4E 44 20"));

// ---- order ------------------------------------------------------------------------------------------------------

TEST(Replay, UnitsOfASequence)
{
    const Bytes video = oneSequence();
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(videoCalls(run), pieces(video, { 0, 12, 20, 70, 130, 134 }));
    }
    EXPECT_EQ(replay(PLAIN, video).calls.size(), 5u);
}

// Other start codes belong to the unit in front of them.
TEST(Replay, OtherCodesOpenNoUnit)
{
    const Bytes video = sequenceHeader() + fromHex("00 00 01 B5 14 8A 00 01 00 00 00 00 01 B2 41 42") +        // 0
                        gopHeader() +                                                                          // 28
                        videoPicture(20, 0, 'I') + fromHex("00 00 01 01 A5 A5 00 00 01 AF A5 00 00 01 FF") +   // 36
                        sequenceEnd();                                                                         // 71
    for (const Variant variant : ALL)
        EXPECT_EQ(videoCalls(replay(variant, video)), pieces(video, { 0, 28, 36, 71, 75 }));
}

TEST(Replay, Ac3AsksAtEachPicture)
{
    const Bytes video = oneSequence();
    const Replay run = replay(AC3, video);
    EXPECT_EQ(run.calls, (Calls{ call('V', video, 0, 12), ASK, call('V', video, 12, 20), ASK, call('V', video, 20, 70),
                                 call('V', video, 70, 130), call('V', video, 130, 134) }));
}

TEST(Replay, LayerDeliversABlockAtEachPicture)
{
    const Bytes video = oneSequence(), audio = someAudio(1000);
    const Replay run = replay(LAYER, video, { .audio = audio });
    EXPECT_EQ(run.result, 0u);
    // In front of the unit that the picture closes. What is left goes out behind the video, the last block cut.
    EXPECT_EQ(run.calls,
              (Calls{ call('V', video, 0, 12), call('A', audio, 0, 300), call('V', video, 12, 20),
                      call('A', audio, 300, 600), call('V', video, 20, 70), call('V', video, 70, 130),
                      call('V', video, 130, 134), call('A', audio, 600, 900), call('A', audio, 900, 1000) }));
}

TEST(Replay, PcmHasTheHeaderFirstAndTheMarkLast)
{
    const Bytes video = oneSequence(), audio = someAudio(1000);
    const Replay run = replay(PCM, video, { .audio = audio });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.calls, (Calls{ call('V', video, 0, 12), call('A', audio, 0, 44), call('A', audio, 44, 344),
                                 call('V', video, 12, 20), call('A', audio, 344, 644), call('V', video, 20, 70),
                                 call('V', video, 70, 130), call('V', video, 130, 134), call('A', audio, 644, 944),
                                 call('A', audio, 944, 1000), END_MARK }));
}

// ---- audio ------------------------------------------------------------------------------------------------------

// A block that the file can't fill goes out whole as long as there is video: behind its bytes stands what the buffer
// held before, zeros at first. Behind the video the last block is cut.
TEST(Replay, BlocksAreWholeWhileThereIsVideo)
{
    Bytes video = sequenceHeader();
    for (uint64_t i = 0; i < 4; i++) video += videoPicture(30, i, 'P');
    video += sequenceEnd();
    const Bytes audio = someAudio(700);
    const Replay run = replay(LAYER, video, { .audio = audio });
    const Bytes rest = part(audio, 600, 100) + part(audio, 100, 200);
    EXPECT_EQ(run.blocks, (std::vector<Bytes>{ part(audio, 0, 300), part(audio, 300, 300), rest, rest }));
    const Bytes little = someAudio(100);
    const Replay shorter = replay(LAYER, oneSequence(), { .audio = little });
    const Bytes padded = little + Bytes(200, 0);
    EXPECT_EQ(shorter.blocks, (std::vector<Bytes>{ padded, padded }));
    const Replay none = replay(LAYER, oneSequence());
    EXPECT_EQ(none.result, 0u);
    EXPECT_EQ(none.blocks, (std::vector<Bytes>{ Bytes(300, 0), Bytes(300, 0) }));
}

TEST(Replay, BlockThatJustFits)
{
    const Bytes audio = someAudio(600);
    EXPECT_EQ(replay(LAYER, oneSequence(), { .audio = audio }).blocks,
              (std::vector<Bytes>{ part(audio, 0, 300), part(audio, 300, 300) }));
    EXPECT_EQ(replay(LAYER, oneSequence(), { .audio = someAudio(601) }).blocks.size(), 3u);
}

// Each block that is due once the file is at its end comes behind an end mark.
TEST(Replay, PcmMarksEachBlockBehindTheAudio)
{
    Bytes video = sequenceHeader();
    for (uint64_t i = 0; i < 4; i++) video += videoPicture(30, i, 'P');
    video += sequenceEnd();
    const Bytes audio = someAudio(644);
    const Replay run = replay(PCM, video, { .audio = audio });
    EXPECT_EQ(run.result, 0u);
    ASSERT_EQ(run.blocks.size(), 8u);
    EXPECT_EQ(run.blocks[0], part(audio, 0, 44));
    EXPECT_EQ(run.blocks[1], part(audio, 44, 300));
    EXPECT_EQ(run.blocks[2], part(audio, 344, 300));
    for (const uint64_t mark : std::vector<uint64_t>{ 3, 5, 7 }) EXPECT_EQ(run.blocks[mark], endMark()) << mark;
    EXPECT_EQ(run.blocks[4].size(), 300u);
    EXPECT_EQ(run.blocks[6].size(), 300u);
}

// No mark in front of a block of which the file still has a part.
TEST(Replay, PcmPartOfABlock)
{
    const Bytes audio = someAudio(444);
    const Replay run = replay(PCM, oneSequence(), { .audio = audio });
    ASSERT_EQ(run.blocks.size(), 4u);
    EXPECT_EQ(run.blocks[1], part(audio, 44, 300));
    EXPECT_EQ(run.blocks[2].size(), 300u);
    EXPECT_EQ(part(run.blocks[2], 0, 100), part(audio, 344, 100));
    EXPECT_EQ(run.blocks[3], endMark());
}

TEST(Replay, AudioWithoutVideo)
{
    const Bytes audio = someAudio(1000);
    const Replay layer = replay(LAYER, {}, { .audio = audio });
    EXPECT_EQ(layer.result, 0u);
    EXPECT_EQ(layer.calls, (Calls{ call('A', audio, 0, 300), call('A', audio, 300, 600), call('A', audio, 600, 900),
                                   call('A', audio, 900, 1000) }));
    // Without a picture the header is part of the blocks.
    const Replay pcm = replay(PCM, {}, { .audio = audio });
    EXPECT_EQ(pcm.calls, (Calls{ call('A', audio, 0, 300), call('A', audio, 300, 600), call('A', audio, 600, 900),
                                 call('A', audio, 900, 1000), END_MARK }));
    EXPECT_EQ(replay(PCM, {}).calls, (Calls{ END_MARK }));
    EXPECT_EQ(replay(LAYER, {}).calls, Calls{});
}

TEST(Replay, AudioOverManyBuffers)
{
    const Bytes audio = someAudio(BUFFER + BUFFER / 2);
    const uint64_t block = 100000;
    const Replay run = replay(LAYER, oneSequence(), { .audio = audio, .block = block });
    EXPECT_EQ(run.result, 0u);
    ASSERT_EQ(run.blocks.size(), 8u);   // 786432 bytes
    for (uint64_t i = 0; i < 8; i++) EXPECT_EQ(run.blocks[i], part(audio, i * block, block)) << i;
    EXPECT_EQ(run.blocks[7].size(), 86432u);
}

TEST(Replay, BlockOfAWholeBuffer)
{
    const Bytes audio = someAudio(2 * BUFFER + 10);
    const Replay run = replay(LAYER, oneSequence(), { .audio = audio, .block = BUFFER });
    ASSERT_EQ(run.blocks.size(), 3u);
    EXPECT_EQ(run.blocks[0], part(audio, 0, BUFFER));
    EXPECT_EQ(run.blocks[1], part(audio, BUFFER, BUFFER));
    EXPECT_EQ(run.blocks[2], part(audio, 2 * BUFFER, 10));
}

// What the buffer can't hold is refused.
TEST(Replay, BlockLargerThanTheBuffer)
{
    for (const Variant variant : { LAYER, PCM }) {
        for (const uint64_t block : std::vector<uint64_t>{ BUFFER + 1, uint64_t(1) << 40, NONE }) {
            const Replay run = replay(variant, oneSequence(), { .audio = someAudio(600000), .block = block });
            EXPECT_EQ(run.result, INVALID_ARGUMENT) << block;
            EXPECT_EQ(run.calls, Calls{});
        }
    }
}

// ---- end codes --------------------------------------------------------------------------------------------------

// At once, and as the unit that the next code closes.
TEST(Replay, EndCodeGoesOutTwice)
{
    const Bytes video = sequenceHeader() + gopHeader() + videoPicture(50, 0, 'I') + sequenceEnd() +   // 70
                        sequenceHeader() + gopHeader() + videoPicture(50, 0, 'I') + sequenceEnd();    // 74, 86, 94, 144
    for (const Variant variant : ALL) {
        EXPECT_EQ(videoCalls(replay(variant, video)),
                  joined(pieces(video, { 0, 12, 20, 70, 74 }), pieces(video, { 70, 74, 86, 94, 144, 148 })));
    }
}

TEST(Replay, EndCodesAlone)
{
    const Bytes video = sequenceEnd() + sequenceEnd() + sequenceEnd();
    const Calls expected = { call('V', video, 0, 4), call('V', video, 0, 4), call('V', video, 4, 8),
                             call('V', video, 4, 8), call('V', video, 8, 12) };
    for (const Variant variant : ALL) EXPECT_EQ(videoCalls(replay(variant, video)), expected);
    for (const Variant variant : ALL) EXPECT_EQ(videoCalls(replay(variant, sequenceEnd())), pieces(video, { 0, 4 }));
}

// The count runs four bytes ahead, so that the next buffer begins behind the open unit's start code: it is lost. Then
// it falls behind by the bytes of that unit, and the file's end is read again by so many.
TEST(Replay, EndCodeShiftsTheNextBuffer)
{
    Bytes video = sequenceHeader() + sequenceEnd();                                            // 0, 12
    for (uint64_t i = 0; i < 5; i++) video += videoPicture(100000, i, 'P', uint32_t(i + 1));   // 16, ... 400016
    video += videoPicture(24200, 5, 'P') + videoPicture(100, 6, 'P', 6) +                      // 500016, 524216
             videoPicture(1000, 7, 'P', 7) + sequenceEnd();                                    // 524316, 525316
    Calls expected =
        joined(pieces(video, { 0, 12, 16 }), pieces(video, { 12, 16, 100016, 200016, 300016, 400016, 500016, 524216 }));
    // 524220 are delivered by now: the picture at 524216 is not met again. 1000 and 4 later 96 are still to be read.
    expected = joined(expected, pieces(video, { 524316, 525316, 525320 }));
    for (uint64_t i = 0; i < 24; i++) expected.push_back(call('V', video, 525316, 525320));
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(videoCalls(run), expected);
    }
    EXPECT_EQ(asks(replay(AC3, video)), 8u);
}

// ---- buffers ----------------------------------------------------------------------------------------------------

// Headers of 20 bytes, then pictures of 100000: eight at 20, 100020, ...; the end code at 800020.
TEST(Replay, UnfinishedUnitIsReadAgain)
{
    Bytes video = sequenceHeader() + gopHeader();
    for (uint64_t i = 0; i < 8; i++) video += videoPicture(100000, i, 'P', uint32_t(i + 1));
    video += sequenceEnd();
    const Calls expected =
        pieces(video, { 0, 12, 20, 100020, 200020, 300020, 400020, 500020, 600020, 700020, 800020, 800024 });
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(videoCalls(run), expected);
    }
    // The picture at 500020 is met in both buffers.
    EXPECT_EQ(asks(replay(AC3, video)), 9u);
    const Bytes audio = someAudio(9 * 300);
    EXPECT_EQ(replay(LAYER, video, { .audio = audio }).blocks.size(), 9u);
    EXPECT_EQ(replay(PCM, video, { .audio = audio + Bytes(44, 0) }).blocks.size(), 11u);   // header, nine, mark
}

// A code that ends with the buffer is seen in it, and again in the next. One byte later it is the first picture that is
// met again; the second one too, for its buffer, which begins 20 bytes on, does not hold the end.
TEST(Replay, CodeAtTheBuffersEnd)
{
    for (uint64_t at = BUFFER - 5; at <= BUFFER; at++) {
        const Bytes video =
            sequenceHeader() + gopHeader() + videoPicture(at - 20, 0, 'I') + videoPicture(5000, 1, 'P') + sequenceEnd();
        const Calls whole = pieces(video, { 0, 12, 20, at, at + 5000, at + 5004 });
        for (const Variant variant : ALL) EXPECT_EQ(videoCalls(replay(variant, video)), whole) << at;
        Calls expected = { whole[0], ASK, whole[1], ASK, whole[2], ASK, whole[3], whole[4] };
        if (at > BUFFER - 4) expected.insert(expected.begin() + 3, ASK);
        EXPECT_EQ(replay(AC3, video).calls, expected) << at;
    }
}

TEST(Replay, EndCodeAtTheBuffersEnd)
{
    for (const uint64_t size : { BUFFER - 1, BUFFER, BUFFER + 1, BUFFER + 3, BUFFER + 4 }) {
        const Bytes video =
            sequenceHeader() + videoPicture(1000, 0, 'I') + videoPicture(size - 1016, 1, 'P') + sequenceEnd();
        ASSERT_EQ(video.size(), size);
        for (const Variant variant : ALL) {
            EXPECT_EQ(videoCalls(replay(variant, video)), pieces(video, { 0, 12, 1012, size - 4, size })) << size;
        }
    }
}

// A unit of more than a buffer can't be delivered. With audio the buffer that holds nothing else is passed over;
// without, and of WAVE audio once anything went out, the video ends there.
TEST(Replay, UnitLargerThanTheBuffer)
{
    const Bytes video = sequenceHeader() + gopHeader() + videoPicture(BUFFER + 40, 0, 'I') +   // 20
                        videoPicture(100000, 1, 'P') + sequenceEnd();                          // 524348, 624348
    const Calls before = pieces(video, { 0, 12, 20 });
    Calls passed = joined(before, pieces(video, { 524348, 624348, 624352 }));
    // The buffer behind begins at 524308: 40 bytes ahead of a code, which the count lacks at the end.
    for (uint64_t i = 0; i < 10; i++) passed.push_back(call('V', video, 624348, 624352));
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(videoCalls(run), variant == LAYER || variant == AC3 ? passed : before) << variant;
    }
    EXPECT_EQ(asks(replay(AC3, video)), 3u);   // at 20 twice, at 524348
}

// Whole buffers without a code: passed over with audio of any kind, for nothing went out yet.
TEST(Replay, BuffersWithoutACode)
{
    const Bytes units = oneSequence();
    for (const uint64_t buffers : { 1u, 3u }) {
        const Bytes video = filler(buffers * BUFFER) + units;
        for (const Variant variant : ALL) {
            const Replay run = replay(variant, video);
            EXPECT_EQ(run.result, 0u);
            const Calls whole = pieces(units, { 0, 12, 20, 70, 130, 134 });
            EXPECT_EQ(videoCalls(run), variant == PLAIN ? Calls{} : whole) << variant << ", " << buffers;
        }
    }
}

// An end code at the buffer's end lets the count go on by four bytes a buffer: what holds no code is not looked at
// again each time, also where every byte could end the prefix of one.
TEST(Replay, EndCodesThatMoveTheBufferOnByAFewBytes)
{
    const Bytes video = Bytes(8192, 0x01) + sequenceEnd();
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        // Four bytes go out each time, until the count is at the end: (8192 + 4) / 4.
        EXPECT_EQ(videoCalls(run), Calls(2049, call('V', video, 8192, 8196))) << variant;
    }
}

// ---- files that do not begin or end well ------------------------------------------------------------------------

// Bytes ahead of the first code shift the count: the file's end is read again by so many bytes, less the end code each
// time.
TEST(Replay, BytesAheadOfTheFirstCode)
{
    const struct {
        uint64_t ahead, endCodes;
    } rows[] = { { 1, 1 }, { 3, 1 }, { 4, 2 }, { 5, 2 }, { 8, 3 }, { 11, 3 }, { 12, 4 } };
    for (const auto& row : rows) {
        const Bytes video = filler(row.ahead, 5) + oneSequence();
        Calls expected;
        for (const std::string& each : pieces(oneSequence(), { 0, 12, 20, 70, 130 })) expected.push_back(each);
        for (uint64_t i = 0; i < row.endCodes; i++) expected.push_back(call('V', sequenceEnd(), 0, 4));
        for (const Variant variant : ALL) {
            const Replay run = replay(variant, video);
            EXPECT_EQ(run.result, 0u);
            EXPECT_EQ(videoCalls(run), expected) << row.ahead << ", variant " << variant;
        }
    }
}

// The last unit is not delivered: nothing closes it. Its picture is met twice.
TEST(Replay, FileWithoutAnEndCode)
{
    const Bytes whole = oneSequence();
    const Bytes video = part(whole, 0, 130);
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, video);
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(videoCalls(run), pieces(video, { 0, 12, 20, 70 })) << variant;
    }
    EXPECT_EQ(asks(replay(AC3, video)), 3u);
}

TEST(Replay, BytesBehindTheEndCode)
{
    for (uint64_t behind = 1; behind <= 9; behind++) {
        const Bytes video = oneSequence() + filler(behind);
        for (const Variant variant : ALL) {
            const Replay run = replay(variant, video);
            EXPECT_EQ(run.result, 0u);
            EXPECT_EQ(videoCalls(run), pieces(video, { 0, 12, 20, 70, 130, 134 })) << behind;
        }
    }
}

TEST(Replay, ShortAndEmptyFiles)
{
    for (const char* const bytes : { "", "00", "00 00", "00 00 01", "A5 A5 A5 A5", "00 00 01 00", "00 00 01 B3",
                                     "00 00 01 B8 00", "00 00 00 00 00 00 00 00" }) {
        for (const Variant variant : ALL) {
            const Replay run = replay(variant, fromHex(bytes));
            EXPECT_EQ(run.result, 0u) << bytes;
            EXPECT_EQ(videoCalls(run), Calls{}) << bytes;
        }
    }
}

// ---- failures ---------------------------------------------------------------------------------------------------

TEST(Replay, VideoThatCannotBeRead)
{
    for (const Variant variant : ALL) {
        const Replay run = replay(variant, oneSequence(), { .audio = someAudio(900), .videoMode = OS_APPEND });
        EXPECT_EQ(run.result, READ_FAILED);
        EXPECT_EQ(run.calls, Calls{});
    }
}

TEST(Replay, AudioThatCannotBeRead)
{
    for (const Variant variant : { PCM, LAYER }) {
        const Replay run = replay(variant, oneSequence(), { .audio = someAudio(900), .audioMode = OS_APPEND });
        EXPECT_EQ(run.result, READ_FAILED);
        EXPECT_TRUE(run.blocks.empty());
    }
}

TEST(Replay, FailingCallbackEndsTheRun)
{
    const Bytes video = oneSequence(), audio = someAudio(1000);
    const struct {
        Variant variant;
        uint64_t calls;   // of a whole run
    } rows[] = { { PCM, 11 }, { LAYER, 9 } };
    for (const auto& row : rows) {
        EXPECT_EQ(replay(row.variant, video, { .audio = audio }).calls.size(), row.calls);
        for (uint64_t i = 0; i < row.calls; i++) {
            const Replay run = replay(row.variant, video, { .audio = audio, .failAt = i });
            EXPECT_EQ(run.result, 0x12345u) << i;
            EXPECT_EQ(run.calls.size(), i + 1);
        }
    }
}

// The host's answer to the question for AC-3 does not count, that to a unit does.
TEST(Replay, Ac3FailsByUnitsAlone)
{
    for (uint64_t i = 0; i < 7; i++) {
        const Replay run = replay(AC3, oneSequence(), { .failAt = i });
        const bool asked = i == 1 || i == 3;
        EXPECT_EQ(run.result, asked ? 0u : 0x12345u) << i;
        EXPECT_EQ(run.calls.size(), asked ? 7u : i + 1) << i;
    }
}

TEST(Replay, PlainVideoDoesNotLookAtAnswers)
{
    for (uint64_t i = 0; i < 5; i++) {
        const Replay run = replay(PLAIN, oneSequence(), { .failAt = i });
        EXPECT_EQ(run.result, 0u);
        EXPECT_EQ(run.calls.size(), 5u);
    }
}

TEST(Replay, Arguments)
{
    const TempDir folder;
    const OpenFile video(folder, u"video", oneSequence()), audio(folder, u"audio", someAudio(10));
    Recorder recorder;
    const uint64_t user = reinterpret_cast<uint64_t>(&recorder);
    EXPECT_EQ(muxEmulateLigosPCM(video.file, audio.file, onVideo, onAudio, 0, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosLayer(video.file, audio.file, onVideo, onAudio, 0, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigos(video.file, nullptr, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosPCM(video.file, audio.file, nullptr, onAudio, 300, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosPCM(video.file, audio.file, onVideo, nullptr, 300, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosLayer(video.file, audio.file, nullptr, onAudio, 300, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosLayer(video.file, audio.file, onVideo, nullptr, 300, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosAC3(video.file, nullptr, onAudio, user), INVALID_ARGUMENT);
    EXPECT_EQ(muxEmulateLigosAC3(video.file, onVideo, nullptr, user), INVALID_ARGUMENT);
    EXPECT_EQ(recorder.calls, Calls{});
}

}   // namespace
