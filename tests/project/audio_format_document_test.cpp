// What docs/audio-project-format.md shows is true: its complete projects are read, each of its keys is one that the
// readers ask for and gives the errors that stand beside it, its errors are the library's.
#include "project/audio_reader.h"
#include "project/channel_assignment.h"
#include "project/reader.h"
#include "tests/project/audio_project.h"
#include "tests/project/error_rows.h"
#include "tests/support/document.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace {

std::string document()
{
    return documentText("audio-project-format.md");
}

AudioContextPtr readWhole(const ProjectFile& project, int64_t standard, uint64_t titleSets, uint64_t menus)
{
    AudioContextPtr context = makeAudioContext(project);
    RunHead* const run = &context->head;
    int64_t mode = 0;
    EXPECT_EQ(orvReadAudioCommon(run, project.file, &mode), 0u);
    EXPECT_EQ(mode, standard);
    EXPECT_EQ(osProfileInt(project.file, u"AMG", u"titlesets", 0), titleSets);
    EXPECT_EQ(osProfileInt(project.file, u"AMG", u"menus", 0), menus);
    context->hasAsvs = osProfileHasLines(project.file, u"ASVS");
    EXPECT_EQ(orvReadStills(run, project.file, mode, &context->asvs), 0u);
    EXPECT_EQ(orvReadAttributes(run, project.file, u"AMG_MENU", mode, &context->amgAttributes), 0u);
    for (uint64_t i = 0; i < menus; i++) {
        const std::u16string name = u"AMG_MENU" + toWide(std::to_string(i + 1));
        EXPECT_EQ(orvReadAmgMenu(run, project.file, name.c_str(), &context->amgMenus[i]), 0u);
    }
    for (uint64_t n = 1; n <= titleSets; n++) {
        EXPECT_EQ(orvReadAudioTitleSet(run, project.file, n, addTitleSet(context.get(), n)), 0u);
    }
    EXPECT_TRUE(project.logged({}));
    return context;
}

// What a reader makes of one section: its result and, where a row of the document has no error, the record's bytes.
struct Outcome {
    uint64_t result = 0;
    Bytes record;
};

template <class Record> Bytes bytesOf(const Record& record)
{
    const auto* const at = reinterpret_cast<const uint8_t*>(&record);
    return Bytes(at, at + sizeof record);
}

Outcome readCommon(const std::string& lines)
{
    const ProjectFile project("[COMMON]\n" + lines + "version=1.0\n");
    int64_t standard = 0;
    const uint64_t result = orvReadAudioCommon(&project.run, project.file, &standard);
    return { result, bytesOf(standard) };
}

Outcome readMenu(const std::string& lines)
{
    const ProjectFile project("[AMG_MENU1]\n" + lines + "background=a\nsubpicture=b\n");
    const AudioContextPtr context = makeAudioContext(project);
    return { orvReadAmgMenu(&project.run, project.file, u"AMG_MENU1", &context->amgMenus[0]), {} };
}

Outcome readStills(const std::string& text)
{
    const ProjectFile project(text);
    const AudioContextPtr context = makeAudioContext(project);
    const uint64_t result = orvReadStills(&project.run, project.file, 1, &context->asvs);
    return { result, bytesOf(context->asvs.attributes) };
}

Outcome readAsvs(const std::string& lines)
{
    return readStills("[ASVS]\n" + lines);
}

Outcome readAttributeSet(const std::string& lines)
{
    return readStills("[ASVS]\nattributes=1\n[ASVU_ATTRIBUTE1]\n" + lines);
}

Outcome readStill(const std::string& lines)
{
    return readStills("[ASVS]\nstills=1\n[ASV01]\n" + lines + "background=a\n");
}

Outcome readTitleSet(const std::string& text)
{
    const ProjectFile project(text);
    const AudioContextPtr context = makeAudioContext(project);
    AudioTitleSetDesc* const titleSet = addTitleSet(context.get(), 1);
    const uint64_t result = orvReadAudioTitleSet(&project.run, project.file, 1, titleSet);
    return { result, bytesOf(*titleSet) };
}

Outcome readAts(const std::string& lines)
{
    return readTitleSet("[ATS_01]\n" + lines);
}

