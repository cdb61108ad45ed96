// files.h: a folder that lives as long as its test, and whole files as bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

typedef std::vector<uint8_t> Bytes;

// A new, empty folder, removed with all that it holds when the test ends.
struct TempDir {
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /** Path of a file in the folder, as the engine takes it. */
    std::u16string operator/(std::u16string_view name) const;
    /** Path of the folder with its trailing separator, as the runs take it. */
    std::u16string prefix() const;

    std::filesystem::path root;
};

void writeFile(const std::u16string& path, const Bytes& bytes);
void writeFile(const std::u16string& path, std::string_view text);
/** Whole content; fails the running test and gives nothing if the file is not there. */
Bytes readFile(const std::u16string& path);
bool fileExists(const std::u16string& path);

/** Text of bytes, "00 1F ...", and back; anything between the digit pairs is skipped. */
std::string toHex(const uint8_t* bytes, uint64_t count);
std::string toHex(const Bytes& bytes);
Bytes fromHex(std::string_view text);

std::u16string toWide(std::string_view utf8);
std::string toUtf8(std::u16string_view wide);
