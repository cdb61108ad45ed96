// aob_fuzz.cpp: any tracks, from a host that answers as the input says, or from any bytes as the WAVE files of a track.
//   0       bit 0: the direct driver. Bits 1 to 3: tracks, less one
//   1 on    four bytes a track: channels, assignment, bits, number of the rate
// then, for a host: a byte a call, answered by answerAs, until the bytes are over; for the direct driver:
//   2 each  first sample, last sample
//   1       bit 0: channels in files of their own. Bit 1: the AOB can't be written. Bit 2: canceled
//   rest    the file, all of them

#include "fuzz/fuzz.h"

#include "audio/wave_track.h"
#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <orven/aob.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

constexpr uint64_t RATES[] = { 44100, 48000, 88200, 96000, 176400, 192000, 0, 32000 };
constexpr uint64_t CALLS = 3000;   // a host that gives more is done

// The input, byte by byte; zeros behind its end.
struct Input {
    const uint8_t* at;
    size_t left;

    uint8_t byte()
    {
        if (left == 0) return 0;
        left--;
        return *at++;
    }
    uint64_t pair()
    {
        const uint64_t low = byte();
        return low | uint64_t(byte()) << 8;
    }
};

struct Host {
    Input script;
    std::vector<AobTrackDesc> tracks;
    uint64_t calls;
};

static void check(bool holds)
{
    if (!holds) abort();
}

// Low two bits: all that is asked for; nothing; some; too much. Bit 2: the end. High bits, if all set: abort.
static uint64_t answerAs(uint8_t how, uint64_t asked, uint64_t* count)
{
    switch (how & 3) {
    case 0: *count = asked; break;
    case 1: *count = 0; break;
    case 2: *count = asked * (how >> 3) / 32; break;
    default: *count = how & 8 ? asked + (how >> 4) : asked; break;
    }
    if (how >= 0xF0) return how | uint64_t(how) << 40;
    return how & 4 ? ORV_AOB_END : ORV_AOB_MORE;
}

static uint64_t samples(uint64_t track, uint8_t* buffer, uint64_t asked, uint64_t channel, uint64_t* outCount,
                        uint64_t user)
{
    Host* const host = reinterpret_cast<Host*>(user);
    check(track < host->tracks.size() && channel < host->tracks[track].channelCount);
    const uint64_t bytes = asked * (host->tracks[track].sampleSize / 8);
    check(bytes <= 1024);
    memset(buffer, int(0x10 + channel), bytes);   // the room that is promised, all of it
    if (host->script.left == 0 || ++host->calls > CALLS) {
        *outCount = 0;
        return ORV_AOB_END;
    }
    return answerAs(host->script.byte(), asked, outCount);
}

// Whole packs; and sound ones, as far as the tracks are such as a reader knows.
static void checkAob(const std::u16string& path, const std::vector<AobTrackDesc>& tracks)
{
    const Bytes aob = readFile(path);
    check(aob.size() % PACK_BYTES == 0);
    const AobFile file = readAob(aob);
    for (const AobTrackDesc& track : tracks) {
        const AobLayout* const layout = aobLayout(track.assignment, track.sampleSize);
        if (!layout || layout->channels != track.channelCount) return;
    }
    check(file.faults.empty());
}

static void runHost(const std::vector<AobTrackDesc>& tracks, const Input& script)
{
    const TempDir dir;
    Host host = { script, tracks, 0 };
    AobMuxer* muxer = nullptr;
    const std::u16string path = dir.prefix();
    const std::basic_string<OrvWChar> wide(path.begin(), path.end());
    check(aobCreateMuxerW(wide.c_str(), 1, tracks.size(), tracks.data(), samples, reinterpret_cast<uint64_t>(&host),
                          &muxer) == 0);
    const uint64_t result = aobStartMuxing(muxer);
    check(aobReleaseMuxer(muxer) == 0);
    check(result != 0 || fileExists(dir / u"ATS_01.nfo"));
    checkAob(dir / u"ATS_01_1.AOB", tracks);
}

static uint32_t progress(uint32_t, uint32_t, uint32_t, uint64_t user)
{
    return uint32_t(user);
}

static void runWaves(const std::vector<AobTrackDesc>& tracks, Input input)
{
    const TempDir dir;
    const auto context = std::make_unique<AudioDiscContext>();
    const auto titleSet = std::make_unique<AudioTitleSetDesc>();
    const uint64_t start = input.pair(), end = input.pair();
    const uint8_t flags = input.byte();
    std::u16string path = dir / u"source.wav";
    writeFile(path, Bytes(input.at, input.at + input.left));
    context->head.titleSetCount = 1;
    context->head.progressCallback = progress;
    context->head.progressUser = flags & 4;
    titleSet->trackCount = tracks.size();
    writeFile(dir / u"aob", "");
    OSFILE aob = 0;
    check(osOpenFile((dir / u"aob").c_str(), flags & 2 ? OS_READ : OS_CREATE, &aob) == 0);
    AobClock clock = {};
    for (size_t i = 0; i < tracks.size(); i++) {
        AudioTrackDesc* const track = titleSet->tracks + i;
        track->channelCount = std::min(tracks[i].channelCount, uint32_t(MAX_CHANNELS));
        track->assign = tracks[i].assignment;
        track->sampleSize1 = tracks[i].sampleSize, track->sampleRate1 = tracks[i].sampleRate;
        if (track->assign >= 2) track->sampleSize2 = track->sampleSize1, track->sampleRate2 = track->sampleRate1;
        track->startSample = start, track->endSample = end;
        track->multiFile = flags & 1;
        for (char16_t*& source : track->channelPaths) source = path.data();
        (void)orvMuxWaveTrack(context.get(), aob, titleSet.get(), i, 1, &clock);
    }
    (void)osCloseFile(&aob);
    checkAob(dir / u"aob", tracks);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input = { data, size };
    const uint8_t head = input.byte();
    std::vector<AobTrackDesc> tracks(1 + (head >> 1 & 7));
    for (AobTrackDesc& track : tracks) {
        track.channelCount = input.byte();
        track.assignment = input.byte();
        track.sampleSize = input.byte();
        track.sampleRate = uint32_t(RATES[input.byte() & 7]);
    }
    if (head & 1) {
        runWaves(tracks, input);
    } else {
        runHost(tracks, input);
    }
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    const Bytes wave = waveFile(makeChannels(2, 16, 600, 1), 16);
    const Bytes answers = Bytes(100, 0) + fromHex("1A 0A 04 00 00 02 0C 04");
    return {
        fromHex("00 02 01 10 01") + answers,
        fromHex("00 06 14 18 01") + answers,
        fromHex("06 02 01 18 00 04 03 10 01 05 13 18 01 06 14 10 03") + answers,
        fromHex("02 04 03 18 04 05 13 10 05") + Bytes(40, 0),
        fromHex("00 06 01 10 01") + answers,
        fromHex("00 02 14 18 01") + answers,
        fromHex("01 02 01 10 01 00 00 57 02 00") + wave,
        fromHex("01 06 14 18 01 05 00 FF FF 01") + wave,
        fromHex("0F 02 01 10 01 04 03 10 01 05 13 10 01 06 14 10 01 02 01 10 01 04 03 10 01 05 13 10 01 06 14 10 01 "
                "00 00 FF FF 01") +
            wave,
        fromHex("01 02 01 18 03 00 00 09 00 00") + Bytes(wave.begin(), wave.begin() + 80),
    };
}
