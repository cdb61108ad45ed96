// cli.cpp: the command line of `orven`: its commands, options and help.
#include "cli.h"

#include "aob.h"
#include "author.h"
#include "chapters.h"
#include "explain.h"
#include "extract.h"
#include "fix.h"
#include "mux.h"
#include "platform.h"
#include "preview.h"
#include "scan.h"
#include "text.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace fs = std::filesystem;

static constexpr size_t TEXT_COLUMNS = 88;   // the help is as wide

static const char DESCRIPTION[] = R"(orven writes the tables and the navigation data of a DVD-Video or DVD-Audio disc.

A project file, in INI form, describes the disc; finished movies lie where the disc is
to be; `orven mux` makes them. The result is a VIDEO_TS folder that players read; or an
AUDIO_TS folder, of sound that `orven aob` makes.
)";

static const char FOOTER[] = R"(Examples:
  orven author project.ini --target disc/VIDEO_TS
      authors the disc that project.ini describes
  orven author project.ini --target new/VIDEO_TS --previous disc/VIDEO_TS
      authors again; title sets with `skipvts=1` are taken from the earlier disc
  orven mux -o disc/VIDEO_TS/VTS_01_1.VOB --video film.m2v --audio film.ac3
      makes a movie of elementary streams
  orven mux -o disc/VIDEO_TS/VTS_01_1.VOB --video film.m2v --scan-file film.scan --interval 600
      the same with a cell every ten minutes; the project names `streamscanfile=film.scan`
  orven aob --target disc/AUDIO_TS --project album.ini song.wav waltz.wav
      makes the sound of a DVD-Audio disc, and a project for `orven author`
  orven extract disc --out tracks
      makes WAVE files of the tracks of a DVD-Audio disc
  orven preview project.ini --out pictures
      shows the menus as PNG pictures, before a disc is made
  orven explain 1012
      tells what a failure means and where to look

`orven COMMAND --help` tells more of a command.
Exit codes: 0 done, 1 the run failed, 2 wrong usage, 130 interrupted by Ctrl-C.)";

static const char AUTHOR_FOOTER[] =
    R"(The movies are not copied. They have to lie in the target folder already, as finished
program streams with the names VTS_01_1.VOB, VTS_02_1.VOB and so on, and the project
names them as `source`. A run fills their navigation packs in place.

Relative paths in the project count from the folder in which orven is started.

A small project:
  [COMMON]
  version=1.0
  mode=PAL
  [VMG]
  titlesets=1
  [VTS_1]
  source=disc/VIDEO_TS/VTS_01_1.VOB
  audio=AC3
  chapters=2
  chapter2=5400000

Chapters count ticks of 1/90000 second: chapter 2 begins after one minute.

A project with a section [AMG] in the place of [VMG] is one of DVD-Audio. Its sound lies
in the target folder too, the AUDIO_TS folder of the disc; `orven aob` makes both.)";

static const char PREVIEW_FOOTER[] =
    R"(For each menu, here the second one of title set 1, DIR gets
  vts01-menu2.png            the sub-picture in its own colours, with the rectangle,
                             number and links of each button
  vts01-menu2-selected.png   the highlight of all buttons as if each were selected
  vts01-menu2-activated.png  the same, as if each were activated
Menus of the disc's manager are vmg-menu1 and so on. A menu with a letterbox form has that
as vts01-menu2-letterbox too. Files of these names are overwritten.

The background is left out: grey stands for it. Arrows lead to the button that a key
selects: up is yellow, down orange, left green, right blue.

A viewer sees one button highlighted at a time. With --button 3 the pictures of the
highlight show button 3 alone, as vts01-menu2-button3-selected.png: needed where buttons
overlap. Movies and backgrounds need not be there.)";

static const char MUX_FOOTER[] =
    R"(VIDEO is an MPEG-2 elementary stream of PAL or NTSC, with a group header in front of each
