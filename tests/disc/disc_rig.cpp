#include "tests/disc/disc_rig.h"

#include "base/wide.h"

#include <gtest/gtest.h>

#include <orven/disc.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

DiscRig::DiscRig()
{
    putFolder("disc/");
    putFolder("previous/");
}

void DiscRig::put(const std::string& name, const Bytes& bytes)
{
    writeFile(path(name), bytes);
    before[name] = bytes;
}

void DiscRig::put(const std::string& name, std::string_view text)
{
    put(name, Bytes(text.begin(), text.end()));
}

void DiscRig::putFolder(const std::string& name)
{
    fs::create_directory(root.root / name.substr(0, name.size() - 1));
    before[name] = {};
}

std::u16string DiscRig::path(std::string_view name) const
{
    return (root.root / fs::path(std::string(name)).make_preferred()).u16string();
}

uint64_t DiscRig::check() const
{
    return check(path("disc/"), path("previous/"));
}

// Linux tells of open files in a folder of its own, Windows by refusing to rename them.
static void expectClosed(const Files& files, const DiscRig& rig, uint64_t openBefore)
{
    EXPECT_EQ(openFiles(), openBefore);
    if (openBefore > 0) return;
    for (const auto& [name, bytes] : files) {
        if (name.ends_with('/')) continue;
        const fs::path path(rig.path(name));
        std::error_code error;
        fs::rename(path, rig.root.root / "renamed", error);
        EXPECT_FALSE(error) << name << " is open";
        fs::rename(rig.root.root / "renamed", path, error);
    }
}

uint64_t DiscRig::check(const std::u16string& discPath, const std::u16string& previousPath) const
{
    const std::u16string project = path("project.ini");
    const uint64_t open = openFiles();
    const uint64_t result = CheckDVDStructureW(orvHostText(project.c_str()), orvHostText(discPath.c_str()),
                                               orvHostText(previousPath.c_str()));
    expectClosed(before, *this, open);
    return result;
}

uint64_t DiscRig::checkNarrow() const
{
    const std::string project = fs::path(path("project.ini")).string();
    const std::string disc = fs::path(path("disc/")).string();
    const std::string previous = fs::path(path("previous/")).string();
    return CheckDVDStructure(project.c_str(), disc.c_str(), previous.c_str());
}

Files DiscRig::now() const
{
    Files files;
    for (const auto& entry : fs::recursive_directory_iterator(root.root)) {
        const std::string name = entry.path().lexically_relative(root.root).generic_string();
        if (entry.is_directory())
            files[name + "/"] = {};
        else
            files[name] = readFile(entry.path().u16string());
    }
    return files;
}

static std::string differencesOf(const std::string& name, const Bytes& actual, const Bytes& expected)
{
    std::string text;
    if (actual.size() != expected.size()) {
        text =
            name + ": " + std::to_string(actual.size()) + " bytes, should be " + std::to_string(expected.size()) + "\n";
    }
    const uint64_t size = std::min(actual.size(), expected.size());
    for (uint64_t at = 0; at < size && text.size() < 4000; at++) {
        if (actual[at] == expected[at]) continue;
        uint64_t end = at;
        for (uint64_t i = at; i < std::min(at + 16, size); i++) {
            if (actual[i] != expected[i]) end = i + 1;
        }
        text += name + " at " + std::to_string(at) + ": " + toHex(actual.data() + at, end - at) + ", should be " +
                toHex(expected.data() + at, end - at) + "\n";
        at = end;
    }
    return text;
}

std::string DiscRig::differences(const Files& expected) const
{
    const Files actual = now();
    std::string text;
    for (const auto& [name, bytes] : expected) {
        const auto found = actual.find(name);
        text += found == actual.end() ? name + " is missing\n" : differencesOf(name, found->second, bytes);
    }
    for (const auto& [name, bytes] : actual) {
        if (!expected.contains(name)) text += name + " is new\n";
    }
    return text;
}

Bytes makeIfo(uint64_t bytes, uint8_t seed)
{
    Bytes ifo(bytes);
    for (uint64_t i = 0; i < bytes; i++) ifo[i] = uint8_t(0x80 | (i * 37 + (i >> 8) * 11 + seed * 59));
    return ifo;
}

Bytes makeManager(uint64_t bytes, uint16_t titleSets, uint32_t tableSector)
{
    Bytes ifo = makeIfo(bytes, 0);
    Files files = { { "", ifo } };
    if (bytes >= 0x40) set(files, "", 0x3E, hexOf32(titleSets).substr(6));
    if (bytes >= 0xC8) set(files, "", 0xC4, hexOf32(tableSector));
    return files[""];
}

void set(Files& files, const std::string& name, uint64_t at, std::string_view hex)
{
    const auto found = files.find(name);
    ASSERT_TRUE(found != files.end()) << name;
    const Bytes values = fromHex(hex);
    ASSERT_LE(at + values.size(), found->second.size()) << name;
    std::copy(values.begin(), values.end(), found->second.begin() + ptrdiff_t(at));
}

std::string hexOf32(uint64_t value)
{
    return toHex({ uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value) });
}

uint64_t openFiles()
{
    if (fs::path::preferred_separator == '\\') return 0;   // nor does Wine, whatever the system below it
    std::error_code none;
    uint64_t count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd", none)) count += entry.path().empty() ? 0u : 1u;
    return count;
}