Outcome readTrack(const std::string& lines)
{
    return readTitleSet("[ATS_01]\ntracks=1\n[TRACK_01_01]\n" + lines +
                        "format=LPCM\nassign=1\nsamplesize=16\nsamplerate=48000\nplaytime=1\n");
}

const std::map<std::string, Outcome (*)(const std::string&)> READERS = {
    { "COMMON", readCommon },     { "AMG_MENUm", readMenu },
    { "ASVS", readAsvs },         { "ASVU_ATTRIBUTEk", readAttributeSet },
    { "ASVnn", readStill },       { "ATS_nn", readAts },
    { "TRACK_nn_mm", readTrack },
};

// Lines that show that a key is known: by its error, by what it changes in the record, or, where the document says that
// it has no effect, by changing nothing at all.
constexpr unsigned CHANGES = 0, CHANGES_NOTHING = 1;

struct Probe {
    const char* section;
    const char* key;   // the first name in the row's first cell
    unsigned code;     // CHANGES, CHANGES_NOTHING or the number of an error
    const char* lines;
};

const char* const UP_TO_COMMAND = "buttons=1\nbutton1=1,2,3,4,5,6,7,8,1,";

const Probe PROBES[] = {
    { "COMMON", "version", 6002, "version=\n" },
    { "COMMON", "version", 1003, "version=1.x\n" },
    { "COMMON", "version", 1008, "version=1\n" },
    { "COMMON", "version", 6003, "version=2.0\n" },
    { "COMMON", "mode", 1004, "mode=,\n" },
    { "COMMON", "mode", 6004, "mode=SECAM\n" },
    { "COMMON", "software", CHANGES_NOTHING, "software=,\x01\n" },
    { "AMG_MENUm", "background", 1004, "background=,\n" },
    { "AMG_MENUm", "background", 1014, "background=\n" },
    { "AMG_MENUm", "subpicture", 1004, "subpicture=,\n" },
    { "AMG_MENUm", "subpicture", 1015, "subpicture=\n" },
    { "AMG_MENUm", "type", 1004, "type=,\n" },
    { "AMG_MENUm", "type", 1020, "type=still\n" },
    { "AMG_MENUm", "colorset1", 1003, "colorset3=x\n" },
    { "AMG_MENUm", "colorset1", 1005, "colorset1=1\n" },
    { "AMG_MENUm", "buttons", 1019, "buttons=37\n" },
    { "AMG_MENUm", "button1", 1003, "buttons=36\nbutton36=x\n" },
    { "AMG_MENUm", "button1", 1004, ":" },
    { "AMG_MENUm", "button1", 1005, "buttons=1\nbutton1=1\n" },
    { "AMG_MENUm", "button1", 1006, "X" },
    { "AMG_MENUm", "button1", 1007, "X(1,2,3" },
    { "ASVS", "stills", 6024, "stills=100\n" },
    { "ASVS", "attributes", 6025, "attributes=5\n" },
    { "ASVS", "colortable1", 1003, "colortable16=x\n" },
    { "ASVS", "colortable1", 1005, "colortable1=1\n" },
    { "ASVS", "colortable1", 1017, "colortable1=256,0,0\n" },
    { "ASVU_ATTRIBUTEk", "mpegtype", 1023, "mpegtype=x\n" },
    { "ASVU_ATTRIBUTEk", "videomode", 1013, "videomode=x\n" },
    { "ASVU_ATTRIBUTEk", "resolution", CHANGES, "resolution=704x576\n" },
    { "ASVnn", "background", 1004, "background=,\n" },
    { "ASVnn", "background", 1014, "background=\n" },
    { "ASVnn", "subpicture", 1004, "subpicture=,\n" },
    { "ASVnn", "colorset1", 1003, "colorset3=x\n" },
    { "ASVnn", "colorset1", 1005, "colorset1=1\n" },
    { "ASVnn", "buttons", 1019, "buttons=37\n" },
    { "ASVnn", "button1", 1003, "buttons=36\nbutton36=x\n" },
    { "ASVnn", "button1", 1004, ":" },
    { "ASVnn", "button1", 1005, "buttons=1\nbutton1=1\n" },
    { "ASVnn", "button1", 1006, "X" },
    { "ASVnn", "button1", 1007, "X(1,2,3" },
    { "ATS_nn", "album", CHANGES, "album=a\n" },
    { "ATS_nn", "artist", CHANGES, "artist=a\n" },
    { "ATS_nn", "menus", CHANGES_NOTHING, "menus=100\n" },
    { "ATS_nn", "tracks", 3100, "tracks=101\n" },
    { "TRACK_nn_mm", "title", CHANGES, "title=a\n" },
    { "TRACK_nn_mm", "startsample", CHANGES, "startsample=1\n" },
    { "TRACK_nn_mm", "endsample", CHANGES, "endsample=1\n" },
    { "TRACK_nn_mm", "format", 6011, "format=PCM\n" },
    { "TRACK_nn_mm", "assign", 6022, "assign=21\n" },
    { "TRACK_nn_mm", "channels", 6010, "assign=0\nchannels=3\n" },
    { "TRACK_nn_mm", "samplesize", 6008, "samplesize=17\n" },
    { "TRACK_nn_mm", "samplerate", 6009, "samplerate=1\n" },
    { "TRACK_nn_mm", "samplesize2", CHANGES_NOTHING, "samplesize2=99\nsamplerate2=99\n" },
    { "TRACK_nn_mm", "playtime", 6012, "playtime=0\n" },
    { "TRACK_nn_mm", "channel1", 1004, "assign=20\nchannel6=,\n" },
};

