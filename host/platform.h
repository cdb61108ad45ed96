// platform.h: what the host needs of the system and of the library by a way that the system decides. posix/ and win32/.
#pragma once

#include <orven/orven.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// Arguments of an authoring run as the library takes them: absolute project, separators behind the folders.
struct RunRequest {
    std::filesystem::path project, target, previous, log;   // previous may be empty
    OrvProgress progress;
    uint64_t user;
    bool isAudio;
};

/** One authoring run. */
uint64_t platformAuthor(const RunRequest& request);

/** Hands out a project's menus. log may be empty. */
uint64_t platformPreview(const std::filesystem::path& project, OrvMenuPreviewCall preview, uint64_t user,
                         const std::filesystem::path& log);

// Arguments of aobCreateMuxer; the folder is absolute.
struct AobRequest {
    std::filesystem::path folder;
    uint64_t titleSet, trackCount;
    const AobTrackDesc* tracks;
    OrvSamples samples;
    uint64_t user;
};

/** Makes an AOB and its multiplexer. */
uint64_t platformCreateAob(const AobRequest& request, AobMuxer** muxer);

/** Registers a stream that the multiplexer reads from a file by itself. */
uint64_t platformAddFileStream(MuxContext* handle, const std::filesystem::path& path, uint64_t flags,
                               MuxStream** stream);

/** Whether the library opens just this file for this name: what it is to write goes nowhere else then. */
bool platformLibraryTakes(const std::filesystem::path& path);

/** Begins a scan, with cells of an interval in ticks, or by a list if that is 0. */
uint64_t platformBeginScan(const std::filesystem::path& scanFile, uint64_t interval, const std::vector<uint64_t>& cells,
                           OrvUnit output, uint64_t user, NppScan** out);

/** Renumbers the cell of a navigation pack. project is absolute. */
uint64_t platformSetChapter(uint8_t* sector, const std::filesystem::path& project, uint64_t titleSet,
                            uint64_t* nextVobu, uint64_t* changed);

/** Brings a disc's tables into line. project is absolute; previous has a separator behind it, or is empty. */
uint64_t platformCheckStructure(const std::filesystem::path& project, const std::filesystem::path& disc,
                                const std::filesystem::path& previous);

/** A context for the extraction of tracks. out need not be there yet. */
uint64_t platformCreateExtract(const std::filesystem::path& disc, const std::filesystem::path& out,
                               ExtractContext** context);

/** Text of a result in UTF-8; empty if it has none. */
std::string platformResultText(uint64_t code);

/** Writes UTF-8 text to standard output or standard error, at once. */
void platformPrint(const std::string& text);
void platformPrintError(const std::string& text);

/** Whether standard error is a terminal that can show a bar, and its present width. */
bool platformHasTerminal();
uint64_t platformTerminalColumns();

/** A new, empty file of the user's; an empty path if none can be made. */
std::filesystem::path platformTemporaryFile();