I picture, as encoders for DVD make it. A sound is AC-3, MPEG audio of layer 2 or LPCM in
RIFF/WAVE (16 bits, one or two channels), each of 48000 samples a second. The kind of a
file is told by its bytes; its name does not matter.

Repeat --audio for up to eight sounds; their order is that of the tracks. Picture and sound
begin together. All of them must fit into 10.08 Mbit/s.

OUT is written over if it is there. It is a movie that a project can name as `source`:
  orven mux -o disc/VIDEO_TS/VTS_01_1.VOB --video film.m2v --audio film.ac3
  orven author project.ini --target disc/VIDEO_TS

With --scan-file the movie goes through the pass of `orven scan` as well.)";

static const char SCAN_FOOTER[] =
    R"(IN is a program stream of `orven mux`. The pass completes its navigation packs, numbers
the cells, and writes a scan file, which a project names as `streamscanfile`: authoring then
neither reads nor changes the movie, which comes out with the cells that it has here.
  orven scan film.vob -o disc/VIDEO_TS/VTS_01_1.VOB --scan-file film.scan --cells cells.txt

Without --interval and --cells the movie is one cell. --interval 600 begins one every ten
minutes. A file of --cells has the start of a cell on each line, as seconds (90.5) or
[H:]MM:SS (1:30.5); blank lines and what stands behind a # are passed over, and the start
at 0 may be left out. A cell begins with the first unit that starts at its time or later.

The whole stream is looked at before anything is written. OUT and the scan file are written
over if they are there; IN is never changed.)";

static const char CHAPTERS_FOOTER[] =
    R"(A movie that is multiplexed already gets other cells: its navigation packs are renumbered in
place. A VOB that goes on in further files is named with all of them, in their order:
  orven chapters VTS_01_1.VOB VTS_01_2.VOB --project project.ini --title-set 1

Section [VTS_1] of the project has `chapters`, and `chapter1` and on begin with the clock at
which a cell begins, in ticks of 1/90000 second. A new cell begins at each of them, so that
`chapter1` must have a clock that no movie reaches: `chapter1=4294967295`. Authoring begins
the first chapter with the movie whatever that key says, and one project serves both.

The whole movie is looked at before anything is written. Its tables are not changed: the
project that authors them must have the same cells.)";

static const char FIX_FOOTER[] =
    R"(After a VOB was changed, or title sets were copied together, the tables of a disc hold
wrong sizes. DISC is its VIDEO_TS folder, or the folder that holds that. The sector numbers
of VIDEO_TS.IFO and of each VTS_nn_0.IFO are brought into line with the sizes of the files,
and each IFO is copied over its backup.

Of the project only `skipvts` is looked at, in sections [VTS_1] and on: a title set that is
skipped lies in the folder of --previous, and counts only if it has a file VTS_nn_9.VOB there.)";

static const char AOB_FOOTER[] =
    R"(TRACK is a RIFF/WAVE file of one or two channels, or a mono file for each of 2, 4, 5 or 6
channels, joined by + and without blanks: left, right, left surround, right surround,
centre, low frequency. A mono file alone is written as stereo, with the same samples on
both channels. Samples have 16 or 24 bits; their rate is 44100, 48000, 88200, 96000,
176400 or 192000 Hz. The tracks of a title set are alike in channels, bits and rate, and
hold at most 9.6 Mbit/s.

DIR gets ATS_01_1.AOB and ATS_01.nfo, for title set 1, which are written over if they are
there. A project then names the AOB; its lines are printed, or --project writes a whole
one for title set 1:
  orven aob --target disc/AUDIO_TS --project disc.ini song.wav waltz.wav
  orven author disc.ini --target disc/AUDIO_TS)";

static const char EXTRACT_FOOTER[] =
    R"(DISC is the folder of a disc, or its AUDIO_TS or VIDEO_TS folder. Tracks are those of a
DVD-Audio disc, or the chapters of the first title of a DVD-Video whose sound is LPCM.

