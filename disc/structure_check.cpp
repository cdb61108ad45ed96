// structure_check.cpp: recomputes the sector numbers of a finished disc's tables from the sizes of its files, for a
// host that has changed a VOB or copied title sets together.

#include "base/bytes.h"
#include "base/files.h"
#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "video/ifo_layout.h"

#include <orven/disc.h>

constexpr uint64_t TITLE_VOBS = 9;

// ---- a title set ---------------------------------------------------------------------------------------------------

// What lies in the directory of a title set.
struct TitleSetFiles {
    const char16_t* directory;
    uint64_t number;
    OSFILE ifo;
    OSFILE menuVob;   // 0 if there is none
    uint64_t ifoBytes;
    uint64_t menuBytes;
    uint64_t titleSectors;
    uint64_t lastOpen;   // result of opening the last VOB, in the end the ninth title VOB
};

static uint64_t openIfo(TitleSetFiles* files, uint64_t mode)
{
    char16_t* path = nullptr;
    if (uint64_t error = osFormPath(&path, u"%sVTS_%.2d_0.IFO", files->directory, files->number)) return error;
    const uint64_t result = osOpenFile(path, mode, &files->ifo);
    (void)osStrFree(&path);
    return result;
}

/** Opens a VOB that may be missing: *opened gets the result of the open. Fails only where there is no memory for its
 *  name. */
static uint64_t openVob(const TitleSetFiles* files, uint64_t part, OSFILE* vob, uint64_t* opened)
{
    char16_t* path = nullptr;
    if (uint64_t error = osFormPath(&path, u"%sVTS_%.2d_%.1d.VOB", files->directory, files->number, part)) return error;
    *opened = osOpenFile(path, OS_READ, vob);
    (void)osStrFree(&path);
    return 0;
}

/** Size of an open file; 0 for one that is not open. */
static uint64_t sizeOf(OSFILE file, uint64_t* bytes)
{
    *bytes = 0;
    return file ? osFileSize(file, bytes) : 0;
}

static uint64_t countTitleSectors(TitleSetFiles* files)
{
    for (uint64_t part = 1; part <= TITLE_VOBS; part++) {
        OSFILE vob = 0;
        if (uint64_t error = openVob(files, part, &vob, &files->lastOpen)) return error;
        uint64_t bytes = 0;
        const uint64_t result = sizeOf(vob, &bytes);
        (void)osCloseFile(&vob);
        if (result) return result;
        files->titleSectors += bytes >> SECTOR_SHIFT;
    }
    return 0;
}

static uint64_t copyBackup(const char16_t* directory, uint64_t number)
{
    char16_t* ifo = nullptr;
    char16_t* backup = nullptr;
    uint64_t result = osFormPath(&ifo, u"%sVTS_%.2d_0.IFO", directory, number);
    if (!result) result = osFormPath(&backup, u"%sVTS_%.2d_0.BUP", directory, number);
    if (!result) result = osCopyFile(ifo, backup, false);
    (void)osStrFree(&ifo);
    (void)osStrFree(&backup);
    return result;
}

static uint64_t writeTitleSetHeader(const TitleSetFiles* files, uint8_t* header)
{
    const uint64_t both = files->menuBytes + files->ifoBytes;
    orvPut(header, VTSI_LAST_SECTOR, (files->ifoBytes >> SECTOR_SHIFT) - 1);
    orvPut(header, VTS_LAST_SECTOR, ((both + files->ifoBytes) >> SECTOR_SHIFT) - 1 + files->titleSectors);
    orvPut(header, VTSM_VOBS, files->ifoBytes >> SECTOR_SHIFT);
    orvPut(header, VTSTT_VOBS, both >> SECTOR_SHIFT);
    if (uint64_t error = osSeekFile(files->ifo, 0, OS_FROM_START)) return error;
    return osWriteFile(files->ifo, header, SECTOR_BYTES);
}

