// profile_write.cpp: sets one key of an INI file. The rest of the file stays as it is, byte for byte.
#include "base/profile.h"

#include "base/posix/ini_file.h"
#include "base/posix/ini_lines.h"
#include "base/posix/posix.h"
#include "base/result.h"
#include "base/strings.h"

#include <initializer_list>
#include <unistd.h>

namespace {

// What to put in the place of some units of the text.
template <class Unit> struct Edit {
    IniRange range;
    std::basic_string<Unit> text;
};

template <class Unit> struct Setting {
    std::basic_string<Unit> section, key, value;
};

// The text's own line end. A text without one gets CR LF, as on Windows.
template <class Unit> std::basic_string<Unit> lineEnd(std::basic_string_view<Unit> text)
{
    const uint64_t at = text.find(Unit('\n'));
    if (at != text.npos && (at == 0 || text[at - 1] != Unit('\r'))) return { Unit('\n') };
    return { Unit('\r'), Unit('\n') };
}

// A new line stands behind the last line of its section that is not blank; a new section at the end of the file.
template <class Unit> Edit<Unit> plan(std::basic_string_view<Unit> text, const Setting<Unit>& setting)
{
    typedef std::basic_string_view<Unit> View;
    bool inside = false;
    uint64_t last = 0;
    for (uint64_t at = 0; at < text.size();) {
        const IniLine line = osIniLine(text, at);
        if (line.kind == IniLineKind::SECTION) {
            if (inside) break;
            inside = osIniCompare(osIniText(text, line.name), View(setting.section)) == 0;
        }
        if (inside && line.kind == IniLineKind::KEY &&
            osIniCompare(osIniText(text, line.name), View(setting.key)) == 0) {
            return { line.value, setting.value };
        }
        if (inside && !line.isBlank) last = line.next;
        at = line.next;
    }
    if (!inside) last = text.size();

    Edit<Unit> edit = { { last, last }, {} };
    const std::basic_string<Unit> end = lineEnd(text);
    if (last > 0 && text[last - 1] != Unit('\n')) edit.text += end;
    if (!inside) {
        edit.text += Unit('[');
        edit.text += setting.section;
        edit.text += Unit(']');
        edit.text += end;
    }
    edit.text += setting.key;
    edit.text += Unit('=');
    edit.text += setting.value;
    edit.text += end;
    return edit;
}

std::string toUtf8(const char16_t* text)
{
    std::string bytes(osWideToUtf8(text, osStrLength(text), nullptr, 0), '\0');
    (void)osWideToUtf8(text, osStrLength(text), bytes.data(), bytes.size());
    return bytes;
}

// Replaces bytes from..to; what stands before them is not even written again.
uint64_t replaceBytes(OSFILE file, const std::string& bytes, uint64_t from, uint64_t to, std::string_view with)
{
    std::string tail(with);
    tail.append(bytes, to);
    if (uint64_t error = osSeekFile(file, int64_t(from), OS_FROM_START)) return error;
    if (uint64_t error = osWriteFile(file, tail.data(), tail.size())) return error;
    if (from + tail.size() < bytes.size() && ftruncate(osFd(file), off_t(from + tail.size())) != 0)
        return osLastError();
    return 0;
}

uint64_t setInFile(OSFILE file, const char16_t* section, const char16_t* key, const char16_t* value)
{
    try {
        IniFile ini = {};
        if (uint64_t error = osReadIni(file, &ini)) return error;
        if (ini.encoding == IniEncoding::UTF_16) {
            const std::u16string units = osIniUnits(ini);
            const Edit<char16_t> edit = plan<char16_t>(units, { section, key, value });
            const std::string_view with(reinterpret_cast<const char*>(edit.text.data()), edit.text.size() * 2);
            return replaceBytes(file, ini.bytes, ini.markBytes + edit.range.begin * 2,
                                ini.markBytes + edit.range.end * 2, with);
        }
        const Setting<char> setting = { toUtf8(section), toUtf8(key), toUtf8(value) };
        const Edit<char> edit = plan<char>(std::string_view(ini.bytes).substr(ini.markBytes), setting);
        return replaceBytes(file, ini.bytes, ini.markBytes + edit.range.begin, ini.markBytes + edit.range.end,
                            edit.text);
    } catch (...) {
        return OS_OUT_OF_MEMORY;   // nothing else is thrown
    }
}

}   // namespace

uint64_t osSetIniString(const char16_t* path, const char16_t* section, const char16_t* key, const char16_t* value)
{
    if (!path || !section || !key || !value) return OS_INVALID_ARGUMENT;
    for (const char16_t* text : { section, key, value }) {
        // A line end within a text would set more than the one key.
        if (std::u16string_view(text).find_first_of(u"\r\n") != std::u16string_view::npos) return OS_INVALID_ARGUMENT;
    }
    OSFILE file = 0;
    if (uint64_t error = osOpenFile(path, OS_EXTEND, &file)) return error;
    const uint64_t result = setInFile(file, section, key, value);
    const uint64_t closed = osCloseFile(&file);
    return result ? result : closed;
}
