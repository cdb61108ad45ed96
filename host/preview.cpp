// preview.cpp: the command `preview`: pictures of a project's menus, before a disc is made.
#include "preview.h"

#include "cli.h"
#include "platform.h"
#include "png.h"
#include "preview_draw.h"
#include "report.h"
#include "run_log.h"
#include "text.h"

#include <fstream>

namespace fs = std::filesystem;

struct Preview {
    const PreviewOptions* options;
    uint64_t menus = 0;
    bool buttonSeen = false;
    std::string failure = {};   // of the host's own work
};

static std::string counted(uint64_t count, const std::string& noun)
{
    return (count ? std::to_string(count) : "no") + " " + noun + (count == 1 ? "" : "s");
}

static bool hasButton(const OrvMenuPreview& menu, uint32_t button)
{
    return button == 0 || button <= menu.buttonCount;
}

// "vts01-menu2-letterbox"
static std::string fileName(const OrvMenuPreview& menu)
{
    const std::string number = std::to_string(menu.titleSet);
    const std::string domain = menu.titleSet ? "vts" + std::string(number.size() < 2 ? "0" : "") + number : "vmg";
    return domain + "-menu" + std::to_string(menu.menu) + (menu.letterbox ? "-letterbox" : "");
}

// "title set 1, menu 2, letterbox: 5 buttons"
static std::string menuLine(const OrvMenuPreview& menu, uint32_t button)
{
    const std::string domain = menu.titleSet ? "title set " + std::to_string(menu.titleSet) : "manager";
    return domain + ", menu " + std::to_string(menu.menu) + (menu.letterbox ? ", letterbox" : "") + ": " +
           counted(menu.buttonCount, "button") +
           (hasButton(menu, button) ? "" : ", so none is number " + std::to_string(button)) + "\n";
}

static bool writeFile(const fs::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    out.close();
    return !out.fail();
}

// Only files are written over: a link could lead to one that the user has not named.
static std::string writeWhy(const fs::path& path, const Picture& picture)
{
    std::error_code error;
    const fs::file_status there = fs::symlink_status(path, error);
    if (fs::exists(there) && !fs::is_regular_file(there)) return " is there and is no plain file";
    const std::vector<uint8_t> png = encodePng(picture);
    if (png.empty()) return " can't be made: the system has given no picture";
    return writeFile(path, png) ? "" : " can't be written";
}

static bool writePicture(Preview* preview, const std::string& name, const Picture& picture)
{
    const fs::path path = preview->options->folder / (name + ".png");
    const std::string why = writeWhy(path, picture);
    if (!why.empty()) preview->failure = printablePath(path) + why;
    if (why.empty() && !preview->options->quiet) platformPrint("  " + printablePath(path) + "\n");
    return why.empty();
}

static bool writeMenu(Preview* preview, const OrvMenuPreview& menu)
{
    const uint32_t button = preview->options->button;
    const std::string name = fileName(menu), alone = button ? "-button" + std::to_string(button) : "";
    preview->menus++;
    if (!preview->options->quiet) platformPrint(menuLine(menu, button));
    if (!writePicture(preview, name, drawMenuMap(menu))) return false;
    if (!hasButton(menu, button)) return true;
    preview->buttonSeen = true;
    return writePicture(preview, name + alone + "-selected", drawHighlight(menu, BUTTON_SELECTED, button)) &&
           writePicture(preview, name + alone + "-activated", drawHighlight(menu, BUTTON_ACTIVATED, button));
}

// The library calls it, so nothing may be thrown.
static uint32_t onMenu(const OrvMenuPreview* menu, uint64_t user)
{
    Preview* preview = reinterpret_cast<Preview*>(user);
    try {
        return writeMenu(preview, *menu) ? 0 : 1;
    } catch (const std::exception& problem) {
        preview->failure = problem.what();
        return 1;
    }
}

static int fail(const std::string& text)
{
    platformPrintError(text);
    return EXIT_RUN_FAILED;
}

static int reportPreview(const Preview& preview, const RunOutcome& outcome)
{
    const PreviewOptions& options = *preview.options;
    if (!outcome.log.empty())
        platformPrintError("warning: the pictures are made, but the library has logged:\n" + logLines(outcome.log));
    if (preview.menus == 0) {
        if (!options.quiet) platformPrint("the project has no menus to show\n");
        return EXIT_DONE;
    }
    if (options.button && !preview.buttonSeen)
        return fail("error: no menu has a button " + std::to_string(options.button) + "\n");
    return EXIT_DONE;
}

static int previewWithLog(const PreviewOptions& options, const fs::path& log)
{
    Preview preview = { .options = &options };
    const ProjectFile project = readProject(options.project);
    const uint64_t before = logBytes(log);
    const uint64_t code =
        platformPreview(fs::absolute(options.project), onMenu, reinterpret_cast<uint64_t>(&preview), log);
    if (!preview.failure.empty()) return fail("error: " + preview.failure + "\n");
    const RunOutcome outcome = { code, readLog(log, before), options.folder, {}, true };
    if (code) return fail(failureText(options.project, project, outcome) + moreLine(code));
    return reportPreview(preview, outcome);
}

static int checkUsage(const PreviewOptions& options)
{
    std::error_code error;
    if (const int refused = checkProject(options.project)) return refused;
    if (fs::exists(options.folder, error) && !fs::is_directory(options.folder, error)) {
        return refuse(printablePath(options.folder) + " is a file; the pictures need a folder");
    }
    return checkLog(options.log);
}

int runPreview(const PreviewOptions& options)
{
    if (const int refused = checkUsage(options)) return refused;
    if (const int failed = makeFolder(options.folder)) return failed;
    return withLog(options.log, [&](const fs::path& log) { return previewWithLog(options, log); });
}