For each track, here the second one, DIR gets
  track002_lrf.wav     left and right
  track002_lrs.wav     left and right surround, of four to six channels
  track002_c.wav       the centre, of five channels; its second channel is silent
  track002_c_lfe.wav   the centre and the low frequencies, of six channels
and with --mono a file for each channel, whose names end in _lf, _rf, _ls, _rs, _c, _lfe.

Tracks have 16 or 24 bits and two, four, five or six channels. Others are listed with the
reason why they can't be extracted. A track that can't be read to its end leaves no file.)";

static const char EXPLAIN_FOOTER[] = R"(CODE is the number of a message, 1012, or a whole result as a program gets it,
0x840003F4 or 2214593524. Numbers below 1000 are those of the operating system.)";

static fs::path toPath(const std::string& utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

struct CommandLine {
    std::string project, target, previous, log, out, code, video, scanFile, interval, cells, in, disc;
    std::vector<std::string> sounds, vobs, tracks;
    uint32_t button = 0, titleSet = 1, track = 0;
    bool pal = false, ntsc = false, quiet = false, mono = false, force = false;
};

static void addProject(CLI::App* command, CommandLine* line)
{
    command->add_option("PROJECT", line->project, "The project file")->required()->type_name("");
}

static void addQuiet(CLI::App* command, CommandLine* line)
{
    command->add_flag("-q,--quiet", line->quiet, "Print nothing but failures");
}

static void addReporting(CLI::App* command, CommandLine* line)
{
    command->add_option("-l,--log", line->log, "File to which the library appends what it finds wrong")
        ->type_name("FILE");
    addQuiet(command, line);
}

static void addAuthor(CLI::App* app, CommandLine* line)
{
    CLI::App* author = app->add_subcommand("author", "Author a disc from a project file")->group("Commands");
    addProject(author, line);
    author->add_option("-t,--target", line->target, "The disc's VIDEO_TS or AUDIO_TS folder; made where it is missing")
        ->required()
        ->type_name("DIR");
    author->add_option("-p,--previous", line->previous, "Folder of an earlier run, for title sets that are skipped")
        ->type_name("DIR");
    addReporting(author, line);
    author->footer(AUTHOR_FOOTER);
}

static void addPreview(CLI::App* app, CommandLine* line)
{
    CLI::App* preview = app->add_subcommand("preview", "Show a project's menus as pictures")->group("Commands");
    addProject(preview, line);
    preview->add_option("-o,--out", line->out, "Folder for the PNG files; made where it is missing")
        ->required()
        ->type_name("DIR");
    preview->add_option("-b,--button", line->button, "Highlight this button alone, 1 to 36")
        ->check(CLI::Range(1, 36).description(""))
        ->type_name("N");
    addReporting(preview, line);
    preview->footer(PREVIEW_FOOTER);
}

static void addCells(CLI::App* command, CommandLine* line)
{
    command->add_option("--interval", line->interval, "Begin a cell each time so many seconds have gone")
        ->type_name("SECONDS");
    command->add_option("--cells", line->cells, "Begin cells at the times that this file lists")->type_name("FILE");
}

static void addMux(CLI::App* app, CommandLine* line)
{
    CLI::App* mux = app->add_subcommand("mux", "Make a movie of elementary streams")->group("Commands");
    mux->add_option("-o,--out", line->out, "The movie, a program stream")->required()->type_name("OUT");
    mux->add_option("-v,--video", line->video, "Its pictures")->required()->type_name("VIDEO");
    mux->add_option("-a,--audio", line->sounds, "A sound; the option may be repeated")
        ->type_name("FILE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    mux->add_flag("--pal", line->pal, "Refuse video that is not PAL");
    mux->add_flag("--ntsc", line->ntsc, "Refuse video that is not NTSC");
    mux->add_option("--scan-file", line->scanFile, "Complete the navigation data, and write this scan file")
        ->type_name("FILE");
    addCells(mux, line);
    addQuiet(mux, line);
    mux->footer(MUX_FOOTER);
}

static void addScan(CLI::App* app, CommandLine* line)
{
    CLI::App* scan = app->add_subcommand("scan", "Complete a movie's navigation data")->group("Commands");
    scan->add_option("IN", line->in, "The movie, a program stream")->required()->type_name("");
    scan->add_option("-o,--out", line->out, "The completed movie")->required()->type_name("OUT");
    scan->add_option("--scan-file", line->scanFile, "The scan file")->required()->type_name("FILE");
    addCells(scan, line);
    addQuiet(scan, line);
    scan->footer(SCAN_FOOTER);
}

static ScanOptions scanOptions(const CommandLine& line)
{
    return { toPath(line.scanFile), line.interval, toPath(line.cells) };
}

static int runMux(const CommandLine& line)
{
    MuxOptions options;
    options.out = toPath(line.out);
    options.video = toPath(line.video);
    options.scan = scanOptions(line);
    for (const std::string& sound : line.sounds) options.sounds.push_back(toPath(sound));
    options.pal = line.pal;
    options.ntsc = line.ntsc;
    options.quiet = line.quiet;
    return runMux(options);
}

static void addChapters(CLI::App* app, CommandLine* line)
{
    CLI::App* chapters = app->add_subcommand("chapters", "Renumber the cells of a movie")->group("Commands");
    chapters->add_option("VOB", line->vobs, "The movie's files")->required()->type_name("");
    chapters->add_option("-p,--project", line->project, "The project file, which has the chapters")
        ->required()
        ->type_name("FILE");
    chapters->add_option("-n,--title-set", line->titleSet, "Its title set, 1 to 99")
        ->required()
        ->check(CLI::Range(1, 99).description(""))
        ->type_name("N");
    addQuiet(chapters, line);
    chapters->footer(CHAPTERS_FOOTER);
}

static int runChapters(const CommandLine& line)
{
    ChaptersCommand command;
    for (const std::string& vob : line.vobs) command.vobs.push_back(toPath(vob));
    command.project = toPath(line.project);
    command.titleSet = line.titleSet;
    command.quiet = line.quiet;
    return runChapters(command);
}

static void addFix(CLI::App* app, CommandLine* line)
{
    CLI::App* fix = app->add_subcommand("fix", "Bring a disc's tables into line with its files")->group("Commands");
    fix->add_option("DISC", line->target, "The disc")->required()->type_name("");
    fix->add_option("-p,--project", line->project, "The project file")->required()->type_name("FILE");
    fix->add_option("--previous", line->previous, "Folder of an earlier run, for title sets that are skipped")
        ->type_name("DIR");
    addQuiet(fix, line);
    fix->footer(FIX_FOOTER);
}

static void addAob(CLI::App* app, CommandLine* line)
{
    CLI::App* aob = app->add_subcommand("aob", "Make the sound of a DVD-Audio title set")->group("Commands");
    aob->add_option("TRACK", line->tracks, "The tracks, in their order")->required()->type_name("");
    aob->add_option("-t,--target", line->target, "The disc's AUDIO_TS folder; made where it is missing")
        ->required()
        ->type_name("DIR");
    aob->add_option("-n,--title-set", line->titleSet, "Number of the title set, 1 to 99; 1 without it")
        ->check(CLI::Range(1, 99).description(""))
        ->type_name("N");
    aob->add_option("--project", line->project, "Write a project file, which must not be there yet")->type_name("FILE");
    addQuiet(aob, line);
    aob->footer(AOB_FOOTER);
}

static void addExtract(CLI::App* app, CommandLine* line)
{
    CLI::App* extract = app->add_subcommand("extract", "Make WAVE files of a disc's tracks")->group("Commands");
    extract->add_option("DISC", line->disc, "The disc's folder")->required()->type_name("");
    extract->add_option("-o,--out", line->out, "Folder for the WAVE files; made where it is missing")
        ->required()
        ->type_name("DIR");
    extract->add_option("-t,--track", line->track, "Extract this track alone, 1 to 99")
        ->check(CLI::Range(1, 99).description(""))
        ->type_name("N");
    extract->add_flag("-m,--mono", line->mono, "Make a file for each channel, not for each pair");
    extract->add_flag("-f,--force", line->force, "Replace files that are there");
    addQuiet(extract, line);
    extract->footer(EXTRACT_FOOTER);
}

static void addExplain(CLI::App* app, CommandLine* line)
{
    CLI::App* explain = app->add_subcommand("explain", "Tell what a result code means")->group("Commands");
    explain->add_option("CODE", line->code, "The code")->required()->type_name("");
    explain->footer(EXPLAIN_FOOTER);
}

static int runExplain(const std::string& text)
{
    uint64_t code;
    if (!parseCode(text, &code)) {
        platformPrintError("error: " + text + " is no result code; write 1012 or 0x840003F4\n");
        return EXIT_USAGE;
    }
    const std::string more = explanation(code);
    platformPrint(resultLine(code, platformResultText(code)) + "\n" +
                  (more.empty() ? "" : "\n" + wrapped(more, TEXT_COLUMNS) + "\n"));
    return EXIT_DONE;
}

static int runCommand(const CLI::App& app, const CommandLine& line)
{
    if (app.got_subcommand("explain")) return runExplain(line.code);
    if (app.got_subcommand("mux")) return runMux(line);
    if (app.got_subcommand("chapters")) return runChapters(line);
    if (app.got_subcommand("fix"))
        return runFix({ toPath(line.target), toPath(line.project), toPath(line.previous), line.quiet });
    if (app.got_subcommand("scan"))
        return runScan({ toPath(line.in), toPath(line.out), scanOptions(line), line.quiet });
    if (app.got_subcommand("aob")) {
        return runAob({ toPath(line.target), toPath(line.project), line.titleSet, line.tracks, line.quiet });
    }
    if (app.got_subcommand("extract")) {
        return runExtract({ toPath(line.disc), toPath(line.out), line.track, line.mono, line.force, line.quiet });
    }
    if (app.got_subcommand("preview")) {
        return runPreview({ toPath(line.project), toPath(line.out), toPath(line.log), line.button, line.quiet });
    }
    return runAuthor(
        { toPath(line.project), toPath(line.target), toPath(line.previous), toPath(line.log), line.quiet });
}

int runCommandLine(const std::vector<std::string>& arguments)
{
    CLI::App app(DESCRIPTION, "orven");
    CommandLine line;
    app.allow_windows_style_options(false);   // "/home/x" is a path
    app.set_version_flag("--version", "orven " ORVEN_VERSION, "Print the version");
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.footer(FOOTER);
    addAuthor(&app, &line);
    addMux(&app, &line);
    addScan(&app, &line);
    addChapters(&app, &line);
    addFix(&app, &line);
    addAob(&app, &line);
    addPreview(&app, &line);
    addExtract(&app, &line);
    addExplain(&app, &line);
    if (arguments.empty()) {
        platformPrintError(app.help());
        return EXIT_USAGE;
    }
    const auto isFirst = [&](const CLI::App* command) { return command->get_name() == arguments[0]; };
    if (arguments[0][0] != '-' && app.get_subcommands(isFirst).empty()) {
        platformPrintError("error: there is no command " + arguments[0] + "; see orven --help\n");
        return EXIT_USAGE;
    }
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return runCommand(app, line);
    } catch (const CLI::ParseError& problem) {
        std::ostringstream out, err;
        const bool asked = app.exit(problem, out, err) == 0;
        platformPrint(out.str());
        platformPrintError(err.str());
        return asked ? EXIT_DONE : EXIT_USAGE;
    } catch (const std::exception& problem) {
        platformPrintError(std::string("error: ") + problem.what() + "\n");
        return EXIT_RUN_FAILED;
    }
}
