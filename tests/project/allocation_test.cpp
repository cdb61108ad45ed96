// The n-th allocation fails, n = 1, 2, ... until a project is read whole: right code, nothing left behind, no crash.
// Needs an allocator that a program may put its own in front of.
#include "base/memory.h"
#include "base/result.h"
#include "project/audio_reader.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

#include <cerrno>
#include <cstdlib>
#include <set>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)

namespace {

bool watching = false;
uint64_t allocationsLeft = 0;   // until one fails, while watching
int64_t blocksInUse = 0;        // taken and given back while watching

bool mayAllocate()
{
    return !watching || allocationsLeft == 0 || --allocationsLeft > 0;
}

void* counted(void* memory)
{
    if (watching && memory) blocksInUse++;
    if (!memory) errno = ENOMEM;
    return memory;
}

}   // namespace

extern "C" {
void* __libc_malloc(size_t size) noexcept;
void* __libc_calloc(size_t count, size_t size) noexcept;
void* __libc_realloc(void* memory, size_t size) noexcept;
void __libc_free(void* memory) noexcept;

void* malloc(size_t size) noexcept
{
    return mayAllocate() ? counted(__libc_malloc(size)) : counted(nullptr);
}

void* calloc(size_t count, size_t size) noexcept
{
    return mayAllocate() ? counted(__libc_calloc(count, size)) : counted(nullptr);
}

void* realloc(void* memory, size_t size) noexcept
{
    if (!mayAllocate()) return counted(nullptr);
    return memory ? __libc_realloc(memory, size) : counted(__libc_malloc(size));
}

void free(void* memory) noexcept
{
    if (watching && memory) blocksInUse--;
    __libc_free(memory);
}
}

namespace {

const char* const PROJECT =
    "[VMG]\ntitlesets=3\nmenus=1\n[VTS_1]\nskipvts=1\n"
    "[VTS_2]\nsource=a\nsource5=b\nstreamscanfile=c\nmenus=1\n"
    "[VTS_2_MENU1]\nbackground=a\nsubpicture=b\nspuletterbox=c\nsubpicture32=d\nspuletterbox32=e\n"
    "[VTS_3]\nsource=a\n[VMG_MENU1]\nbackground=a\nsubpicture=b\n";

// Reads the project with the n-th allocation failing; 0 lets none fail.
uint64_t readWithFailure(const ProjectFile& project, uint64_t n)
{
    blocksInUse = 0;
    allocationsLeft = n;
    watching = true;
    DiscContext* context = nullptr;
    uint64_t result = orvAllocDiscContext(project.logPath.c_str(), &context);
    if (!result) result = orvReadManager(context, project.file, 1, &context->vmg);
    orvFreeDiscContext(&context);
    watching = false;
    return result;
}

}   // namespace

TEST(Allocation, EachFailureIsTold)
{
    const ProjectFile project(PROJECT);
    ASSERT_EQ(readWithFailure(project, 0), 0u);
    ASSERT_EQ(blocksInUse, 0);
    // The root, the log's path, title sets 1 and 2, eight paths, title set 3, three paths.
    const std::set<uint64_t> blocks = { 1, 3, 4, 13 };
    for (uint64_t n = 1; n <= 16; n++) {
        EXPECT_EQ(readWithFailure(project, n), blocks.contains(n) ? uint64_t(ENOMEM) : OS_OUT_OF_MEMORY) << n;
        EXPECT_EQ(blocksInUse, 0) << n;
    }
    EXPECT_EQ(readWithFailure(project, 17), 0u);
    EXPECT_TRUE(project.logged({}));
}

namespace {

const char* const AUDIO_PROJECT =
    "[ASVS]\nstills=2\n[ASV01]\nbackground=a\nsubpicture=b\n[ASV02]\nbackground=c\n"
    "[AMG_MENU1]\nbackground=d\nsubpicture=e\n"
    "[ATS_01]\ntracks=2\n"
    "[TRACK_01_01]\nformat=LPCM\nassign=1\nsamplesize=16\nsamplerate=48000\nplaytime=1\nchannel1=f\nchannel2=g\n"
    "[TRACK_01_02]\nformat=LPCM\nassign=1\nsamplesize=16\nsamplerate=48000\nplaytime=1\nchannel1=\\h.AOB\n";

// Reads the sections of a DVD-Audio project in the order of a run.
uint64_t readAudioSections(AudioDiscContext* context, const OsProfile* file)
{
    if (uint64_t error = orvReadStills(&context->head, file, 1, &context->asvs)) return error;
    if (uint64_t error = orvReadAmgMenu(&context->head, file, u"AMG_MENU1", &context->amgMenus[0])) return error;
    AudioTitleSetDesc** const slot = &context->audioTitleSets[0];
    if (uint64_t error = osAllocMem(sizeof(AudioTitleSetDesc), slot)) return error;
    return orvReadAudioTitleSet(&context->head, file, 1, *slot);
}

// The same with the n-th allocation failing; 0 lets none fail.
uint64_t readAudioWithFailure(const ProjectFile& project, uint64_t n)
{
    blocksInUse = 0;
    allocationsLeft = n;
    watching = true;
    AudioDiscContext* context = nullptr;
    uint64_t result = orvCreateAudioContext(project.logPath.c_str(), nullptr, 0, &context);
    if (!result) result = readAudioSections(context, project.file);
    orvFreeAudioContext(&context);
    watching = false;
    return result;
}

}   // namespace

TEST(Allocation, EachFailureOfAnAudioProjectIsTold)
{
    const ProjectFile project(AUDIO_PROJECT);
    ASSERT_EQ(readAudioWithFailure(project, 0), 0u);
    ASSERT_EQ(blocksInUse, 0);
    // The root and the log's path have one code of their own; then a still with two paths, a still with one, two paths
    // of the menu, the title set; everything behind it is a path.
    const std::set<uint64_t> blocks = { 3, 6, 10 };
    uint64_t n = 1, result = 0;
    for (; (result = readAudioWithFailure(project, n)) != 0; n++) {
        const uint64_t code = blocks.contains(n) ? uint64_t(ENOMEM) : OS_OUT_OF_MEMORY;
        EXPECT_EQ(result, n <= 2 ? 0x84001771u : code) << n;
        EXPECT_EQ(blocksInUse, 0) << n;
        ASSERT_LT(n, 100u);
    }
    EXPECT_GE(n, 14u);   // two paths of the first track, at least one of the second
    EXPECT_EQ(blocksInUse, 0);
    EXPECT_TRUE(project.logged({}));
}

#endif
