// replay.cpp: replays, from finished elementary files, the calls of an encoder: video in units that begin at start
// codes, audio in blocks, one a picture.

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/start_codes.h"

#include <orven/mux.h>

constexpr uint64_t BUFFER_BYTES = 0x80000;
constexpr uint64_t CODE_BYTES = 4;
constexpr uint64_t WAVE_HEADER_BYTES = 44;

// A file and the part of it that is in memory.
struct Window {
    OSFILE file;
    uint8_t* buffer;   // BUFFER_BYTES, owned; bytes behind held are those of an earlier read, 0 at first
    uint64_t held;     // bytes of the last read
    uint64_t next;     // of audio: the next to deliver
};

static uint64_t openWindow(Window* window, OSFILE file)
{
    *window = { file, nullptr, 0, 0 };
    return osAllocMem(BUFFER_BYTES, &window->buffer);
}

static uint64_t fill(Window* window)
{
    window->next = 0;
    return osReadFileSome(window->file, window->buffer, BUFFER_BYTES, &window->held) ? ORV_READ_FAILED : 0;
}

// How the four replays differ where a buffer gave no unit.
enum SkipRule {
    SKIP_NEVER,          // it is read once more, which ends the scan
    SKIP_EMPTY_BUFFER,   // it is skipped if it gave nothing
    SKIP_EMPTY_SCAN,     // it is skipped if nothing was delivered since the scan began
};

struct Replay {
    Window video;
    OrvUnit videoUnit;
    uint64_t user;
    bool ignoresResults;   // of the video callback
    SkipRule skip;
    bool videoSent;                   // a unit has gone out
    uint64_t delivered;               // bytes of the video file, as the replay counts them
    uint64_t (*atPicture)(Replay*);   // null: nothing

    Window audio;
    OrvUnit audioUnit;
    uint64_t audioBlock;
    bool wave;   // the header goes out by itself, and END marks the end
    bool headerSent;
};

// ---- audio --------------------------------------------------------------------------------------------------------

static uint64_t sendEnd(const Replay* replay)
{
    static constexpr uint8_t END_MARK[] = { 'E', 'N', 'D', ' ' };
    return replay->audioUnit(END_MARK, sizeof END_MARK, replay->user);
}

static uint64_t sendAudio(Replay* replay, uint64_t bytes)
{
    Window* audio = &replay->audio;
    const uint8_t* from = audio->buffer + audio->next;
    audio->next = audio->next + bytes < audio->held ? audio->next + bytes : audio->held;
    return replay->audioUnit(from, bytes, replay->user);
}

static bool holdsBlock(const Replay* replay)
{
    return replay->audio.held - replay->audio.next >= replay->audioBlock;
}

/** Reads on from the first byte that was not delivered. */
static uint64_t refillAudio(Replay* replay)
{
    Window* audio = &replay->audio;
    const int64_t left = int64_t(audio->held - audio->next);
    if (osSeekFile(audio->file, -left, OS_FROM_CURRENT)) return ORV_READ_FAILED;
    return fill(audio);
}

static uint64_t sendBlock(Replay* replay)
{
    if (replay->wave && !replay->headerSent) {
        replay->headerSent = true;
        if (uint64_t refused = sendAudio(replay, WAVE_HEADER_BYTES)) return refused;
    }
    if (!holdsBlock(replay)) {
        if (uint64_t error = refillAudio(replay)) return error;
        if (replay->wave && replay->audio.held == 0) {
            if (uint64_t refused = sendEnd(replay)) return refused;
        }
    }
    // Meant: a whole block also where the file has less; the rest is what the buffer held before.
    // Test: Replay.BlocksAreWholeWhileThereIsVideo
    return sendAudio(replay, replay->audioBlock);
}

static uint64_t sendRestOfAudio(Replay* replay)
{
    while (true) {
        uint64_t bytes = replay->audioBlock;
        if (!holdsBlock(replay)) {
            if (uint64_t error = refillAudio(replay)) return error;
            if (replay->audio.held == 0) break;
            if (bytes > replay->audio.held) bytes = replay->audio.held;
        }
        if (uint64_t refused = sendAudio(replay, bytes)) return refused;
    }
    return replay->wave ? sendEnd(replay) : 0;
}

/** The host's own audio: it is told of each picture. */
static uint64_t callForAudio(Replay* replay)
{
    (void)replay->audioUnit(nullptr, 0, replay->user);
    return 0;
}

// ---- video --------------------------------------------------------------------------------------------------------

static uint64_t sendVideo(Replay* replay, uint64_t from, uint64_t to)
{
    replay->videoSent = true;
    replay->delivered += to - from;
    const uint64_t refused = replay->videoUnit(replay->video.buffer + from, to - from, replay->user);
    return replay->ignoresResults ? 0 : refused;
}

static bool isUnitCode(uint8_t code)
{
    return code == CODE_PICTURE || code == CODE_SEQUENCE || code == CODE_SEQUENCE_END || code == CODE_GOP;
}

/** Delivers the units of the buffer that end in it. *first gets the offset of the first unit code at or behind from, or
    that from which on there may be one. */
