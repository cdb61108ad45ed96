// disc_rig.h: a disc's folder with a project and the folder of an earlier run beside it, as files and as bytes that a
// test expects; and what the system says of files that are missing or no files.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

// Files below a folder by their names, "disc/VTS_01_0.IFO". The name of a folder ends in a slash; it has no bytes.
typedef std::map<std::string, Bytes> Files;

#ifdef _WIN32
inline constexpr uint64_t FILE_MISSING = 2, FOLDER_MISSING = 3, IS_A_FOLDER = 5;
/** A backup that is open for reading can't be written over. */
inline constexpr uint64_t OPEN_BACKUP_RESULT = 0x840007EA;
#else
inline constexpr uint64_t FILE_MISSING = 2, FOLDER_MISSING = 2, IS_A_FOLDER = 21;
inline constexpr uint64_t OPEN_BACKUP_RESULT = 0;
#endif

struct DiscRig {
    /** Makes disc/ and previous/; the project is not there. */
    DiscRig();

    void put(const std::string& name, const Bytes& bytes);
    void put(const std::string& name, std::string_view text);
    /** A folder where a file is looked for. */
    void putFolder(const std::string& name);
    /** A file of the rig as the engine takes it; a folder with its trailing separator if name ends in one. */
    std::u16string path(std::string_view name) const;

    /** The wide form; fails the test if files stay open. */
    uint64_t check() const;
    uint64_t check(const std::u16string& discPath, const std::u16string& previousPath) const;
    uint64_t checkNarrow() const;

    Files now() const;
    /** What differs from the files that are expected, a line each; empty if nothing does. */
    std::string differences(const Files& expected) const;

    TempDir root;
    Files before;   // what was put there
};

/** An IFO of so many bytes, no two sectors and no two files alike; every byte before 0x100 is wrong for all purposes.
 */
Bytes makeIfo(uint64_t bytes, uint8_t seed);
/** The manager's: the number of title sets, and the sector of the title search table. */
Bytes makeManager(uint64_t bytes, uint16_t titleSets, uint32_t tableSector);
/** Bytes given as hex text in the place of those at an offset of a file that is there. */
void set(Files& files, const std::string& name, uint64_t at, std::string_view hex);
/** `00 00 01 2D` for 301. */
std::string hexOf32(uint64_t value);
/** Number of files that this process has open; 0 where the system does not tell. */
uint64_t openFiles();
