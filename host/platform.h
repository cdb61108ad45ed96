// platform.h: what the host needs of the system and of the library by a way that the system decides. posix/ and win32/.
#pragma once

#include <orven/orven.h>

#include <cstdint>
#include <filesystem>
#include <string>

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
