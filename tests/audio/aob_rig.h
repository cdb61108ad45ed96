// aob_rig.h: a host of the AOB multiplexer for tests, and the loop behind it fed without one.
#pragma once

#include "audio/aob_packs.h"
#include "tests/support/files.h"
#include "tests/support/wave.h"

#include <orven/aob.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

/** Bytes of a pack as hex text; empty if the file does not reach so far. */
std::string packHex(const Bytes& aob, uint64_t pack, uint64_t at, uint64_t count);
/** Which bytes differ first, by pack; empty if none. */
std::string firstDifference(const Bytes& is, const Bytes& should);

// ---- the exported functions --------------------------------------------------------------------------------------

AobTrackDesc aobTrack(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate);

struct SampleCall {
    uint64_t track, channel, asked;

    bool operator==(const SampleCall&) const = default;
};
void PrintTo(const SampleCall& call, std::ostream* out);

struct SampleAnswer {
    uint64_t result = ORV_AOB_MORE;
    uint64_t count = 0;   // as reported
    Bytes bytes = {};     // as written into the buffer, which has to have room for them
};
typedef std::function<SampleAnswer(const SampleCall&)> SampleHost;

// How a host tells that a track is over.
enum class TrackEnd {
    WITH_LAST,   // result 3 together with the last samples
    BEHIND,      // result 3 with nothing, on the call behind the last samples
    SHORT,       // never: it gives less than was asked
};

// A track and what it sounds like.
struct AobSound {
    AobTrackDesc track = {};
    Channels channels = {};
    TrackEnd end = TrackEnd::WITH_LAST;
};
/** So many samples of every channel, all unlike. */
AobSound aobSound(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate, uint64_t samples,
                  TrackEnd end = TrackEnd::WITH_LAST);
/** A host that gives these sounds. Each one made keeps its own place in them. */
SampleHost playing(const std::vector<AobSound>& sounds);
std::vector<AobTrackDesc> tracksOf(const std::vector<AobSound>& sounds);

struct AobRun {
    uint64_t created = 0, result = 0, released = 0;
    Bytes aob;
    std::vector<SampleCall> calls;
    std::map<std::string, std::string> nfo;   // by "TRACKINFO_01.TrackBlockSize"

    uint64_t packs() const;
    std::string hexAt(uint64_t pack, uint64_t at, uint64_t count) const;
};

/** Creates title set 1 in a folder of its own, muxes, releases. */
AobRun runAob(const std::vector<AobTrackDesc>& tracks, const SampleHost& host);
AobRun runAob(const std::vector<AobSound>& sounds);

/** Values of an INI file, by "section.key"; empty if it is not there. */
std::map<std::string, std::string> readNfo(const std::u16string& path);

// ---- the loop behind them ----------------------------------------------------------------------------------------

AudioTrackDesc trackRecord(uint64_t channels, uint64_t assignment, uint64_t bits, uint64_t rate);

// The AobClock before or behind a track; what a test does not name is 0.
struct AobState {
    uint64_t clock = 0, bytesMuxed = 0, bufferFill = 0, framesDecoded = 0;
};
AobClock clockOf(const AobState& state);
AobState stateOf(const AobClock& clock);

struct PackRun {
    uint64_t result = 0;
    Bytes aob;
    AudioTrackDesc track = {};
    AobState clock = {};
    uint64_t asked = 0;   // of the last fill
};

constexpr uint8_t PACKED = 0x5A;   // all that the source below gives

/** Lays packs from a source that gives these fills one by one, of any number of bytes, and then a last one of nothing.
 */
PackRun layPacks(const AudioTrackDesc& track, const std::vector<AobFill>& fills, const AobState& before = {});
