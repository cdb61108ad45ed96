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

// Movies of this program, removed when it ends.
struct MovieShelf {
    ~MovieShelf()
    {
        std::error_code ignored;
        if (!folder.empty()) fs::remove_all(folder, ignored);
    }
    fs::path folder;
    std::map<std::tuple<Standard, int, int>, fs::path> movies;
};

static void encode(const fs::path& to, Standard standard, int pattern, int seconds)
{
    const char* const pictures[] = { "testsrc2", "mandelbrot", "smptebars" };
    const std::string format = standard == PAL ? "=s=720x576:r=25" : "=s=720x480:r=30000/1001";
    const std::string tone = "sine=frequency=" + std::to_string(220 + 110 * pattern) + ":sample_rate=48000";
    const std::string command = std::string(ORVEN_FFMPEG) + " -nostdin -y -v error -f lavfi -i '" + pictures[pattern] +
                                format + "' -f lavfi -i '" + tone + "' -t " + std::to_string(seconds) + " -target " +
                                (standard == PAL ? "pal-dvd" : "ntsc-dvd") + " -b:v 2000k '" + to.string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

const fs::path& realMovie(Standard standard, int pattern, int seconds)
{
    static MovieShelf shelf;
    if (shelf.folder.empty()) shelf.folder = newFolder();
    fs::path& movie = shelf.movies[{ standard, pattern, seconds }];
    if (movie.empty()) {
        movie = shelf.folder / ("movie-" + std::to_string(shelf.movies.size()) + ".vob");
        encode(movie, standard, pattern, seconds);
    }
    return movie;
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
    std::ifstream in(realMovie(standard, plan.pattern, plan.seconds), std::ios::binary);
    const std::string movie((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string keys;
    uint64_t from = 0;
    for (uint64_t part = 0; part <= plan.cuts.size(); part++) {
        const uint64_t to = part < plan.cuts.size() ? plan.cuts[part] : movie.size();
        const fs::path file = folder / vobName(titleSet, part + 1);
        std::ofstream(file, std::ios::binary).write(movie.data() + from, std::streamsize(to - from));
        keys += "source" + (part ? std::to_string(part) : std::string()) + "=" + file.string() + "\n";
        from = to;
    }
    return keys;
}

Disc::Disc(Standard standard, const std::vector<TitleSetPlan>& titleSets, const std::string& moreSections)
    : root(newFolder()), result(0)
{
    const fs::path videoTs = root / "VIDEO_TS";
    fs::create_directory(videoTs);
    std::string project = "[COMMON]\nversion=1.0\nmode=" + std::string(standard == PAL ? "PAL" : "NTSC") +
                          "\n[VMG]\ntitlesets=" + std::to_string(titleSets.size()) + "\n";
    for (uint64_t i = 0; i < titleSets.size(); i++) {
        project += "[VTS_" + std::to_string(i + 1) + "]\naudio=AC3\n" + titleSets[i].keys +
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