static uint64_t scanBuffer(Replay* replay, uint64_t from, uint64_t* first)
{
    const uint8_t* buffer = replay->video.buffer;
    *first = from;
    if (replay->video.held < CODE_BYTES) return 0;
    const uint64_t limit = replay->video.held - 1;   // a prefix ends in front of the last byte
    bool found = false;
    uint64_t open = BUFFER_BYTES;   // of a unit: where it begins; else BUFFER_BYTES
    for (uint64_t at = orvFindStartCode(buffer, from, limit); at < limit;
         at = orvFindStartCode(buffer, at + 1, limit)) {
        const uint8_t code = buffer[at + 3];
        if (!isUnitCode(code)) continue;
        if (!found) *first = at;
        found = true;
        if (code == CODE_PICTURE && replay->atPicture) {
            if (uint64_t error = replay->atPicture(replay)) return error;
        }
        if (open != BUFFER_BYTES) {
            if (uint64_t refused = sendVideo(replay, open, at)) return refused;
        }
        open = at;
        // Meant: an end code goes out at once, and again with what stands behind it. Test: Replay.EndCodeGoesOutTwice
        if (code == CODE_SEQUENCE_END) {
            if (uint64_t refused = sendVideo(replay, at, at + CODE_BYTES)) return refused;
        }
    }
    if (!found && *first + 2 < limit) *first = limit - 2;
    return 0;
}

static bool skipsBuffer(const Replay* replay, uint64_t before)
{
    if (replay->skip == SKIP_EMPTY_BUFFER) return replay->delivered == before;
    return replay->skip == SKIP_EMPTY_SCAN && !replay->videoSent;
}

static uint64_t replayVideo(Replay* replay)
{
    uint64_t at = 0, quietUntil = 0;   // file positions: of the buffer, and in front of which it has no unit code
    if (osTellFile(replay->video.file, &at)) return ORV_READ_FAILED;
    if (uint64_t error = fill(&replay->video)) return error;
    while (replay->video.held > 0) {
        // What was looked at in vain is not looked at again where the buffer moves on by a few bytes.
        const uint64_t before = replay->delivered;
        uint64_t first = 0;
        if (uint64_t error = scanBuffer(replay, quietUntil > at ? quietUntil - at : 0, &first)) return error;
        if (skipsBuffer(replay, before)) replay->delivered += replay->video.held;
        // The same bytes would come again and again.
        if (replay->delivered == before) return 0;
        quietUntil = at <= replay->delivered ? at + first : 0;
        at = replay->delivered;
        if (osSeekFile(replay->video.file, int64_t(at), OS_FROM_START)) return ORV_READ_FAILED;
        if (uint64_t error = fill(&replay->video)) return error;
    }
    return 0;
}

// ---- the replays --------------------------------------------------------------------------------------------------

static uint64_t replayWithAudio(Replay* replay, OSFILE audio)
{
    if (uint64_t error = openWindow(&replay->audio, audio)) return error;
    if (uint64_t error = fill(&replay->audio)) return error;
    if (uint64_t error = replayVideo(replay)) return error;
    return sendRestOfAudio(replay);
}

static uint64_t runReplay(Replay* replay, OSFILE video, const OSFILE* audio)
{
    uint64_t result = openWindow(&replay->video, video);
    if (!result) result = audio ? replayWithAudio(replay, *audio) : replayVideo(replay);
    (void)osFreeMem(&replay->video.buffer);
    (void)osFreeMem(&replay->audio.buffer);
    return result;
}

extern "C" uint64_t muxEmulateLigos(OSFILE video, OrvUnit videoUnit, uint64_t user)
{
    if (!videoUnit) return ORV_INVALID_ARGUMENT;
    Replay replay = {};
    replay.videoUnit = videoUnit;
    replay.user = user;
    replay.ignoresResults = true;
    replay.skip = SKIP_NEVER;
    return runReplay(&replay, video, nullptr);
}

extern "C" uint64_t muxEmulateLigosAC3(OSFILE video, OrvUnit videoUnit, OrvUnit audioUnit, uint64_t user)
{
    if (!videoUnit || !audioUnit) return ORV_INVALID_ARGUMENT;
    Replay replay = {};
    replay.videoUnit = videoUnit;
    replay.audioUnit = audioUnit;
    replay.user = user;
    replay.skip = SKIP_EMPTY_BUFFER;
    replay.atPicture = callForAudio;
    return runReplay(&replay, video, nullptr);
}

static uint64_t replayBlocks(OSFILE video, OSFILE audio, OrvUnit videoUnit, OrvUnit audioUnit, uint64_t audioBlock,
                             uint64_t user, bool wave)
{
    if (!videoUnit || !audioUnit || audioBlock == 0 || audioBlock > BUFFER_BYTES) return ORV_INVALID_ARGUMENT;
    Replay replay = {};
    replay.videoUnit = videoUnit;
    replay.audioUnit = audioUnit;
    replay.audioBlock = audioBlock;
    replay.user = user;
    replay.skip = wave ? SKIP_EMPTY_SCAN : SKIP_EMPTY_BUFFER;
    replay.atPicture = sendBlock;
    replay.wave = wave;
    return runReplay(&replay, video, &audio);
}

extern "C" uint64_t muxEmulateLigosPCM(OSFILE video, OSFILE audio, OrvUnit videoUnit, OrvUnit audioUnit,
                                       uint64_t audioBlock, uint64_t user)
{
    return replayBlocks(video, audio, videoUnit, audioUnit, audioBlock, user, true);
}

extern "C" uint64_t muxEmulateLigosLayer(OSFILE video, OSFILE audio, OrvUnit videoUnit, OrvUnit audioUnit,
                                         uint64_t audioBlock, uint64_t user)
{
    return replayBlocks(video, audio, videoUnit, audioUnit, audioBlock, user, false);
}
