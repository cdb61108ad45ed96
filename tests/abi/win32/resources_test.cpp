// resources_test.cpp: orven.dll carries the message table as string resources, and tells its version.

#include <orven/orven.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

static std::wstring resourceText(UINT id)
{
    wchar_t text[512] = {};
    const int length = LoadStringW(GetModuleHandleW(L"orven.dll"), id, text, 512);
    return std::wstring(text, size_t(length));
}

TEST(Resources, StringsAreTheMessages)
{
    int rows = 0;
    for (UINT id = 1000; id < 10000; id++) {
        wchar_t text[512];
        ErrorToStringW(0x84000000 + id, text, 512);
        EXPECT_EQ(resourceText(id), text) << id;
        if (text[0]) rows++;
    }
    EXPECT_EQ(rows, 169);
    EXPECT_EQ(resourceText(1012), L"Error 1012: no titlesets defined");
}

TEST(Resources, Version)
{
    wchar_t path[MAX_PATH];
    ASSERT_GT(GetModuleFileNameW(GetModuleHandleW(L"orven.dll"), path, MAX_PATH), 0u);
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &unused);
    ASSERT_GT(size, 0u);
    std::vector<char> info(size);
    ASSERT_TRUE(GetFileVersionInfoW(path, 0, size, info.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(info.data(), L"\\", reinterpret_cast<void**>(&fixed), &length));
    int major = 0, minor = 0, patch = 0;
    ASSERT_EQ(sscanf(ORVEN_VERSION, "%d.%d.%d", &major, &minor, &patch), 3);
    EXPECT_EQ(int(HIWORD(fixed->dwFileVersionMS)), major);
    EXPECT_EQ(int(LOWORD(fixed->dwFileVersionMS)), minor);
    EXPECT_EQ(int(HIWORD(fixed->dwFileVersionLS)), patch);
}