// Errors that a key's file gives when the run comes to it.
const std::set<unsigned> OF_FILES = { 2008, 2010, 2022, 2031, 6017, 6019 };

// Keys that the run itself reads; tests/run/audio_document_test.cpp has them.
const std::set<std::string> OF_THE_RUN = { "AMG" };

typedef std::set<std::tuple<std::string, std::string, unsigned>> Claims;

// What the tables of the sections say: a section, a key, an error that it gives; 0 where it gives none.
Claims claims()
{
    Claims found;
    for (const DocumentRow& row : documentRows(document())) {
        if (row.cells.size() != 5 || namesIn(row.cells[0]).empty() || OF_THE_RUN.contains(row.heading)) continue;
        std::vector<unsigned> errors = numbersIn(row.cells[4]);
        std::erase_if(errors, [](unsigned error) { return OF_FILES.contains(error); });
        if (errors.empty()) {
            EXPECT_EQ(row.cells[4], "none") << row.cells[0];
            errors.push_back(0);
        }
        for (const unsigned error : errors) found.insert({ row.heading, namesIn(row.cells[0])[0], error });
    }
    return found;
}

}   // namespace

TEST(AudioFormatDocument, EachKeyIsProbed)
{
    Claims probed;
    for (const Probe& probe : PROBES) {
        probed.insert({ probe.section, probe.key, probe.code == CHANGES_NOTHING ? CHANGES : probe.code });
    }
    EXPECT_EQ(claims(), probed);
}

TEST(AudioFormatDocument, Keys)
{
    for (const Probe& probe : PROBES) {
        const auto read = READERS.at(probe.section);
        const bool isCommand = std::strchr(probe.lines, '=') == nullptr;
        const std::string lines = isCommand ? std::string(UP_TO_COMMAND) + probe.lines + "\n" : probe.lines;
        const Outcome plain = read(""), outcome = read(lines);
        EXPECT_EQ(plain.result, 0u) << probe.section;
        if (probe.code > CHANGES_NOTHING) {
            EXPECT_EQ(outcome.result, 0x84000000 + probe.code) << probe.section << " " << lines;
            continue;
        }
        EXPECT_EQ(outcome.result, 0u) << probe.section << " " << lines;
        EXPECT_EQ(outcome.record == plain.record, probe.code == CHANGES_NOTHING) << probe.section << " " << lines;
    }
}