static uint64_t fixOpenTitleSet(TitleSetFiles* files, bool skip, uint64_t* sectors)
{
    uint8_t header[SECTOR_BYTES];
    if (osReadFile(files->ifo, header, SECTOR_BYTES)) return ORV_VTS_IFO_NOT_READ;
    if (uint64_t error = sizeOf(files->ifo, &files->ifoBytes)) return error;
    if (uint64_t error = sizeOf(files->menuVob, &files->menuBytes)) return error;
    if (uint64_t error = countTitleSectors(files)) return error;
    // Meant: the result of a skipped title set is that of the last open, so that it passes only with a ninth title VOB.
    // Test: StructureCheck.SkippedTitleSetNeedsANinthVob
    uint64_t result = files->lastOpen;
    if (!skip) {
        result = writeTitleSetHeader(files, header);
        (void)copyBackup(files->directory, files->number);   // not looked at
    }
    *sectors = ((files->menuBytes + 2 * files->ifoBytes) >> SECTOR_SHIFT) + files->titleSectors;
    return result;
}

/** Fixes one title set, or only measures it. *sectors gets its length. */
static uint64_t orvFixTitleSetIfo(const char16_t* discDirectory, uint64_t number, const char16_t* previousPath,
                                  bool skip, uint64_t* sectors)
{
    TitleSetFiles files = {};
    files.directory = skip ? previousPath : discDirectory;
    files.number = number;
    *sectors = 0;
    if (!files.directory) return ORV_INVALID_ARGUMENT;
    if (uint64_t error = openIfo(&files, skip ? OS_READ : OS_FIX)) return error;
    uint64_t result = openVob(&files, 0, &files.menuVob, &files.lastOpen);
    if (!result) result = fixOpenTitleSet(&files, skip, sectors);
    (void)osCloseFile(&files.menuVob);
    const uint64_t closed = osCloseFile(&files.ifo);   // what the system could not store shows here
    return result ? result : closed;
}

// ---- the manager ---------------------------------------------------------------------------------------------------

// The manager's files and the two sectors of its IFO that are rewritten.
struct ManagerFiles {
    const char16_t* directory;      // with its trailing separator
    const char16_t* previousPath;   // may be null
    const OsProfile* project;       // null: no title set is skipped
    char16_t* ifoPath;
    char16_t* backupPath;
    OSFILE ifo;
    OSFILE backup;   // 0 if there is none
    uint8_t header[SECTOR_BYTES];
    uint8_t titles[SECTOR_BYTES];   // the title search table
};

static int64_t titlesAt(const ManagerFiles* files)
{
    return int64_t(orvGet(files->header, VMG_TT_SRPT_AT)) << SECTOR_SHIFT;
}

static uint64_t readManager(ManagerFiles* files)
{
    if (uint64_t error = osReadFile(files->ifo, files->header, SECTOR_BYTES)) return error;
    if (uint64_t error = osSeekFile(files->ifo, titlesAt(files), OS_FROM_START)) return error;
    return osReadFile(files->ifo, files->titles, SECTOR_BYTES);
}

static uint64_t writeManager(const ManagerFiles* files)
{
    if (uint64_t error = osSeekFile(files->ifo, 0, OS_FROM_START)) return error;
    if (uint64_t error = osWriteFile(files->ifo, files->header, SECTOR_BYTES)) return error;
    if (uint64_t error = osSeekFile(files->ifo, titlesAt(files), OS_FROM_START)) return error;
    return osWriteFile(files->ifo, files->titles, SECTOR_BYTES);
}

static bool isSkipped(const ManagerFiles* files, uint64_t number)
{
    char16_t section[32];
    osFormat(section, 32, u"VTS_%ld", number);
    return files->project && osProfileInt(files->project, section, u"skipvts", 0) != 0;
}

static void storeFirstSector(ManagerFiles* files, uint64_t number, uint64_t sector)
{
    constexpr uint64_t ENTRIES = (SECTOR_BYTES - TABLE_HEADER_BYTES) / TITLE_BYTES;
    if (number > ENTRIES) return;   // the table's sector has no room for it
    orvPut(files->titles + TABLE_HEADER_BYTES + (number - 1) * TITLE_BYTES, TITLE_START, sector);
}

static uint64_t fixTitleSets(ManagerFiles* files, uint64_t running)
{
    const uint64_t count = orvGet(files->header, VMG_TITLE_SETS);
    for (uint64_t number = 1; number <= count; number++) {
        storeFirstSector(files, number, running);
        uint64_t sectors = 0;
        const bool skip = isSkipped(files, number);
        if (uint64_t error = orvFixTitleSetIfo(files->directory, number, files->previousPath, skip, &sectors)) {
            return error;
        }
        running += sectors;
    }
    return 0;
}

