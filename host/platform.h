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
};

/** One authoring run. */
uint64_t platformAuthor(const RunRequest& request);

/** Hands out a project's menus. log may be empty. */
uint64_t platformPreview(const std::filesystem::path& project, OrvMenuPreviewCall preview, uint64_t user,
                         const std::filesystem::path& log);

/** Registers a stream that the multiplexer reads from a file by itself. */
uint64_t platformAddFileStream(MuxContext* handle, const std::filesystem::path& path, uint64_t flags,
                               MuxStream** stream);

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
