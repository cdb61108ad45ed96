// movie_file.cpp: the program stream that a command writes.
#include "movie_file.h"

#include "codes.h"
#include "nav_pack.h"

bool openMovie(MovieFile* movie)
{
    if (movie->made) return true;
    movie->out.open(movie->path, std::ios::binary | std::ios::trunc);
    movie->made = movie->out.is_open();
    movie->refused = !movie->made;
    return movie->made;
}

bool writeMovie(MovieFile* movie, const uint8_t* sectors, uint64_t bytes)
{
    if (!openMovie(movie)) return false;
    movie->out.write(reinterpret_cast<const char*>(sectors), std::streamsize(bytes));
    movie->refused = movie->out.fail();
    movie->sectors += bytes / SECTOR_BYTES;
    return !movie->refused;
}

FileFault closeMovie(MovieFile* movie)
{
    movie->out.close();
    return movie->refused || movie->out.fail() ? movieFault() : FileFault{};
}

void dropMovie(MovieFile* movie)
{
    std::error_code error;
    movie->out.close();
    if (movie->made) std::filesystem::remove(movie->path, error);
}

FileFault movieFault()
{
    return { CODE_WRITE_FAILED, "the file can't be written" };
}
