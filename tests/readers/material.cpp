#include "tests/readers/material.h"

#include <orven/orven.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <tuple>

namespace fs = std::filesystem;

static fs::path newFolder()
{
    static std::atomic<uint64_t> counter{ uint64_t(std::chrono::steady_clock::now().time_since_epoch().count()) };
    const fs::path folder = fs::temp_directory_path() / ("orven-disc-" + std::to_string(counter++));
    fs::create_directories(folder);
    return folder;
}

// What this program has encoded, removed when it ends.
struct Shelf {
    ~Shelf()
    {
        std::error_code ignored;
        if (!folder.empty()) fs::remove_all(folder, ignored);
    }
    fs::path newFile(const std::string& ending)
    {
        if (folder.empty()) folder = newFolder();
        return folder / (std::to_string(count++) + ending);
    }

    fs::path folder;
    uint64_t count = 0;
    std::map<std::tuple<std::string, Standard, int, int>, fs::path> encoded;
};

static Shelf& shelf()
{
    static Shelf all;
    return all;
}

void runEncoder(const std::string& arguments)
{
    const std::string command = std::string(ORVEN_FFMPEG) + " -nostdin -y -v error " + arguments;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

static std::string picture(Standard standard, int pattern)
{
    const char* const pictures[] = { "testsrc2", "mandelbrot", "smptebars" };
    return std::string(" -f lavfi -i ") + pictures[pattern] +
           (standard == PAL ? "=s=720x576:r=25" : "=s=720x480:r=30000/1001");
}

static std::string program(Standard standard, int seconds)
{
    return " -t " + std::to_string(seconds) + " -target " + (standard == PAL ? "pal-dvd" : "ntsc-dvd") + " -b:v 2000k ";
}

const fs::path& realMovie(Standard standard, int pattern, int seconds)
{
    fs::path& movie = shelf().encoded[{ "movie", standard, pattern, seconds }];
    if (movie.empty()) {
        movie = shelf().newFile(".vob");
        const std::string tone = "sine=frequency=" + std::to_string(220 + 110 * pattern) + ":sample_rate=48000";
        runEncoder(picture(standard, pattern) + " -f lavfi -i " + tone + program(standard, seconds) + movie.string());
    }
    return movie;
}

const fs::path& realStill(Standard standard, int pattern)
{
    fs::path& still = shelf().encoded[{ "still", standard, pattern, 0 }];
    if (still.empty()) {
        still = shelf().newFile(".m2v");
        runEncoder(picture(standard, pattern) + " -frames:v 1 -c:v mpeg2video -q:v 4 -f mpeg2video " + still.string());
    }
    return still;
}

static void put32(std::vector<uint8_t>& bytes, uint64_t at, uint64_t value)
{
    for (uint64_t i = 0; i < 4; i++) bytes.at(at + i) = uint8_t(value >> (24 - 8 * i));
}

/** Clock of a pack, in ticks. */
static uint64_t packClock(const uint8_t* pack)
{
    return uint64_t(pack[4] & 0x38) << 27 | uint64_t(pack[4] & 3) << 28 | uint64_t(pack[5]) << 20 |
           uint64_t(pack[6] & 0xF8) << 12 | uint64_t(pack[6] & 3) << 13 | uint64_t(pack[7]) << 5 | pack[8] >> 3;
}

/** Stores clock and length of each unit in its navigation pack. */
static void tellUnits(std::vector<uint8_t>& stream)
{
    uint64_t end = stream.size() / 2048;
    for (uint64_t sector = end; sector-- > 0;) {
        const uint8_t* pack = stream.data() + sector * 2048;
        if (pack[17] != 0xBB) continue;
        put32(stream, sector * 2048 + 1031, packClock(pack));
        put32(stream, sector * 2048 + 1039, end - sector - 1);
        end = sector;
    }
}

const fs::path& realAnimation(Standard standard, int pattern, int seconds)
{
    fs::path& animation = shelf().encoded[{ "animation", standard, pattern, seconds }];
    if (animation.empty()) {
        const fs::path file = shelf().newFile(".vob");
        runEncoder(picture(standard, pattern) + program(standard, seconds) + "-an " + file.string());
        std::vector<uint8_t> stream = bytesOf(file);
        tellUnits(stream);
        animation = shelve(stream);
    }
    return animation;
}

fs::path shelve(const std::vector<uint8_t>& bytes)
{
    const fs::path file = shelf().newFile(".bin");
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    return file;
}

std::vector<uint8_t> bytesOf(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.good()) << file;
    std::vector<uint8_t> bytes(fs::exists(file) ? fs::file_size(file) : 0);
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    EXPECT_EQ(in.gcount(), std::streamsize(bytes.size())) << file;
    return bytes;
}

static std::string vobName(uint64_t titleSet, uint64_t part)
{
    char name[32];
    snprintf(name, sizeof(name), "VTS_%02u_%u.VOB", unsigned(titleSet), unsigned(part));
    return name;
}

/** Puts the movie into its source files. @return the keys that name them */
static std::string placeSources(const fs::path& folder, Standard standard, const TitleSetPlan& plan, uint64_t titleSet)
{
    const fs::path& source = plan.movie.empty() ? realMovie(standard, plan.pattern, plan.seconds) : plan.movie;
    const std::vector<uint8_t> movie = bytesOf(source);
    std::string keys;
    uint64_t from = 0;
    for (uint64_t part = 0; part <= plan.cuts.size(); part++) {
        const uint64_t to = part < plan.cuts.size() ? plan.cuts[part] : movie.size();
        const fs::path file = folder / vobName(titleSet, part + 1);
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(movie.data() + from), std::streamsize(to - from));
        keys += "source" + (part ? std::to_string(part) : std::string()) + "=" + file.string() + "\n";
        from = to;
    }
    return keys;
}

Disc::Disc(Standard standard, const std::vector<TitleSetPlan>& titleSets, const std::string& moreSections,
           const std::string& managerKeys)
    : root(newFolder()), result(0)
{
    const fs::path videoTs = root / "VIDEO_TS";
    fs::create_directory(videoTs);
    std::string project = "[COMMON]\nversion=1.0\nmode=" + std::string(standard == PAL ? "PAL" : "NTSC") +
                          "\n[VMG]\ntitlesets=" + std::to_string(titleSets.size()) + "\n" + managerKeys;
    for (uint64_t i = 0; i < titleSets.size(); i++) {
        project += "[VTS_" + std::to_string(i + 1) + "]\naudio=" + titleSets[i].audio + "\n" + titleSets[i].keys +
                   placeSources(videoTs, standard, titleSets[i], i + 1);
    }
    project += moreSections;
    const fs::path projectFile = root / "project.ini";
    std::ofstream(projectFile) << project;
    const std::string target = (videoTs / "").string();
    result = ParseDVDDesc(projectFile.c_str(), target.c_str(), "", nullptr, 0, (root / "log").c_str());
}

Disc::~Disc()
{
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

fs::path Disc::file(const std::string& name) const
{
    return root / "VIDEO_TS" / name;
}
