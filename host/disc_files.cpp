// disc_files.cpp: the files of a finished disc, and what keeps the library from bringing its tables into line.
#include "disc_files.h"

#include "codes.h"
#include "named_file.h"
#include "nav_pack.h"

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

// Fields of VIDEO_TS.IFO and of its title search table, high byte first.
static constexpr uint64_t TITLE_SETS_AT = 0x3E, TITLE_TABLE_AT = 0xC4;
static constexpr uint64_t FIRST_ENTRY_AT = 8, ENTRY_SECTOR_AT = 8;
static constexpr size_t MARK_BYTES = 12;
static const char MANAGER_MARK[] = "DVDVIDEO-VMG", TITLE_SET_MARK[] = "DVDVIDEO-VTS";

typedef std::array<uint8_t, SECTOR_BYTES> Sector;

static fs::path managerFile(const DiscFiles& disc, const char* extension)
{
    return disc.folder / (std::string("VIDEO_TS.") + extension);
}

static fs::path titleSetFile(const fs::path& folder, uint64_t number, uint64_t part, const char* extension)
{
    const std::string digits = std::to_string(number);
    return folder /
           ("VTS_" + std::string(digits.size() < 2 ? "0" : "") + digits + "_" + std::to_string(part) + "." + extension);
}

static bool readSector(const fs::path& path, uint64_t number, Sector* sector)
{
    std::ifstream in(path, std::ios::binary);
    in.seekg(std::streamoff(number * SECTOR_BYTES));
    return bool(in.read(reinterpret_cast<char*>(sector->data()), std::streamsize(SECTOR_BYTES)));
}

static uint64_t numberAt(const Sector& sector, uint64_t at, uint64_t bytes)
{
    uint64_t number = 0;
    for (uint64_t i = 0; i < bytes; i++) number = number << 8 | sector[at + i];
    return number;
}

fs::path videoFolder(const fs::path& disc)
{
    std::error_code error;
    for (const fs::path& folder : { disc, disc / "VIDEO_TS" }) {
        if (fs::exists(folder / "VIDEO_TS.IFO", error)) return folder;
    }
    return {};
}

// ---- single files -------------------------------------------------------------------------------------------------

// A file that is written: a link would lead to one that the user has not named.
static std::string notOwnWhy(const fs::path& path)
{
    std::error_code error;
    const fs::file_status there = fs::symlink_status(path, error);
    if (fs::exists(there) && !fs::is_regular_file(there)) return "it is no plain file";
    return notWritableWhy(path);
}

static FileFault tableFault(const fs::path& path, const char* mark, uint64_t shortCode)
{
    Sector sector;
    if (const std::string why = notReadableWhy(path); !why.empty()) return { 0, why };
    if (!readSector(path, 0, &sector))
        return { shortCode, "it holds " + bytesText(fileBytes(path)) + ", less than one sector of 2048" };
    if (std::memcmp(sector.data(), mark, MARK_BYTES) != 0)
        return { 0, "it is no table of a disc: it does not begin with " + std::string(mark) };
    return {};
}

static DiscFault writableFault(const fs::path& ifo, const fs::path& backup)
{
    std::error_code error;
    for (const fs::path& path : { ifo, backup }) {
        if (const std::string why = notOwnWhy(path); !why.empty()) return { path, { 0, why } };
    }
    if (fs::equivalent(ifo, backup, error)) return { backup, { 0, "it is the same file as its IFO" } };
    return {};
}

// ---- the disc -----------------------------------------------------------------------------------------------------

static DiscFault managerFault(const DiscFiles& disc)
{
    Sector header, titles;
    const fs::path ifo = managerFile(disc, "IFO");
    if (FileFault fault = tableFault(ifo, MANAGER_MARK, CODE_MANAGER_READ)) return { ifo, fault };
    if (!readSector(ifo, 0, &header) || !readSector(ifo, numberAt(header, TITLE_TABLE_AT, 4), &titles))
        return { ifo, { CODE_MANAGER_READ, "its title search table would lie behind its end" } };
    return writableFault(ifo, managerFile(disc, "BUP"));
}

static DiscFault skippedFault(const DiscFiles& disc, uint64_t number)
{
    const fs::path ifo = titleSetFile(disc.previous, number, 0, "IFO"),
                   ninth = titleSetFile(disc.previous, number, 9, "VOB");
    if (FileFault fault = tableFault(ifo, TITLE_SET_MARK, CODE_TITLE_SET_READ)) return { ifo, fault };
    if (notReadableWhy(ninth).empty()) return {};
    const std::string name = "title set " + std::to_string(number);
    return { ninth,
             { 0, "there is no such file, and the library passes " + name +
                      ", which the project skips, only if it has a ninth VOB. Copy " + name +
                      " into the disc's folder, and leave its `skipvts` out" } };
}

