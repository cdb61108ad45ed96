#include "project/model.h"

#include "base/memory.h"
#include "tests/project/project_file.h"

#include <algorithm>
#include <cstring>

namespace {

// A run record zero filled but for the copy of the log's path.
bool isZero(const void* record, size_t bytes)
{
    const auto* const at = static_cast<const uint8_t*>(record);
    return std::all_of(at, at + bytes, [](uint8_t byte) { return byte == 0; });
}

void fillMenu(MenuDesc* menu)
{
    for (char16_t** path :
         { &menu->background, &menu->subPicture, &menu->spuLetterbox, &menu->subPicture32, &menu->spuLetterbox32 }) {
        ASSERT_EQ(osStrDup(u"path", path), 0u);
    }
}

}   // namespace

TEST(Model, RootIsZeroFilled)
{
    const std::u16string path = u"errors.log";
    DiscContext* context = nullptr;
    ASSERT_EQ(orvAllocDiscContext(path.c_str(), &context), 0u);
    EXPECT_NE(context->head.logFilePath, path.c_str());
    EXPECT_EQ(textOf(context->head.logFilePath), path);
    char16_t* const copy = context->head.logFilePath;
    context->head.logFilePath = nullptr;
    EXPECT_TRUE(isZero(context, sizeof *context));
    context->head.logFilePath = copy;
    orvFreeDiscContext(&context);
    EXPECT_EQ(context, nullptr);
}

TEST(Model, LogPathMayBeNull)
{
    DiscContext* context = nullptr;
    ASSERT_EQ(orvAllocDiscContext(nullptr, &context), 0u);
    EXPECT_EQ(context->head.logFilePath, nullptr);
    orvFreeDiscContext(&context);
}

TEST(Model, FreeingNothingIsHarmless)
{
    DiscContext* context = nullptr;
    orvFreeDiscContext(&context);
    orvFreeDiscContext(&context);
    TitleSetDesc* titleSet = nullptr;
    orvFreeTitleSet(&titleSet);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(titleSet, nullptr);
}

// Every string of the model, freed: the sanitizer's leak check would show one left over.
TEST(Model, FreesAllThatHangsFromTheRoot)
{
    DiscContext* context = nullptr;
    ASSERT_EQ(orvAllocDiscContext(u"errors.log", &context), 0u);
    for (MenuDesc& menu : context->vmg.menus) fillMenu(&menu);
    for (const size_t n : { size_t(0), size_t(98) }) {
        ASSERT_EQ(osAllocMem(sizeof(TitleSetDesc), &context->titleSets[n]), 0u);
        TitleSetDesc* const titleSet = context->titleSets[n];
        for (MenuDesc& menu : titleSet->menus) fillMenu(&menu);
        for (char16_t*& source : titleSet->sources) ASSERT_EQ(osStrDup(u"source", &source), 0u);
        ASSERT_EQ(osStrDup(u"scan", &titleSet->streamScanFile), 0u);
    }
    orvFreeDiscContext(&context);
    EXPECT_EQ(context, nullptr);
}