static uint64_t fixManager(ManagerFiles* files)
{
    if (readManager(files)) return ORV_VMG_IFO_NOT_READ;
    uint64_t ifo = 0, backup = 0;
    if (uint64_t error = sizeOf(files->ifo, &ifo)) return error;
    if (uint64_t error = sizeOf(files->backup, &backup)) return error;
    // Meant: the IFO counts twice beside its backup, and the menu VOB not at all.
    // Test: StructureCheck.ManagerCountsItsIfoTwiceBesideTheBackup
    const uint64_t running = (backup + 2 * ifo) >> SECTOR_SHIFT;
    orvPut(files->header, VMGI_LAST_SECTOR, (ifo >> SECTOR_SHIFT) - 1);
    orvPut(files->header, VMG_LAST_SECTOR, running - 1);
    orvPut(files->header, VMGM_VOBS, ifo >> SECTOR_SHIFT);
    if (uint64_t error = fixTitleSets(files, running)) return error;
    if (writeManager(files)) return ORV_VMG_IFO_NOT_READ;
    // Meant: the backup is still open, so that Windows refuses to overwrite it. Test: StructureCheck.BackupOfTheManager
    if (osCopyFile(files->ifoPath, files->backupPath, false)) return ORV_VMG_CLONE_NOT_WRITTEN;
    return 0;
}

static uint64_t checkDirectory(ManagerFiles* files)
{
    uint64_t formed = osFormPath(&files->ifoPath, u"%sVIDEO_TS.IFO", files->directory);
    if (!formed) formed = osFormPath(&files->backupPath, u"%sVIDEO_TS.BUP", files->directory);
    // A directory whose files would have too long a name holds none.
    if (formed) return formed == OS_INVALID_ARGUMENT ? ORV_VMG_IFO_NOT_OPENED : formed;
    if (osOpenFile(files->ifoPath, OS_FIX, &files->ifo)) return ORV_VMG_IFO_NOT_OPENED;
    (void)osOpenFile(files->backupPath, OS_READ, &files->backup);   // one that is missing counts as empty
    uint64_t result = fixManager(files);
    (void)osCloseFile(&files->backup);
    if (osCloseFile(&files->ifo) && !result) result = ORV_VMG_IFO_NOT_READ;   // as a write
    return result;
}

// ---- the exported calls --------------------------------------------------------------------------------------------

static uint64_t checkStructure(const char16_t* projectPath, const char16_t* discPath, const char16_t* previousPath)
{
    if (!discPath) return ORV_INVALID_ARGUMENT;
    char16_t* directory = nullptr;
    OsProfile* project = nullptr;
    uint64_t result = osStrDup(discPath, &directory);
    if (!result) result = osAddBackslash(&directory);
    if (!result && projectPath) result = osOpenProfile(projectPath, &project);
    if (!result) {
        ManagerFiles files = {};
        files.directory = directory;
        files.previousPath = previousPath;
        files.project = project;
        result = checkDirectory(&files);
        (void)osStrFree(&files.ifoPath);
        (void)osStrFree(&files.backupPath);
    }
    osCloseProfile(&project);
    (void)osStrFree(&directory);
    return result;
}

extern "C" uint64_t CheckDVDStructureW(const OrvWChar* projectPath, const OrvWChar* discPath,
                                       const OrvWChar* previousPath)
{
    return checkStructure(orvText(projectPath), orvText(discPath), orvText(previousPath));
}

extern "C" uint64_t CheckDVDStructure(const char* projectPath, const char* discPath, const char* previousPath)
{
    const char* const narrow[] = { projectPath, discPath, previousPath };
    char16_t* wide[3] = {};
    uint64_t result = 0;
    for (uint64_t i = 0; i < 3 && !result; i++) {
        result = narrow[i] ? osAnsiToWide(&wide[i], narrow[i], nullptr) : ORV_INVALID_ARGUMENT;
    }
    if (!result) result = checkStructure(wide[0], wide[1], wide[2]);
    for (char16_t*& text : wide) (void)osStrFree(&text);
    return result;
}
