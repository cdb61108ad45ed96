#include "tests/run/disc_run.h"

#include "tests/support/disc_reader.h"

#include <algorithm>
#include <ostream>

namespace fs = std::filesystem;

void PrintTo(const ProgressCall& call, std::ostream* out)
{
    *out << "{ " << call.total << ", " << call.done << ", kind " << call.kind << " }";
}

Snapshot takeSnapshot(const fs::path& folder)
{
    Snapshot files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = toUtf8(fs::relative(entry.path(), folder).generic_u16string());
        files[entry.is_directory() ? name + "/" : name] =
            entry.is_directory() ? Bytes() : readFile(entry.path().u16string());
    }
    return files;
}

DiscRun::DiscRun()
{
    fs::create_directory(folder.root / "target");
    target = (folder.root / "target" / "").u16string();
}

std::u16string DiscRun::inTarget(const std::string& name) const
{
    return target + toWide(name);
}

std::string DiscRun::text(const std::string& name) const
{
    return toUtf8(inTarget(name));
}

void DiscRun::put(const std::string& name, const Bytes& bytes) const
{
    writeFile(inTarget(name), bytes);
}

Bytes DiscRun::get(const std::string& name) const
{
    return readFile(inTarget(name));
}

bool DiscRun::has(const std::string& name) const
{
    return fileExists(inTarget(name));
}

static uint32_t noteCall(uint32_t total, uint32_t done, uint32_t kind, uint64_t user)
{
    DiscRun* const run = reinterpret_cast<DiscRun*>(uintptr_t(user));
    run->calls.push_back({ total, done, kind });
    return run->calls.size() == run->cancelAt ? run->cancelWith : 0;
}

static const OrvWChar* wide(const std::u16string& text)
{
    return reinterpret_cast<const OrvWChar*>(text.c_str());
}

uint64_t DiscRun::author(const std::string& projectText)
{
    writeFile(project, projectText);
    return author();
}

uint64_t DiscRun::author()
{
    calls.clear();
    const uint64_t user = uint64_t(reinterpret_cast<uintptr_t>(this));
    const OrvProgress progress = nullProgress ? nullptr : noteCall;
    uint64_t result = 0;
    if (narrow) {
        // This form takes no null strings: a log or an earlier run that there is not is an empty one.
        const auto parse = audio ? ParseAudioDesc : ParseDVDDesc;
        result = parse(toUtf8(project).c_str(), toUtf8(target).c_str(), toUtf8(previous).c_str(), progress, user,
                       nullLog ? "" : toUtf8(log).c_str());
    } else {
        const bool noPrevious = previous.empty() && nullPrevious;
        const auto parse = audio ? ParseAudioDescW : ParseDVDDescW;
        result = parse(wide(project), wide(target), noPrevious ? nullptr : wide(previous), progress, user,
                       nullLog ? nullptr : wide(log));
    }
    return result;
}

Movie smallMovie(const std::vector<uint64_t>& unitSectors, int64_t standard)
{
    MovieSpec movie = { .standard = standard };
    for (const uint64_t sectors : unitSectors) {
        movie.vobus.push_back({ .pictureBytes = { 100 }, .padding = sectors - 2 });
    }
    return makeMovie(movie);
}

Movie fourUnits()
{
    return smallMovie({ 5, 5, 5, 5 });
}

std::string plainProject(const DiscRun& run, uint64_t titleSets, const std::string& mode, const std::string& extra)
{
    std::string project =
        "[COMMON]\nversion=1.0\nmode=" + mode + "\n[VMG]\ntitlesets=" + std::to_string(titleSets) + "\n";
    for (uint64_t i = 1; i <= titleSets; i++) {
        const std::string number = std::to_string(i);
        const std::string vob = (i < 10 ? "VTS_0" : "VTS_") + number + "_1.VOB";
        project += "[VTS_" + number + "]\nsource=" + run.text(vob) + "\n" + extra;
    }
    return project;
}

uint64_t changedOutsideNavPacks(const Bytes& before, const Bytes& after)
{
    if (before.size() != after.size()) return std::max(before.size(), after.size());
    const Bytes systemHeader = { 0x00, 0x00, 0x01, 0xBB };
    uint64_t changed = 0;
    for (uint64_t at = 0; at < before.size(); at += PACK_BYTES) {
        const bool nav = at + PACK_BYTES <= before.size() &&
                         std::equal(systemHeader.begin(), systemHeader.end(), before.begin() + std::ptrdiff_t(at + 14));
        const std::ptrdiff_t from = std::ptrdiff_t(at), to = std::ptrdiff_t(std::min(at + PACK_BYTES, before.size()));
        if (nav || std::equal(before.begin() + from, before.begin() + to, after.begin() + from)) continue;
        for (uint64_t i = at; i < at + PACK_BYTES && i < before.size(); i++) changed += before[i] != after[i];
    }
    return changed;
}

void expectSoundDisc(const DiscRun& run)
{
    const DiscReport report = readDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_LT(0u, report.navPacks);
}
