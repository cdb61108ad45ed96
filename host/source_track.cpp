// source_track.cpp: a track of DVD-Audio on its way from RIFF/WAVE files.
#include "source_track.h"

#include "codes.h"
#include "named_file.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace fs = std::filesystem;

static constexpr uint64_t MOST_BITS_A_SECOND = 9600000;   // of an AOB without packing
static constexpr uint64_t MOST_TICKS = 1ULL << 31;        // of a title set's time stamps, as the track list keeps them

static TrackFault fault(const fs::path& path, uint64_t code, const std::string& why)
{
    return { path, { code, why } };
}

// ---- names --------------------------------------------------------------------------------------------------------

static fs::path toPath(std::string_view utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

static bool isThere(std::string_view name)
{
    std::error_code error;
    return fs::exists(toPath(name), error);
}

/** Where the name that begins a joined text ends: at the first plus sign behind which a file is named that is there. */
static size_t nameEnd(std::string_view joined)
{
    if (isThere(joined)) return joined.size();
    for (size_t plus = joined.find('+'); plus != joined.npos; plus = joined.find('+', plus + 1)) {
        if (isThere(joined.substr(0, plus))) return plus;
    }
    return std::min(joined.find('+'), joined.size());
}

std::vector<fs::path> trackFiles(const std::string& joined)
{
    std::vector<fs::path> files;
    std::string_view rest = joined;
    for (;;) {
        const size_t end = nameEnd(rest);
        files.push_back(toPath(rest.substr(0, end)));
        if (end == rest.size()) return files;
        rest.remove_prefix(end + 1);
    }
}

bool isTrackFileCount(size_t files)
{
    return files == 1 || files == 2 || (files >= 4 && files <= MOST_AOB_CHANNELS);
}

// ---- what a file holds --------------------------------------------------------------------------------------------

static FileFault otherKind(std::istream& in, uint64_t bytes)
{
    StreamFormat format;
    in.clear();
    in.seekg(0);
    FileFault known = recogniseStream(in, bytes, &format);
    const bool nothingKnown = known && known.code == 0 && known.why.starts_with("it begins neither");
    if (nothingKnown) return { CODE_WRONG_WAVE, "it does not begin as a RIFF/WAVE file" };
    return { CODE_WRONG_WAVE, known ? known.why : "it is no RIFF/WAVE file but " + streamText(format) };
}

static FileFault findSamples(const fs::path& path, WaveSamples* wave)
{
    constexpr size_t HEAD_BYTES = 12;
    const uint64_t bytes = fileBytes(path);
    std::ifstream in(path, std::ios::binary);
    if (!in) return { CODE_READ_FAILED, "the file can't be read" };
    char head[HEAD_BYTES] = {};
    in.read(head, HEAD_BYTES);
    if (in.gcount() < std::streamsize(HEAD_BYTES)) {
        return { CODE_WRONG_WAVE, "it holds " + bytesText(bytes) + ", too few for a RIFF/WAVE file" };
    }
    if (std::memcmp(head, "RIFF", 4) != 0 || std::memcmp(head + 8, "WAVE", 4) != 0) return otherKind(in, bytes);
    FileFault found = findWaveSamples(in, bytes, wave);
    if (found && found.code == 0) found.code = CODE_WRONG_WAVE;
    return found;
}

static FileFault checkFormat(const WaveSamples& wave)
{
    const StreamFormat& format = wave.format;
    const std::string bits = std::to_string(format.bits), rate = std::to_string(format.rate);
    if (!wave.isPlain) return { CODE_NOT_LPCM, "its samples are no whole numbers; write them as PCM of 16 or 24 bits" };
    if (format.bits != 16 && format.bits != 24) {
        return { format.bits == 20 ? CODE_20_BITS : CODE_SAMPLE_SIZE,
                 "its samples have " + bits + " bits; write them with 16 or 24" };
    }
    static constexpr uint64_t rates[] = { 44100, 48000, 88200, 96000, 176400, 192000 };
    if (std::find(std::begin(rates), std::end(rates), format.rate) == std::end(rates)) {
        return { CODE_SAMPLE_RATE, "it has " + rate +
                                       " samples a second; DVD-Audio has 44100, 48000, 88200, 96000, 176400 and "
                                       "192000" };
    }
    return {};
}

static FileFault checkChannels(uint64_t channels, bool joined)
{
    const std::string text = std::to_string(channels) + " channels";
    if (channels == 1 || (channels == 2 && !joined)) return {};
    if (joined) return { CODE_CHANNEL_COUNT, "it has " + text + "; of files joined by + each has one" };
    return { CODE_CHANNEL_COUNT,
             "it has " + text +
                 "; a file has one or two. Give a mono file for each of 2, 4, 5 or 6 channels, joined by +: left, "
                 "right, left surround, right surround, centre, low frequency" };
}

/** Bytes of one sample time in a file. */
static uint64_t blockOf(const SourceFile& file)
{
    return file.wave.format.channels * file.wave.format.bits / 8;
}

static uint64_t samplesOf(const SourceFile& file)
{
    return file.wave.format.bytes / blockOf(file);
}

static void warnOfSizes(const SourceFile& file, std::vector<std::string>* warnings)
{
    const uint64_t there = file.wave.format.bytes, torn = there % blockOf(file);
    const std::string name = printablePath(file.path);
    if (file.wave.told == 0 || file.wave.told == UINT32_MAX) {
        warnings->push_back(name + " does not say how many samples it has; all " + bytesText(there) +
                            " behind its header are taken for samples");
    } else if (file.wave.told != there) {
        warnings->push_back(name + " says that it has " + bytesText(file.wave.told) + " of samples, but ends after " +
                            std::to_string(there) + "; those are taken");
    }
    if (torn)
        warnings->push_back(name + " ends within a sample; what there is of it, " + bytesText(torn) + ", is left out");
}

static TrackFault readFile(SourceTrack* track, SourceFile* file)
{
    if (FileFault found = findSamples(file->path, &file->wave)) return { file->path, found };
    if (FileFault unfit = checkFormat(file->wave)) return { file->path, unfit };
    if (FileFault unfit = checkChannels(file->wave.format.channels, track->files.size() > 1)) {
        return { file->path, unfit };
    }
    if (samplesOf(*file) == 0) return fault(file->path, CODE_WRONG_WAVE, "it holds no samples");
    warnOfSizes(*file, &track->warnings);
    return {};
}

// ---- what a track holds -------------------------------------------------------------------------------------------

/** What a file has otherwise than the first one of its track. */
static std::string differenceWhy(const SourceFile& file, const SourceFile& first)
{
    const StreamFormat &its = file.wave.format, &other = first.wave.format;
    const std::string name = printablePath(first.path);
    const auto differs = [&](uint64_t a, uint64_t b, const std::string& of) {
        return "it has " + std::to_string(a) + of + ", and " + name + " has " + std::to_string(b) +
               "; the files of a track are alike in that";
    };
    if (its.rate != other.rate) return differs(its.rate, other.rate, " samples a second");
    if (its.bits != other.bits) return differs(its.bits, other.bits, " bits a sample");
    const uint64_t length = samplesOf(file), otherLength = samplesOf(first);
    return length == otherLength ? "" : differs(length, otherLength, " samples");
}

static std::string megabits(uint64_t bits)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f Mbit/s", double(bits) / 1e6);
    return text;
}

