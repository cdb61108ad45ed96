// project_file.cpp: a project file with its line numbers.
#include "project_file.h"

#include "text.h"

#include <algorithm>
#include <fstream>
#include <iterator>

static constexpr uint64_t MAX_TITLE_SETS = 99, MAX_MENUS = 99;
static constexpr size_t SECTION_LIST_ROOM = 1023;   // characters of all section names that the library sees at once
static constexpr size_t SECTION_LIST_CUT = 1022;    // a list of just this size counts as cut

static std::u16string decode(std::string_view bytes)
{
    if (bytes.starts_with("\xFF\xFE")) {
        std::u16string text;
        for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
            text += char16_t(uint8_t(bytes[i]) | uint8_t(bytes[i + 1]) << 8);
        }
        return text;
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    return wideOf(bytes);
}

static std::u16string_view trim(std::u16string_view text)
{
    const char16_t blanks[] = u" \t";
    const size_t first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

static std::u16string_view unquote(std::u16string_view text)
{
    const bool quoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

static void parseLine(ProjectFile* file, uint64_t number, std::u16string_view line)
{
    if (line.ends_with(u'\r')) line.remove_suffix(1);
    line = trim(line);
    if (line.empty() || line.front() == u';') return;
    if (line.front() == u'[') {
        const size_t end = line.find(u']');
        if (end == line.npos) return;
        file->push_back({ number, std::u16string(trim(line.substr(1, end - 1))), {} });
        return;
    }
    const size_t equals = line.find(u'=');
    if (equals == line.npos || file->empty()) return;
    file->back().keys.push_back({ number, std::u16string(line), std::u16string(trim(line.substr(0, equals))),
                                  std::u16string(unquote(trim(line.substr(equals + 1)))) });
}

ProjectFile parseProject(std::string_view bytes)
{
    ProjectFile file;
    const std::u16string text = decode(bytes);
    uint64_t number = 0;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(u'\n', at), text.size());
        parseLine(&file, ++number, std::u16string_view(text).substr(at, end - at));
        at = end + 1;
    }
    return file;
}

ProjectFile readProject(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return parseProject(std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
}

const ProjectSection* findSection(const ProjectFile& file, std::u16string_view section)
{
    for (const ProjectSection& candidate : file) {
        if (sameName(candidate.name, section)) return &candidate;
    }
    return nullptr;
}

const ProjectKey* findKey(const ProjectFile& file, std::u16string_view section, std::u16string_view key)
{
    const ProjectSection* found = findSection(file, section);
    if (!found) return nullptr;
    for (const ProjectKey& candidate : found->keys) {
        if (sameName(candidate.name, key)) return &candidate;
    }
    return nullptr;
}

uint64_t integerOf(const ProjectKey* key)
{
    uint32_t value = 0;
    if (!key) return 0;
    for (const char16_t unit : key->value) {
        if (unit < u'0' || unit > u'9') break;
        value = value * 10 + (unit - u'0');
    }
    return value;
}

std::u16string titleSetSection(const ProjectFile& file, uint64_t number)
{
    const std::string digits = std::to_string(number);
    const std::u16string plain = u"VTS_" + wideOf(digits),
                         padded = u"VTS_" + wideOf(digits.size() < 2 ? "0" + digits : digits);
    size_t list = 0;
    for (const ProjectSection& section : file) list += section.name.size() + 1;
    const bool cut = list > SECTION_LIST_ROOM || list == SECTION_LIST_CUT;
    return !cut && findSection(file, padded) ? padded : plain;
}

bool isAudioProject(const ProjectFile& file)
{
    return findSection(file, u"AMG") && !findSection(file, u"VMG");
}

static std::u16string twoDigits(uint64_t number)
{
    return wideOf((number < 10 ? "0" : "") + std::to_string(number));
}

std::u16string audioTitleSetSection(uint64_t titleSet)
{
    return u"ATS_" + twoDigits(titleSet);
}

std::u16string trackSection(uint64_t titleSet, uint64_t track)
{
    return u"TRACK_" + twoDigits(titleSet) + u"_" + twoDigits(track);
}

std::u16string stillSection(uint64_t still)
{
    return u"ASV" + twoDigits(still);
}

uint64_t trackChannels(const ProjectFile& file, std::u16string_view section)
{
    // Of both groups together, by the channel assignments of DVD-Audio.
    static constexpr uint8_t assigned[] = { 1, 2, 3, 4, 3, 4, 5, 3, 4, 5, 4, 5, 6, 4, 5, 4, 5, 6, 5, 5, 6 };
    if (const uint64_t assign = integerOf(findKey(file, section, u"assign"))) {
        return assign < std::size(assigned) ? assigned[assign] : 0;
    }
    const uint64_t channels = integerOf(findKey(file, section, u"channels"));
    return channels == 1 || channels == 2 || channels == 6 ? channels : 0;
}

bool namesAob(const ProjectKey& channel)
{
    // A value ends at its first TAB.
    const std::u16string_view path = std::u16string_view(channel.value).substr(0, channel.value.find(u'\t'));
    return path.size() >= 3 && sameName(path.substr(path.size() - 3), u"AOB");
}

bool isFinishedTitleSet(const ProjectFile& file, uint64_t titleSet)
{
    const uint64_t tracks = integerOf(findKey(file, audioTitleSetSection(titleSet), u"tracks"));
    const ProjectKey* key = findKey(file, trackSection(titleSet, tracks), u"channel1");
    return key && namesAob(*key);
}

std::vector<PlannedTitleSet> plannedTitleSets(const ProjectFile& file)
{
    std::vector<PlannedTitleSet> planned;
    const uint64_t count = std::min(integerOf(findKey(file, u"VMG", u"titlesets")), MAX_TITLE_SETS);
    for (uint64_t number = 1; number <= count; number++) {
        const std::u16string section = titleSetSection(file, number);
        if (integerOf(findKey(file, section, u"skipvts"))) continue;
        const std::u16string menuSection = u"VTS_" + wideOf(std::to_string(number)) + u"_MENU";
        const bool menus =
            !integerOf(findKey(file, menuSection, u"skipmenu")) && integerOf(findKey(file, section, u"menus"));
        planned.push_back({ number, menus });
    }
    return planned;
}

std::vector<PlannedTitleSet> plannedAudioTitleSets(const ProjectFile& file)
{
    std::vector<PlannedTitleSet> planned;
    const uint64_t count = std::min(integerOf(findKey(file, u"AMG", u"titlesets")), MAX_TITLE_SETS);
    for (uint64_t number = 1; number <= count; number++) planned.push_back({ number, false });
    return planned;
}

bool managerHasMenus(const ProjectFile& file)
{
    return integerOf(findKey(file, isAudioProject(file) ? u"AMG" : u"VMG", u"menus")) != 0;
}

std::vector<std::u16string> menuSections(const ProjectFile& file, uint64_t titleSet)
{
    const std::u16string counted = titleSet ? titleSetSection(file, titleSet) : u"VMG";
    const std::u16string domain = titleSet ? u"VTS_" + wideOf(std::to_string(titleSet)) + u"_MENU" : u"VMG_MENU";
    std::vector<std::u16string> sections;
    if (titleSet && integerOf(findKey(file, domain, u"skipmenu"))) return sections;
    const uint64_t menus = std::min(integerOf(findKey(file, counted, u"menus")), MAX_MENUS);
    for (uint64_t i = 1; i <= menus; i++) sections.push_back(domain + wideOf(std::to_string(i)));
    return sections;
}
