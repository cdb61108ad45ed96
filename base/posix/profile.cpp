// profile.cpp: the reader of INI files. A file is read and sorted when it is opened; each question is a binary search.
#include "base/profile.h"

#include "base/posix/ini_file.h"
#include "base/posix/ini_lines.h"
#include "base/posix/posix.h"
#include "base/result.h"
#include "base/strings.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

// A piece of the text. 32 bits hold every place of the largest file that is read.
struct Piece {
    uint32_t at, length;
};
static_assert(OS_INI_LIMIT <= UINT32_MAX);

struct Key {
    uint32_t section;   // index of its section
    Piece name, value;
};

}   // namespace

struct OsProfile {
    std::u16string path;
    std::u16string text;
    std::vector<Piece> sections;    // names in the order of the file
    std::vector<bool> hasLines;     // of each section
    std::vector<uint32_t> byName;   // indices of sections by name, then by place
    std::vector<Key> keys;          // by section, by name, then by place
};

namespace {

typedef std::u16string_view View;

View viewOf(const OsProfile& profile, Piece piece)
{
    return View(profile.text).substr(piece.at, piece.length);
}

// A text ends at its first NUL, like every text that the caller gets.
Piece pieceOf(View text, IniRange range)
{
    const uint64_t nul = osIniText(text, range).find(u'\0');
    return { uint32_t(range.begin), uint32_t(nul == text.npos ? range.end - range.begin : nul) };
}

void decode(const IniFile& ini, std::u16string& text)
{
    if (ini.encoding == IniEncoding::UTF_16) {
        text = osIniUnits(ini);
        return;
    }
    const char* bytes = ini.bytes.data() + ini.markBytes;
    const uint64_t count = ini.bytes.size() - ini.markBytes;
    text.resize(osUtf8ToWide(bytes, count, nullptr, 0));
    (void)osUtf8ToWide(bytes, count, text.data(), text.size());
}

void collect(OsProfile& profile)
{
    const View text = profile.text;
    for (uint64_t at = 0; at < text.size();) {
        const IniLine line = osIniLine(text, at);
        if (line.kind == IniLineKind::SECTION) {
            profile.sections.push_back(pieceOf(text, line.name));
            profile.hasLines.push_back(false);
        } else if (!line.isBlank && !line.isComment && !profile.sections.empty()) {
            profile.hasLines.back() = true;
        }
        if (line.kind == IniLineKind::KEY && !profile.sections.empty()) {
            profile.keys.push_back({ uint32_t(profile.sections.size() - 1), pieceOf(text, line.name),
                                     pieceOf(text, osIniUnquote(text, line.value)) });
        }
        at = line.next;
    }
}

void sort(OsProfile& profile)
{
    profile.byName.resize(profile.sections.size());
    std::iota(profile.byName.begin(), profile.byName.end(), uint32_t(0));
    std::sort(profile.byName.begin(), profile.byName.end(), [&](uint32_t a, uint32_t b) {
        const int order = osIniCompare(viewOf(profile, profile.sections[a]), viewOf(profile, profile.sections[b]));
        return order ? order < 0 : a < b;
    });
    std::sort(profile.keys.begin(), profile.keys.end(), [&](const Key& a, const Key& b) {
        if (a.section != b.section) return a.section < b.section;
        const int order = osIniCompare(viewOf(profile, a.name), viewOf(profile, b.name));
        return order ? order < 0 : a.name.at < b.name.at;
    });
}

// Whatever can't be read leaves an empty profile.
void load(OsProfile& profile)
{
    OSFILE file = 0;
    if (osOpenFile(profile.path.c_str(), OS_READ, &file)) return;
    IniFile ini = {};
    uint64_t error = 0;
    try {
        error = osReadIni(file, &ini);
    } catch (...) {
        (void)osCloseFile(&file);   // only read
        throw;
    }
    (void)osCloseFile(&file);   // only read
    if (error) return;
    decode(ini, profile.text);
    collect(profile);
    sort(profile);
}

// Index of the first section of a name, or null.
const uint32_t* findSection(const OsProfile* profile, const char16_t* section)
{
    const View sectionName(section, osStrLength(section));
    const auto at =
        std::lower_bound(profile->byName.begin(), profile->byName.end(), sectionName, [&](uint32_t index, View name) {
            return osIniCompare(viewOf(*profile, profile->sections[index]), name) < 0;
        });
    if (at == profile->byName.end()) return nullptr;
    return osIniCompare(viewOf(*profile, profile->sections[*at]), sectionName) == 0 ? &*at : nullptr;
}

// The first key of its name in the first section of its name, or null.
const Key* find(const OsProfile* profile, const char16_t* section, const char16_t* key)
{
    if (!profile || !section || !key) return nullptr;
    const uint32_t* const at = findSection(profile, section);
    if (!at) return nullptr;
    const View keyName(key, osStrLength(key));
    const auto found =
        std::lower_bound(profile->keys.begin(), profile->keys.end(), keyName, [&](const Key& candidate, View name) {
            if (candidate.section != *at) return candidate.section < *at;
            return osIniCompare(viewOf(*profile, candidate.name), name) < 0;
        });
    if (found == profile->keys.end() || found->section != *at) return nullptr;
    return osIniCompare(viewOf(*profile, found->name), keyName) == 0 ? &*found : nullptr;
}

}   // namespace