TEST(AudioFormatDocument, Assignments)
{
    const std::string text = document();
    std::set<unsigned long> seen;
    for (const DocumentRow& row : documentRows(text)) {
        if (row.heading != "Channel assignments" || row.cells.size() != 3) continue;
        std::string numbers = row.cells[0];
        std::replace(numbers.begin(), numbers.end(), ',', ' ');
        std::istringstream list(numbers);
        for (unsigned long assign = 0; list >> assign;) {
            ASSERT_LT(assign, CHANNEL_ASSIGNMENTS);
            EXPECT_TRUE(seen.insert(assign).second) << assign;
            EXPECT_EQ(row.cells[1], std::to_string(CHANNEL_GROUPS[assign].first)) << assign;
            const std::string second = std::to_string(CHANNEL_GROUPS[assign].second);
            EXPECT_EQ(row.cells[2], second == "0" ? "none" : second) << assign;
        }
    }
    EXPECT_EQ(seen.size(), 20u);   // 1 to 20
    EXPECT_FALSE(seen.contains(0));
}

TEST(AudioFormatDocument, SmallProject)
{
    const std::vector<std::string> projects = documentProjects(document());
    ASSERT_EQ(projects.size(), 2u);
    const ProjectFile project(projects[0]);
    const AudioContextPtr context = readWhole(project, 1, 1, 0);
    const AudioTitleSetDesc& titleSet = *context->audioTitleSets[0];
    EXPECT_EQ(context->hasAsvs, 0u);
    EXPECT_EQ(titleSet.trackCount, 2u);
    EXPECT_EQ(titleSet.isNfo, 1u);
    EXPECT_EQ(titleSet.tracks[0].playTime, 180u * 90000);
    EXPECT_EQ(titleSet.tracks[1].playTime, 300u * 90000);
    for (int t = 0; t < 2; t++) {
        EXPECT_EQ(textOf(titleSet.tracks[t].channelPaths[0]), u"/discs/night/AUDIO_TS/ATS_01.nfo");
        EXPECT_EQ(titleSet.tracks[t].multiFile, 0u);
    }
}

TEST(AudioFormatDocument, LargerProject)
{
    const std::vector<std::string> projects = documentProjects(document());
    ASSERT_EQ(projects.size(), 2u);
    const ProjectFile project(projects[1]);
    const AudioContextPtr context = readWhole(project, 2, 2, 1);
    EXPECT_EQ(context->hasAsvs, 1u);
    EXPECT_EQ(context->asvs.stillCount, 2u);
    EXPECT_EQ(context->asvs.attributes[0].aspectRatio, 3u);
    EXPECT_EQ(context->asvs.stills[0]->hasSubPicture, 0u);
    EXPECT_EQ(context->asvs.stills[1]->buttons[0].command, 101u);
    EXPECT_EQ(context->amgAttributes.aspectRatio, 3u);
    for (int b = 0; b < 2; b++) EXPECT_EQ(context->amgMenus[0].buttons[b].command, 100u) << b;
    const AudioTitleSetDesc& first = *context->audioTitleSets[0];
    const AudioTitleSetDesc& second = *context->audioTitleSets[1];
    EXPECT_EQ(std::u16string(first.artist), u"The Quartet");
    EXPECT_EQ(first.tracks[0].playTime, 180u * 90000);
    EXPECT_EQ(first.tracks[1].playTime, 300u * 90000);
    EXPECT_EQ(first.isNfo, 1u);
    EXPECT_EQ(second.tracks[0].assign, ASSIGN_SIX);
    EXPECT_EQ(textOf(second.tracks[0].channelPaths[0]), u"C:\\Night\\Disc\\AUDIO_TS\\ATS_02.nfo");
    EXPECT_EQ(second.isNfo, 1u);
}

// Each error that stands beside a key, here or among the attributes of a DVD-Video project, is explained, and no other;
// those of control characters stand beside none.
TEST(AudioFormatDocument, Errors)
{
    std::set<unsigned> beside = { 1000, 1001 }, explained;
    const auto addErrors = [&](const DocumentRow& row) {
        if (row.cells.size() != 5) return;
        for (const unsigned error : numbersIn(row.cells[4])) beside.insert(error);
    };
    for (const DocumentRow& row : documentRows(document())) {
        if (row.heading == "Errors") {
            explained.insert(unsigned(std::stoul(row.cells[0])));
        } else {
            addErrors(row);
        }
    }
    for (const DocumentRow& row : documentRows(documentText("project-format.md"))) {
        if (row.heading == "Attributes") addErrors(row);
    }
    EXPECT_EQ(explained, beside);
    EXPECT_EQ(expectErrorRows(document()), explained.size());
}