static DiscFault titleSetFault(const DiscFiles& disc, uint64_t number)
{
    const fs::path ifo = titleSetFile(disc.folder, number, 0, "IFO");
    if (FileFault fault = tableFault(ifo, TITLE_SET_MARK, CODE_TITLE_SET_READ)) return { ifo, fault };
    return writableFault(ifo, titleSetFile(disc.folder, number, 0, "BUP"));
}

DiscFault planTitleSets(const ProjectFile& project, DiscFiles* disc)
{
    Sector header;
    const fs::path ifo = managerFile(*disc, "IFO");
    if (FileFault fault = tableFault(ifo, MANAGER_MARK, CODE_MANAGER_READ)) return { ifo, fault };
    if (!readSector(ifo, 0, &header)) return { ifo, { CODE_MANAGER_READ, "the file can't be read" } };
    const uint64_t count = numberAt(header, TITLE_SETS_AT, 2);
    for (uint64_t number = 1; number <= count; number++) {
        const std::u16string section = numbered(u"VTS_", number);   // a section VTS_01 is not looked at
        disc->skipped.push_back(integerOf(findKey(project, section, u"skipvts")) != 0);
    }
    return {};
}

DiscFault findDiscFault(const DiscFiles& disc)
{
    if (DiscFault fault = managerFault(disc)) return fault;
    for (uint64_t number = 1; number <= disc.skipped.size(); number++) {
        const bool skipped = disc.skipped[number - 1];
        if (DiscFault fault = skipped ? skippedFault(disc, number) : titleSetFault(disc, number)) return fault;
    }
    return {};
}

// ---- backups ------------------------------------------------------------------------------------------------------

static bool readWhole(const fs::path& path, std::string* bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    bytes->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

static bool isBackup(const fs::path& ifo, const fs::path& backup)
{
    std::string first, second;
    return readWhole(ifo, &first) && readWhole(backup, &second) && first == second;
}

DiscFault findBackupFault(const DiscFiles& disc)
{
    const std::string why = "it can't be made a copy of its IFO, which is in line";
    if (!isBackup(managerFile(disc, "IFO"), managerFile(disc, "BUP")))
        return { managerFile(disc, "BUP"), { CODE_MANAGER_BACKUP, why } };
    for (uint64_t number = 1; number <= disc.skipped.size(); number++) {
        const fs::path backup = titleSetFile(disc.folder, number, 0, "BUP");
        if (disc.skipped[number - 1] || isBackup(titleSetFile(disc.folder, number, 0, "IFO"), backup)) continue;
        return { backup, { CODE_TITLE_SET_BACKUP, why } };
    }
    return {};
}

DiscFault copyManagerBackup(const DiscFiles& disc)
{
    const fs::path backup = managerFile(disc, "BUP");
    std::string bytes;
    bool copied = readWhole(managerFile(disc, "IFO"), &bytes);
    if (copied) {
        std::ofstream out(backup, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), std::streamsize(bytes.size()));
        out.close();
        copied = !out.fail();
    }
    if (copied) return {};
    return { backup, { CODE_MANAGER_BACKUP, "the file can't be written" } };
}

// ---- what players will look for -----------------------------------------------------------------------------------

std::string firstSectorWarning(const DiscFiles& disc)
{
    Sector header, titles;
    const fs::path ifo = managerFile(disc, "IFO");
    if (disc.skipped.empty() || !readSector(ifo, 0, &header)) return "";
    if (!readSector(ifo, numberAt(header, TITLE_TABLE_AT, 4), &titles)) return "";
    const uint64_t told = numberAt(titles, FIRST_ENTRY_AT + ENTRY_SECTOR_AT, 4);
    uint64_t sectors = 0;
    for (const char* extension : { "IFO", "VOB", "BUP" }) {
        sectors += (fileBytes(managerFile(disc, extension)) + SECTOR_BYTES - 1) / SECTOR_BYTES;
    }
    if (told == sectors) return "";
    return "the tables let the first title set begin at sector " + std::to_string(told) +
           ", and behind VIDEO_TS.IFO, " + "VIDEO_TS.VOB and VIDEO_TS.BUP it lies at " + std::to_string(sectors) +
           "; players that go by file names don't mind, and `orven author` writes exact tables";
}