uint64_t osReadIni(OSFILE file, IniFile* ini)
{
    struct stat info = {};
    if (fstat(osFd(file), &info) != 0) return osLastError();
    if (!S_ISREG(info.st_mode)) return ESPIPE;
    if (uint64_t(info.st_size) > OS_INI_LIMIT) return EFBIG;
    ini->bytes.resize(uint64_t(info.st_size));
    uint64_t got = 0;
    if (uint64_t error = osReadFileSome(file, ini->bytes.data(), ini->bytes.size(), &got)) return error;
    ini->bytes.resize(got);
    const bool isUtf16 = ini->bytes.starts_with("\xFF\xFE");
    ini->encoding = isUtf16 ? IniEncoding::UTF_16 : IniEncoding::UTF_8;
    ini->markBytes = isUtf16 ? 2 : ini->bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    return 0;
}

std::u16string osIniUnits(const IniFile& ini)
{
    std::u16string units((ini.bytes.size() - ini.markBytes) / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), ini.bytes.data() + ini.markBytes, units.size() * sizeof(char16_t));
    return units;
}

uint64_t osOpenProfile(const char16_t* path, OsProfile** out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = nullptr;
    if (!path) return OS_INVALID_ARGUMENT;
    try {
        auto profile = std::make_unique<OsProfile>();
        profile->path.assign(path, osStrLength(path));
        load(*profile);
        *out = profile.release();
        return 0;
    } catch (...) {
        return OS_OUT_OF_MEMORY;   // nothing else is thrown
    }
}

void osCloseProfile(OsProfile** profile)
{
    if (!profile) return;
    delete *profile;
    *profile = nullptr;
}

const char16_t* osProfilePath(const OsProfile* profile)
{
    return profile ? profile->path.c_str() : u"";
}

bool osProfileHasLines(const OsProfile* profile, const char16_t* section)
{
    if (!profile || !section) return false;
    const uint32_t* const at = findSection(profile, section);
    return at && profile->hasLines[*at];
}

uint32_t osProfileInt(const OsProfile* profile, const char16_t* section, const char16_t* key, uint32_t absent)
{
    const Key* found = find(profile, section, key);
    if (!found) return absent;
    uint32_t number = 0;
    for (const char16_t unit : viewOf(*profile, found->value)) {
        if (unit < u'0' || unit > u'9') break;
        number = number * 10 + uint32_t(unit - u'0');
    }
    return number;
}

uint64_t osProfileString(const OsProfile* profile, const char16_t* section, const char16_t* key, char16_t* buffer,
                         uint64_t size)
{
    if (!buffer || size == 0) return 0;
    buffer[0] = 0;
    const Key* found = find(profile, section, key);
    if (!found) return 0;
    const View value = viewOf(*profile, found->value).substr(0, size - 1);
    value.copy(buffer, value.size());
    buffer[value.size()] = 0;
    return value.size();
}

uint64_t osProfileSectionNames(const OsProfile* profile, char16_t* buffer, uint64_t size)
{
    if (!buffer || size == 0) return 0;
    buffer[0] = 0;
    if (!profile || size < 2) return 0;
    uint64_t length = 0;
    for (const Piece& section : profile->sections) {
        if (section.length == 0) continue;
        const View name = viewOf(*profile, section).substr(0, size - 2 - std::min(length, size - 2));
        const bool fits = length + section.length + 2 <= size;
        name.copy(buffer + length, name.size());
        if (!fits) {
            buffer[size - 2] = 0;
            buffer[size - 1] = 0;
            return size - 2;
        }
        length += name.size();
        buffer[length++] = 0;
    }
    buffer[length] = 0;
    return length;
}

uint64_t osGetIniInt(const char16_t* path, const char16_t* section, const char16_t* key, uint32_t absent, uint64_t* out)
{
    if (!out) return OS_INVALID_ARGUMENT;
    *out = absent;
    OsProfile* profile = nullptr;
    if (uint64_t error = osOpenProfile(path, &profile)) return error;
    *out = osProfileInt(profile, section, key, absent);
    osCloseProfile(&profile);
    return 0;
}
