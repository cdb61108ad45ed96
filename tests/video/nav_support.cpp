#include "tests/video/nav_support.h"

#include "base/time_code.h"

#include <cstring>
#include <filesystem>

RunRoot::RunRoot(int64_t standard, const std::u16string& log) : logPath(log), context(std::make_unique<DiscContext>())
{
    context->head.videoStandard = standard;
    context->head.frameTicks = orvFrameTicks(standard);
    context->head.logFilePath = logPath.empty() ? nullptr : logPath.data();
}

std::string describe(const VobuRecord& r)
{
    const auto text = [](uint64_t number) { return std::to_string(number); };
    std::string line = text(r.sector) + "-" + text(r.lastSector) + " scr " + text(r.scr) + " pts " + text(r.firstPts) +
                       " n " + text(r.pictureCount) + " vob " + text(r.vobId) + " cell " + text(r.cellId) + " refs " +
                       text(r.firstRefEnd) + " " + text(r.secondRefEnd) + " " + text(r.thirdRefEnd) + " tref " +
                       text(r.temporalRef);
    if (r.spare) line += " spare " + text(r.spare);
    return line;
}

std::string describe(const StreamPackRecord& r)
{
    return "sector " + std::to_string(r.sector) + " pts " + std::to_string(r.pts) + " kind " + std::to_string(r.kind) +
           " index " + std::to_string(r.streamIndex) + " vobu " + std::to_string(r.vobuSector) + " vob " +
           std::to_string(r.vobId);
}

uint64_t recordProgress(const RunHead* run, uint64_t total, uint64_t done, uint64_t user)
{
    ProgressLog& log = *reinterpret_cast<ProgressLog*>(user);
    log.calls.push_back({ total, done });
    log.run = run;
    if (log.calls.size() == 1 && !log.deleteAtFirst.empty()) {
        EXPECT_TRUE(std::filesystem::remove(std::filesystem::path(log.deleteAtFirst)));
    }
    return log.calls.size() == log.cancelAt ? 0 : 1;
}

Scan scanSources(const RunRoot& run, const Sources& sources, const ScanSpec& given)
{
    List<VobuRecord> vobus;
    List<StreamPackRecord> packs;
    const uint64_t result = orvGetMovieInfo(&run.context->head, given.titleSet, sources.slots, given.titleSetNumber,
                                            &vobus.block, given.wantPacks ? &packs.block : nullptr, nullptr, 0, true);
    return { result, vobus.records(), packs.records() };
}

Scan scanBytes(const Bytes& bytes, const ScanSpec& given)
{
    const TempDir folder;
    const RunRoot run(given.standard);
    Sources sources;
    writeSources(sources, folder, bytes, given.cuts);
    return scanSources(run, sources, given);
}

Bytes packOf(const Bytes& before, const std::vector<PackBytes>& named)
{
    Bytes pack(PACK_BYTES, 0);
    for (uint64_t i = 0; i < 38; i++) pack[i] = i == 23 ? uint8_t(0) : before[i];
    for (const PackBytes& field : named) {
        const Bytes bytes = fromHex(field.hex);
        for (uint64_t i = 0; i < bytes.size(); i++) pack.at(field.at + i) = bytes[i];
    }
    return pack;
}

std::string differences(const uint8_t* actual, const Bytes& expected)
{
    std::string text;
    if (std::memcmp(actual, expected.data(), expected.size()) == 0) return text;
    for (uint64_t at = 0; at < expected.size();) {
        if (actual[at] == expected[at]) {
            at++;
            continue;
        }
        uint64_t end = at + 1;
        while (end < expected.size() && end - at < 32 && actual[end] != expected[end]) end++;
        text += "at " + std::to_string(at) + ": " + toHex(actual + at, end - at) + ", should be " +
                toHex(expected.data() + at, end - at) + "\n";
        at = end;
    }
    return text;
}
