#include "tests/project/project_file.h"

#include "base/memory.h"

#include <algorithm>

static Bytes fileBytes(std::string_view text)
{
    const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
    if (ascii) return Bytes(text.begin(), text.end());
    Bytes bytes = { 0xFF, 0xFE };
    for (const char16_t unit : toWide(text)) {
        bytes.push_back(uint8_t(unit & 0xFF));
        bytes.push_back(uint8_t(unit >> 8));
    }
    return bytes;
}

ProjectFile::ProjectFile(std::string_view text)
{
    writeFile(path, fileBytes(text));
    run.logFilePath = logPath.data();
    EXPECT_EQ(osOpenProfile(path.c_str(), &file), 0u);
}

ProjectFile::~ProjectFile()
{
    osCloseProfile(&file);
}

ContextPtr makeContext(const ProjectFile& project)
{
    DiscContext* context = nullptr;
    EXPECT_EQ(orvAllocDiscContext(project.logPath.c_str(), &context), 0u);
    return ContextPtr(context);
}

TitleSetPtr makeTitleSet()
{
    TitleSetDesc* titleSet = nullptr;
    EXPECT_EQ(osAllocMem(sizeof(TitleSetDesc), &titleSet), 0u);
    return TitleSetPtr(titleSet);
}

std::u16string textOf(const char16_t* string)
{
    return string ? string : u"(null)";
}