// Meant: within this bound each full pack brings more than the decoder takes meanwhile, so that the library never finds
// it run dry. Test: SourceTrack.EveryRateThatIsTakenPlays
static FileFault checkBitRate(const SourceTrack& track)
{
    const uint64_t bits = track.channels * track.bits * track.rate;
    if (bits <= MOST_BITS_A_SECOND) return {};
    return { CODE_AOB_UNDERRUN, "it has " + formatText(track) + ", which is " + megabits(bits) +
                                    "; DVD-Audio without packing holds at most " + megabits(MOST_BITS_A_SECOND) };
}

/** Whether the packs of a format hold two sample times at once, so that an odd last one would be dropped. */
static bool isPaired(const SourceTrack& track)
{
    return track.channels > 2 || track.bits > 16;
}

TrackFault readSourceTrack(SourceTrack* track)
{
    for (SourceFile& file : track->files) {
        if (TrackFault unfit = readFile(track, &file)) return unfit;
    }
    const SourceFile& first = track->files.front();
    for (const SourceFile& file : track->files) {
        if (std::string why = differenceWhy(file, first); !why.empty()) return fault(file.path, 0, why);
    }
    track->channels = std::max<size_t>(track->files.size(), 2);
    track->bits = first.wave.format.bits;
    track->rate = first.wave.format.rate;
    track->sourceSamples = samplesOf(first);
    track->samples = track->sourceSamples + (isPaired(*track) ? track->sourceSamples % 2 : 0);
    return { first.path, checkBitRate(*track) };
}

