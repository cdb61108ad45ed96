// The n-th allocation fails, n = 1, 2, ... until a project is read whole: right code, nothing left behind, no crash.
// Needs an allocator that a program may put its own in front of.
#include "base/result.h"
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

#endif
