// profile_cases.h: one row of an INI table test, and all questions that it is asked. Shared by what holds on every
// platform and what one alone gives.
#pragma once

#include "base/profile.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

inline OsProfile* openProfile(const std::u16string& path)
{
    OsProfile* profile = nullptr;
    EXPECT_EQ(osOpenProfile(path.c_str(), &profile), 0u);
    return profile;
}

struct ProfileCase {
    const char* what;
    std::string file;
    std::u16string text;   // of key "k" in section "a"
    uint32_t number;       // of the same, 77 if the key is missing
};

inline void expectProfileCase(const ProfileCase& row)
{
    const TempDir dir;
    const std::u16string path = dir / u"project.ini";
    writeFile(path, row.file);
    OsProfile* profile = openProfile(path);
    char16_t buffer[100];
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    EXPECT_EQ(osProfileString(profile, u"a", u"k", buffer, 100), row.text.size()) << row.what;
    EXPECT_EQ(std::u16string(buffer), row.text) << row.what;
    EXPECT_EQ(osProfileInt(profile, u"a", u"k", 77), row.number) << row.what;
    EXPECT_EQ(osProfileInt(profile, u"A", u"K", 77), row.number) << row.what;
    uint64_t number = 99;
    EXPECT_EQ(osGetIniInt(path.c_str(), u"a", u"k", 77, &number), 0u);
    EXPECT_EQ(number, row.number) << row.what;
    osCloseProfile(&profile);
    EXPECT_EQ(profile, nullptr);
}
