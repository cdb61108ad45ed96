// The n-th allocation of a DVD-Audio run fails, n = 1, 2, ... until a run is whole: a result that says so, nothing
// written but to the target, no crash. Needs an allocator that a program may put its own in front of.
#include "tests/run/audio_project.h"
#include "tests/support/environment.h"

#include <cerrno>
#include <cstdlib>
#include <set>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)

namespace {

bool watching = false;
uint64_t allocationsLeft = 0;   // until one fails, while watching

bool mayAllocate()
{
    if (watching && allocationsLeft > 0 && --allocationsLeft == 0) {
        errno = ENOMEM;
        return false;
    }
    return true;
}

}   // namespace

extern "C" {
void* __libc_malloc(size_t size) noexcept;
void* __libc_calloc(size_t count, size_t size) noexcept;
void* __libc_realloc(void* memory, size_t size) noexcept;

void* malloc(size_t size) noexcept
{
    return mayAllocate() ? __libc_malloc(size) : nullptr;
}

void* calloc(size_t count, size_t size) noexcept
{
    return mayAllocate() ? __libc_calloc(count, size) : nullptr;
}

void* realloc(void* memory, size_t size) noexcept
{
    return mayAllocate() ? __libc_realloc(memory, size) : nullptr;
}
}

TEST(AudioMemory, EachAllocationMayFail)
{
    const AudioDisc disc = { .titleSets = { {}, { .sound = Sound::WAVES } },
                             .menus = { { .keys = buttonKeys(2) }, { .units = 2 } },
                             .stills = { {}, { .hasSubPicture = true } } };
    AudioRun run;
    run.nullProgress = true;
    const std::u16string log = run.log;
    writeFile(run.project, audioProject(run, disc));
    ASSERT_EQ(0u, run.author());
    const Snapshot whole = takeSnapshot(run.folder.root / "target");
    const Snapshot around = takeSnapshot(run.folder.root);

    std::set<uint64_t> found;
    uint64_t n = 0, failures = 0;
    for (bool failed = true; failed && n < 5000;) {
        n++;
        SCOPED_TRACE(n);
        for (const auto& [name, bytes] : whole) {
            if (!name.ends_with(".nfo")) std::filesystem::remove(run.folder.root / "target" / name);
        }
        const TempFolder temporary;
        allocationsLeft = n;
        watching = true;
        const uint64_t result = run.author();
        watching = false;
        failed = allocationsLeft == 0;
        found.insert(result);
        failures += result != 0;
        EXPECT_EQ(std::vector<std::string>(), temporary.unitFiles());
        // A backup that could not be copied is the one thing that may be missing from a whole disc.
        for (const auto& [name, bytes] : whole) {
            if (result != 0) break;
            const bool may = name.ends_with(".BUP") && failed;
            EXPECT_TRUE(run.has(name) || may) << name;
            EXPECT_EQ(bytes, run.has(name) ? run.get(name) : bytes) << name;
        }
        std::filesystem::remove(std::filesystem::path(log));
        if (testing::Test::HasFailure()) break;
    }
    // Memory, or the context, or the name of a temporary file. Only the copies of four backups are not looked at.
    EXPECT_EQ((std::set<uint64_t>{ 0, ENOMEM, 0x88010002, 0x84001771, 0x840007ED }), found);
    EXPECT_EQ(n - 1 - 4, failures);
    EXPECT_LT(50u, failures);
    EXPECT_EQ(around.size(), takeSnapshot(run.folder.root).size());   // nothing foreign is there
}

#endif
