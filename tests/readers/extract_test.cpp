// extract_test.cpp: tracks of discs made of real sound, extracted by the program, beside what ffmpeg decodes from the
// same discs and from the files that went in.
#include "tests/readers/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace fs = std::filesystem;

#ifdef ORVEN_PROGRAM

namespace {

// A folder for one disc and its tracks, removed with the record.
struct Place {
    Place() : root(shelve({}))
    {
        fs::remove(root);
        fs::create_directories(root / "AUDIO_TS");
    }
    ~Place()
    {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    fs::path root;
};

/** Extracts all tracks into out. @return the program's exit code */
int extract(const fs::path& disc, const fs::path& out, const std::string& options = {})
{
    const std::string command =
        std::string(ORVEN_PROGRAM) + " extract --quiet " + options + " --out " + out.string() + " " + disc.string();
    return std::system(command.c_str()) == 0 ? 0 : 1;
}

/** Samples of one stream as ffmpeg decodes them, low byte first. form: "s16le" or "s24le" */
Bytes decoded(const fs::path& file, const std::string& form, const std::string& options = "-map 0:a")
{
    const fs::path out = shelve({});
    runEncoder("-i " + file.string() + " " + options + " -c:a pcm_" + form + " -f " + form + " " + out.string());
    return bytesOf(out);
}

std::string wavePath(const fs::path& out, uint64_t number, const std::string& suffix)
{
    return (out / ("track00" + std::to_string(number) + "_" + suffix + ".wav")).string();
}

void append(Bytes* to, const Bytes& from)
{
    to->insert(to->end(), from.begin(), from.end());
}

// ---- DVD-Video ----------------------------------------------------------------------------------------------------

/** A WAVEFORMATEX of two channels of 16 bits at 48 kHz. */
const Bytes STEREO_16 = { 1, 0, 2, 0, 0x80, 0xBB, 0, 0, 0, 0xEE, 2, 0, 4, 0, 16, 0, 0, 0 };

/** Sound that fills its last pack, of 2008 bytes, as `orven mux` hands it over. */
Bytes lpcm(int seconds)
{
    Bytes bytes = bytesOf(realSound("-c:a pcm_s16le -ac 2", "s16le", seconds));
    bytes.resize((bytes.size() + 2007) / 2008 * 2008);
    return bytes;
}

fs::path movieWithLpcm(Standard standard, int seconds)
{
    return shelve(multiplex({ { ORV_MUX_VIDEO, bytesOf(realVideo(standard, seconds)) },
                              { ORV_MUX_LPCM, lpcm(seconds), STEREO_16, true } }));
}

// The chapters of a title, one behind the other, are its sound from the first sample to the last.
TEST(Extract, ChaptersOfATitleAreItsSound)
{
    for (const Standard standard : { PAL, NTSC }) {
        SCOPED_TRACE(standard);
        const fs::path movie = movieWithLpcm(standard, 6);
        const Disc disc(standard, { { .keys = "chapters=3\nchapter2=180000\nchapter3=360000\nchannel=2\nsamplerate=48\n"
                                              "samplesize=16\n",
                                      .cuts = { 1000 * 2048 },
                                      .movie = movie,
                                      .audio = "PCM" } });
        ASSERT_EQ(disc.result, 0u);
        const Place place;
        ASSERT_EQ(extract(disc.root, place.root / "out"), 0);
        Bytes all;
        for (uint64_t chapter = 1; chapter <= 3; chapter++) {
            const Bytes samples = decoded(wavePath(place.root / "out", chapter, "lrf"), "s16le");
            // Two seconds each, but for the sound that lies in packs ahead of its time.
            EXPECT_NEAR(double(samples.size()) / 192000, 2, 0.6) << chapter;
            append(&all, samples);
        }
        EXPECT_TRUE(all == lpcm(6));
        EXPECT_TRUE(all == decoded(movie, "s16le", "-map 0:i:0xa0"));
        // Split by channel they are what ffmpeg splits.
        ASSERT_EQ(extract(disc.file(""), place.root / "mono", "--mono"), 0);
        Bytes left;
        for (uint64_t chapter = 1; chapter <= 3; chapter++)
            append(&left, decoded(wavePath(place.root / "mono", chapter, "lf"), "s16le"));
        EXPECT_TRUE(left == decoded(movie, "s16le", "-map 0:i:0xa0 -af pan=mono\\|c0=c0"));
    }
}

// ---- DVD-Audio ----------------------------------------------------------------------------------------------------

// A WAVE file of the encoder's, and how its channels are handed to the AOB.
struct AlbumTrack {
    const char* layout;   // as the encoder calls it
    uint32_t channels, assign, bits, rate;
    std::vector<uint64_t> order;   // place in the WAVE file of left, right, surrounds, centre, low frequencies
    std::vector<std::string> suffixes = {};
    fs::path wave = {};
    Bytes samples = {};       // of the file, in turns
    uint64_t given[6] = {};   // samples of each channel
};

std::string formOf(const AlbumTrack& track)
{
    return track.bits == 16 ? "s16le" : "s24le";
}

uint64_t giveSamples(uint64_t, uint8_t* buffer, uint64_t count, uint64_t channel, uint64_t* out, uint64_t user)
{
    AlbumTrack* track = reinterpret_cast<AlbumTrack*>(user);
    const uint64_t bytes = track->bits / 8, frame = bytes * track->channels, all = track->samples.size() / frame;
    uint64_t& given = track->given[channel];
    *out = std::min(count, all - given);
    for (uint64_t i = 0; i < *out; i++, given++) {
        const auto from = track->samples.begin() + std::ptrdiff_t(given * frame + track->order[channel] * bytes);
        buffer = std::copy_n(from, bytes, buffer);
    }
    return given == all ? ORV_AOB_END : ORV_AOB_MORE;
}

/** Two seconds; each channel is a tone of its own under noise. */
void makeSound(AlbumTrack* track)
{
    std::string tones;
    for (uint64_t i = 0; i < track->channels; i++)
        tones += (i ? "|" : "") + std::string("0.5*sin(") + std::to_string(1000 + 700 * i) + "*t)+0.3*random(0)";
    track->wave = shelve({});
    runEncoder("-f lavfi -i \"aevalsrc=" + tones + ":s=" + std::to_string(track->rate) + ":c=" + track->layout +
               "\" -t 2 -c:a pcm_" + formOf(*track) + " -f wav " + track->wave.string());
    track->samples = decoded(track->wave, formOf(*track));
}

void makeAlbum(const fs::path& folder, AlbumTrack* track)
{
    const AobTrackDesc desc = { track->channels, track->assign, 0, track->bits, track->rate, 0 };
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(folder.c_str(), 1, 1, &desc, giveSamples, reinterpret_cast<uint64_t>(track), &muxer), 0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    const std::string text = "[COMMON]\nversion=1.0\nmode=PAL\n[AMG]\ntitlesets=1\n[ATS_01]\ntracks=1\n[TRACK_01_01]\n"
                             "format=LPCM\nassign=" +
                             std::to_string(track->assign) + "\nsamplesize=" + std::to_string(track->bits) +
                             "\nsamplerate=" + std::to_string(track->rate) +
                             "\nplaytime=180000\nchannel1=" + (folder / "ATS_01_1.AOB").string() + "\n";
    const fs::path project = shelve(Bytes(text.begin(), text.end()));
    ASSERT_EQ(ParseAudioDesc(project.c_str(), (folder / "").c_str(), nullptr, nullptr, 0, nullptr), 0u);
}

// What comes out is the sound that went in, channel by channel, as ffmpeg reads both.
TEST(Extract, AlbumIsItsSound)
{
    typedef std::vector<std::string> Names;
    AlbumTrack tracks[] = {
        { "stereo", 2, 1, 16, 48000, { 0, 1 }, Names{ "lf", "rf" } },
        { "stereo", 2, 1, 24, 96000, { 0, 1 }, Names{ "lf", "rf" } },
        { "stereo", 2, 1, 24, 192000, { 0, 1 }, Names{ "lf", "rf" } },
        { "quad", 4, 3, 16, 44100, { 0, 1, 2, 3 }, Names{ "lf", "rf", "ls", "rs" } },
        { "5.0", 5, 19, 24, 48000, { 0, 1, 3, 4, 2 }, Names{ "lf", "rf", "ls", "rs", "c" } },
        { "5.1", 6, 20, 24, 48000, { 0, 1, 4, 5, 2, 3 }, Names{ "lf", "rf", "ls", "rs", "c", "lfe" } },
    };
    for (AlbumTrack& track : tracks) {
        SCOPED_TRACE(std::string(track.layout) + " " + std::to_string(track.rate));
        const Place place;
        ASSERT_NO_FATAL_FAILURE(makeSound(&track));
        ASSERT_EQ(track.samples.size(), 2u * track.rate * track.channels * track.bits / 8);
        ASSERT_NO_FATAL_FAILURE(makeAlbum(place.root / "AUDIO_TS", &track));
        ASSERT_EQ(extract(place.root, place.root / "mono", "--mono"), 0);
        for (uint64_t channel = 0; channel < track.channels; channel++) {
            const std::string one = "-map 0:a -af pan=mono\\|c0=c" + std::to_string(track.order[channel]);
            EXPECT_TRUE(decoded(wavePath(place.root / "mono", 1, track.suffixes[channel]), formOf(track)) ==
                        decoded(track.wave, formOf(track), one))
                << track.suffixes[channel];
        }
        if (track.channels != 2) continue;
        ASSERT_EQ(extract(place.root, place.root / "pairs"), 0);
        EXPECT_TRUE(decoded(wavePath(place.root / "pairs", 1, "lrf"), formOf(track)) == track.samples);
    }
}

// A movie of another multiplexer, whose packs are cut as that likes.
TEST(Extract, SoundOfAnotherMultiplexer)
{
    AlbumTrack sound = { "stereo", 2, 1, 16, 48000, { 0, 1 } };
    ASSERT_NO_FATAL_FAILURE(makeSound(&sound));
    const fs::path movie = shelve({});
    runEncoder("-f lavfi -i testsrc2=s=720x576:r=25 -i " + sound.wave.string() +
               " -t 2 -target pal-dvd -b:v 2000k -c:a pcm_dvd -sample_fmt s16 -f dvd " + movie.string());
    const Disc disc(PAL, { { .keys = "chapters=2\nchapter2=90000\nchannel=2\nsamplerate=48\nsamplesize=16\n",
                             .movie = movie,
                             .audio = "PCM" } });
    ASSERT_EQ(disc.result, 0u);
    const Place place;
    ASSERT_EQ(extract(disc.root, place.root / "out"), 0);
    Bytes all = decoded(wavePath(place.root / "out", 1, "lrf"), "s16le");
    append(&all, decoded(wavePath(place.root / "out", 2, "lrf"), "s16le"));
    EXPECT_TRUE(all == decoded(movie, "s16le"));
    EXPECT_TRUE(all == sound.samples);
}

}   // namespace

#endif
