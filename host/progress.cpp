// progress.cpp: the progress of a run for the eyes.
#include "progress.h"

static constexpr uint64_t NAME_COLUMNS = 22, PERCENT_COLUMNS = 4, FRAME_COLUMNS = 4, LEAST_BAR = 10;

// Stages as the library counts them.
enum Stage : uint32_t {
    TITLE_SET_MENUS = 1,
    TITLE_SET_MOVIE,
    TITLE_SET_TABLES,
    TITLE_SET_BACKUP,
    MANAGER_MENUS,
    MANAGER_TABLES,
    MANAGER_BACKUP,
};

// Stages of DVD-Audio, as the library counts them.
enum AudioStage : uint32_t {
    AUDIO_SOUND = 1,
    AUDIO_TABLES,
    AUDIO_BACKUP,
    STILLS,
    STILL_TABLES,
    STILL_BACKUP,
    AUDIO_MANAGER_MENUS,
    AUDIO_MANAGER_TABLES,
    AUDIO_MANAGER_BACKUP,
    SOUND_PLAYER_TABLE,
};

static std::string audioStageName(const ProgressDisplay& display, uint32_t kind)
{
    static const char* const work[] = { "",      "sound",  "tables", "backup",      "", "tables", "backup",
                                        "menus", "tables", "backup", "player table" };
    if (kind < AUDIO_SOUND || kind > SOUND_PLAYER_TABLE) return "";
    if (kind == STILLS) return "stills";
    if (kind > STILLS && kind <= STILL_BACKUP) return std::string("stills: ") + work[kind];
    if (kind >= AUDIO_MANAGER_MENUS) {
        const bool nothing = kind == AUDIO_MANAGER_MENUS && !display.managerMenus;
        return nothing ? "" : std::string("disc manager: ") + work[kind];
    }
    const bool known = display.titleSetsDone < display.titleSets.size();
    const std::string number = known ? " " + std::to_string(display.titleSets[display.titleSetsDone].number) : "";
    return "title set" + number + ": " + work[kind];
}

std::string stageName(const ProgressDisplay& display, uint32_t kind)
{
    static const char* const work[] = { "", "menus", "movie", "tables", "backup", "menus", "tables", "backup" };
    if (display.isAudio) return audioStageName(display, kind);
    if (kind < TITLE_SET_MENUS || kind > MANAGER_BACKUP) return "";
    if (kind >= MANAGER_MENUS) {
        return kind == MANAGER_MENUS && !display.managerMenus ? "" : std::string("disc manager: ") + work[kind];
    }
    // The library does not tell which title set; they come in order, and each ends with its backup.
    if (display.titleSetsDone >= display.titleSets.size()) return std::string("title set: ") + work[kind];
    const PlannedTitleSet& titleSet = display.titleSets[display.titleSetsDone];
    if (kind == TITLE_SET_MENUS && !titleSet.hasMenus) return "";
    return "title set " + std::to_string(titleSet.number) + ": " + work[kind];
}

static std::string percentOf(uint32_t done, uint32_t total)
{
    const uint64_t percent = total == 0 ? 0 : std::min<uint64_t>(done, total) * 100 / total;
    const std::string text = std::to_string(percent) + "%";
    return std::string(PERCENT_COLUMNS - text.size(), ' ') + text;
}

std::string progressLine(const std::string& name, uint32_t done, uint32_t total, uint64_t columns)
{
    std::string line = name;
    if (line.size() < NAME_COLUMNS) line.append(NAME_COLUMNS - line.size(), ' ');
    const uint64_t taken = line.size() + FRAME_COLUMNS + PERCENT_COLUMNS;
    if (columns >= taken + LEAST_BAR) {
        const uint64_t bar = columns - taken;
        const uint64_t filled = total == 0 ? 0 : std::min<uint64_t>(done, total) * bar / total;
        line += " [" + std::string(filled, '#') + std::string(bar - filled, '-') + "] ";
    }
    line += percentOf(done, total);
    return line.substr(0, columns);
}

// The old line's tail is overwritten with blanks: the terminal is never cleared, so nothing flickers.
static std::string redraw(ProgressDisplay* display, const std::string& line)
{
    if (line == display->shown) return "";
    const size_t old = display->shown.size();
    display->shown = line;
    return "\r" + line + std::string(old > line.size() ? old - line.size() : 0, ' ');
}

std::string progressStep(ProgressDisplay* display, uint32_t total, uint32_t done, uint32_t kind, uint64_t columns)
{
    const std::string name = stageName(*display, kind);
    if (kind == (display->isAudio ? uint32_t(AUDIO_BACKUP) : TITLE_SET_BACKUP)) display->titleSetsDone++;
    if (display->mode == PROGRESS_NONE || name.empty()) return "";
    if (display->mode == PROGRESS_BAR) {
        // The last column stays free: a full line would wrap on some terminals.
        return redraw(display, progressLine(name, done, total, columns > 1 ? columns - 1 : 1));
    }
    if (name == display->shown) return "";
    display->shown = name;
    return percentOf(done, total) + "  " + name + "\n";
}

std::string progressWork(ProgressDisplay* display, const std::string& name, uint32_t total, uint32_t done,
                         uint64_t columns)
{
    if (display->mode == PROGRESS_NONE) return "";
    if (display->mode == PROGRESS_BAR) {
        return redraw(display, progressLine(name, done, total, columns > 1 ? columns - 1 : 1));
    }
    const uint64_t tenths = total == 0 ? 0 : std::min<uint64_t>(done, total) * 10 / total;
    const std::string line = percentOf(uint32_t(tenths), 10) + "  " + name + "\n";
    if (line == display->shown) return "";
    display->shown = line;
    return line;
}

std::string progressEnd(ProgressDisplay* display)
{
    const bool standing = display->mode == PROGRESS_BAR && !display->shown.empty();
    display->shown.clear();
    return standing ? "\n" : "";
}
