#include "tests/support/environment.h"

#include <cctype>
#include <cstdlib>

namespace fs = std::filesystem;

// What the systems ask: TMPDIR on POSIX; TMP, then TEMP, on Windows. An empty value counts as none on both.
#ifdef _WIN32
static const std::u16string NAMES[] = { u"TMP", u"TEMP" };

static const wchar_t* native(const std::u16string& text)
{
    return reinterpret_cast<const wchar_t*>(text.c_str());
}

static std::u16string getVariable(const std::u16string& name)
{
    const wchar_t* const value = _wgetenv(native(name));
    return value ? std::u16string(reinterpret_cast<const char16_t*>(value)) : std::u16string();
}

static void setVariable(const std::u16string& name, const std::u16string& value)
{
    (void)_wputenv_s(native(name), native(value));
}
#else
static const std::u16string NAMES[] = { u"TMPDIR" };

static std::u16string getVariable(const std::u16string& name)
{
    const char* const value = std::getenv(toUtf8(name).c_str());
    return value ? toWide(value) : std::u16string();
}

static void setVariable(const std::u16string& name, const std::u16string& value)
{
    if (value.empty()) {
        (void)unsetenv(toUtf8(name).c_str());
    } else {
        (void)setenv(toUtf8(name).c_str(), toUtf8(value).c_str(), 1);
    }
}
#endif

TempFolder::TempFolder(const std::u16string& path)
{
    for (const std::u16string& name : NAMES) {
        before.push_back(getVariable(name));
        setVariable(name, path.empty() ? dir.root.u16string() : path);
    }
}

TempFolder::TempFolder() : TempFolder(std::u16string()) {}

TempFolder::~TempFolder()
{
    for (uint64_t i = 0; i < before.size(); i++) setVariable(NAMES[i], before[i]);
}

std::vector<std::string> TempFolder::unitFiles() const
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir.root)) {
        std::string name = toUtf8(entry.path().filename().u16string());
        for (char& c : name) c = char(std::tolower(static_cast<unsigned char>(c)));
        if (name.starts_with("spu")) names.push_back(name);
    }
    return names;
}
