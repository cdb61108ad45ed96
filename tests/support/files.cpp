#include "tests/support/files.h"

#include "base/strings.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>

namespace fs = std::filesystem;

TempDir::TempDir()
{
    static std::atomic<uint64_t> counter{ uint64_t(std::chrono::steady_clock::now().time_since_epoch().count()) };
    do {
        root = fs::temp_directory_path() / ("orven-test-" + std::to_string(counter++));
    } while (!fs::create_directory(root));
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::permissions(root, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(root, ignored);
}

std::u16string TempDir::operator/(std::u16string_view name) const
{
    return (root / fs::path(std::u16string(name))).u16string();
}

std::u16string TempDir::prefix() const
{
    return (root / "").u16string();
}

void writeFile(const std::u16string& path, const Bytes& bytes)
{
    std::ofstream out(fs::path(path), std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    ASSERT_TRUE(out.good()) << toUtf8(path);
}

void writeFile(const std::u16string& path, std::string_view text)
{
    writeFile(path, Bytes(text.begin(), text.end()));
}

Bytes readFile(const std::u16string& path)
{
    std::ifstream in(fs::path(path), std::ios::binary);
    EXPECT_TRUE(in.good()) << toUtf8(path);
    if (!in.good()) return {};
    Bytes bytes(fs::file_size(fs::path(path)));
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    EXPECT_EQ(bytes.size(), uint64_t(in.gcount())) << toUtf8(path);
    return bytes;
}

bool fileExists(const std::u16string& path)
{
    return fs::exists(fs::path(path));
}

std::string toHex(const uint8_t* bytes, uint64_t count)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (uint64_t i = 0; i < count; i++) {
        if (i) text += ' ';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

std::string toHex(const Bytes& bytes)
{
    return toHex(bytes.data(), bytes.size());
}

Bytes fromHex(std::string_view text)
{
    Bytes bytes;
    int high = -1;
    for (const char c : text) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                 : -1;
        if (digit < 0) continue;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(uint8_t(high << 4 | digit));
            high = -1;
        }
    }
    return bytes;
}

std::u16string toWide(std::string_view utf8)
{
    std::u16string wide(osUtf8ToWide(utf8.data(), utf8.size(), nullptr, 0), u'\0');
    (void)osUtf8ToWide(utf8.data(), utf8.size(), wide.data(), wide.size());
    return wide;
}

std::string toUtf8(std::u16string_view wide)
{
    std::string utf8(osWideToUtf8(wide.data(), wide.size(), nullptr, 0), '\0');
    (void)osWideToUtf8(wide.data(), wide.size(), utf8.data(), utf8.size());
    return utf8;
}
