// vob_files.cpp: the files of one movie as sectors.
#include "vob_files.h"

#include "named_file.h"
#include "nav_pack.h"
#include "text.h"

namespace fs = std::filesystem;

std::string measureVobs(const std::vector<fs::path>& paths, VobFiles* vobs)
{
    for (const fs::path& path : paths) {
        const uint64_t bytes = fileBytes(path);
        const bool last = &path == &paths.back();
        if (bytes < SECTOR_BYTES)
            return printablePath(path) + " holds " + bytesText(bytes) + ", less than one pack of 2048";
        if (bytes % SECTOR_BYTES && !last)
            return printablePath(path) + " ends within a pack, so that no further file can continue it";
        VobFile& file = vobs->files.emplace_back();
        file.path = path;
        file.first = vobs->sectors;
        file.sectors = bytes / SECTOR_BYTES;
        vobs->sectors += file.sectors;
    }
    return "";
}

bool openVobs(VobFiles* vobs, bool writing)
{
    const std::ios::openmode reading = std::ios::binary | std::ios::in;
    for (VobFile& file : vobs->files) {
        file.stream.open(file.path, writing ? reading | std::ios::out : reading);
        if (!file.stream) return false;
    }
    return true;
}

bool closeVobs(VobFiles* vobs)
{
    bool kept = true;
    for (VobFile& file : vobs->files) {
        if (!file.stream.is_open()) continue;
        file.stream.close();
        kept = kept && !file.stream.fail();
    }
    return kept;
}

static size_t indexOf(const VobFiles& vobs, uint64_t sector)
{
    size_t i = 0;
    while (i + 1 < vobs.files.size() && sector >= vobs.files[i + 1].first) i++;
    return i;
}

static std::fstream* seek(VobFiles* vobs, uint64_t sector)
{
    VobFile& file = vobs->files[indexOf(*vobs, sector)];
    file.stream.seekg(std::streamoff((sector - file.first) * SECTOR_BYTES));
    return &file.stream;
}

bool readSector(VobFiles* vobs, uint64_t sector, uint8_t* bytes)
{
    return bool(seek(vobs, sector)->read(reinterpret_cast<char*>(bytes), std::streamsize(SECTOR_BYTES)));
}

bool writeSector(VobFiles* vobs, uint64_t sector, const uint8_t* bytes)
{
    std::fstream* stream = seek(vobs, sector);   // one place serves reading and writing
    return bool(stream->write(reinterpret_cast<const char*>(bytes), std::streamsize(SECTOR_BYTES)).flush());
}

std::string placeText(const VobFiles& vobs, uint64_t sector)
{
    const VobFile& file = vobs.files[indexOf(vobs, sector)];
    return printablePath(file.path) + ", sector " + std::to_string(sector - file.first);
}