TrackFault checkTitleSet(const std::vector<SourceTrack>& tracks, size_t* number)
{
    uint64_t ticks = 0;
    for (size_t i = 0; i < tracks.size(); i++) {
        const SourceTrack &track = tracks[i], &first = tracks.front();
        const fs::path& path = track.files.front().path;
        *number = i + 1;
        if (track.channels != first.channels || track.bits != first.bits || track.rate != first.rate) {
            return fault(path, 0,
                         "it has " + formatText(track) + ", and track 1 has " + formatText(first) +
                             "; the tracks of a title set are alike in that. Put it onto a disc of its own");
        }
        ticks += trackTicks(track);
        if (ticks >= MOST_TICKS) {
            return fault(path, 0,
                         "with it the title set lasts longer than 6 hours and 37 minutes, the most that it "
                         "can; divide the tracks among several discs");
        }
    }
    return {};
}

uint64_t trackTicks(const SourceTrack& track)
{
    return (track.samples * TICKS_A_SECOND + track.rate - 1) / track.rate;
}

AobTrackDesc describeTrack(const SourceTrack& track)
{
    static constexpr uint32_t assignments[MOST_AOB_CHANNELS + 1] = { 0, 0, 1, 0, 3, 19, 20 };   // by channels
    return { uint32_t(track.channels), assignments[track.channels], 0, uint32_t(track.bits), uint32_t(track.rate), 0 };
}

std::string formatText(const SourceTrack& track)
{
    return std::to_string(track.channels) + " channels, " + std::to_string(track.bits) + " bits, " +
           std::to_string(track.rate) + " Hz";
}

// ---- samples ------------------------------------------------------------------------------------------------------

uint64_t bytesOfTracks(const std::vector<SourceTrack>& tracks)
{
    uint64_t bytes = 0;
    for (const SourceTrack& track : tracks) bytes += track.samples * track.channels * track.bits / 8;
    return bytes;
}

static uint64_t stop(SourceFeed* feed, const fs::path& path)
{
    feed->fault = fault(path, CODE_READ_FAILED, "the file can't be read, or has become shorter meanwhile");
    return CODE_READ_FAILED;
}

static uint64_t openTrack(SourceFeed* feed, uint64_t number)
{
    const SourceTrack& track = (*feed->tracks)[number];
    feed->track = number;
    feed->given = feed->packSamples = 0;
    feed->files.clear();
    feed->packs.assign(track.files.size(), {});
    for (const SourceFile& file : track.files) {
        std::ifstream& in = feed->files.emplace_back(file.path, std::ios::binary);
        in.seekg(std::streamoff(file.wave.format.from));
        if (!in) return stop(feed, file.path);
    }
    return 0;
}

/** Reads the samples of a pack from all files. Behind the end of the files come zeros. */
static uint64_t readPack(SourceFeed* feed, uint64_t room)
{
    const SourceTrack& track = (*feed->tracks)[feed->track];
    feed->packSamples = std::min(room, track.samples - feed->given);
    const uint64_t there =
        std::min(feed->packSamples, track.sourceSamples - std::min(track.sourceSamples, feed->given));
    for (size_t i = 0; i < track.files.size(); i++) {
        const uint64_t block = blockOf(track.files[i]);
        std::vector<uint8_t>& pack = feed->packs[i];
        pack.assign(feed->packSamples * block, 0);
        if (!feed->files[i].read(reinterpret_cast<char*>(pack.data()), std::streamsize(there * block))) {
            return stop(feed, track.files[i].path);
        }
    }
    feed->given += feed->packSamples;
    feed->delivered += feed->packSamples * track.channels * track.bits / 8;
    return 0;
}

/** One channel of the pack at hand. */
static void copyChannel(const SourceFeed& feed, uint64_t channel, uint64_t samples, uint8_t* to)
{
    const SourceTrack& track = (*feed.tracks)[feed.track];
    const uint64_t bytes = track.bits / 8;
    const uint64_t file = track.files.size() > 1 ? channel : 0, block = blockOf(track.files[file]);
    const uint64_t within = block > bytes ? channel * bytes : 0;
    const uint8_t* from = feed.packs[file].data() + within;
    for (uint64_t i = 0; i < samples; i++) std::memcpy(to + i * bytes, from + i * block, bytes);
}

uint64_t giveSamples(SourceFeed* feed, uint64_t track, uint8_t* buffer, uint64_t sampleCount, uint64_t channel,
                     uint64_t* outCount)
{
    if (track != feed->track) {
        if (uint64_t error = openTrack(feed, track)) return error;
    }
    if (channel == 0) {
        if (uint64_t error = readPack(feed, sampleCount)) return error;
    }
    *outCount = std::min(sampleCount, feed->packSamples);
    copyChannel(*feed, channel, *outCount, buffer);
    return feed->given == (*feed->tracks)[track].samples ? ORV_AOB_END : ORV_AOB_MORE;
}
