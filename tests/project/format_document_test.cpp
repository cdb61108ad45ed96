// What docs/project-format.md shows is true: its complete projects are read, its errors are the library's.
#include "project/reader.h"
#include "tests/project/error_rows.h"
#include "tests/project/project_file.h"
#include "tests/support/document.h"

namespace {

std::string document()
{
    return documentText("project-format.md");
}

std::vector<std::string> projects()
{
    return documentProjects(document());
}

ContextPtr readWhole(const ProjectFile& project, int64_t standard)
{
    ContextPtr context = makeContext(project);
    int64_t mode = 0;
    EXPECT_EQ(orvReadCommon(&context->head, project.file, &mode), 0u);
    EXPECT_EQ(mode, standard);
    EXPECT_EQ(orvReadFirstPlay(context.get(), project.file), 0u);
    EXPECT_EQ(orvReadManager(context.get(), project.file, mode, &context->vmg), 0u);
    EXPECT_TRUE(project.logged({}));
    return context;
}

}   // namespace

TEST(FormatDocument, SmallProject)
{
    ASSERT_EQ(projects().size(), 2u);
    const ProjectFile project(projects()[0]);
    const ContextPtr context = readWhole(project, 1);
    EXPECT_EQ(context->firstPlayCommand, 4u);
    EXPECT_EQ(context->head.titleSetCount, 1u);
    const TitleSetDesc& title = *context->titleSets[0];
    EXPECT_EQ(title.titleAttributes.audioStreamCount, 1u);
    EXPECT_EQ(title.titleAttributes.audio[0].languageCode, 0x6E65u);
    EXPECT_EQ(title.chapterCount, 3u);
    EXPECT_EQ(title.chapters[2].startFrame, 1800000);
}

TEST(FormatDocument, LargerProject)
{
    ASSERT_EQ(projects().size(), 2u);
    const ProjectFile project(projects()[1]);
    const ContextPtr context = readWhole(project, 2);
    EXPECT_EQ(context->firstPlayCommand, 3u);
    EXPECT_EQ(context->head.titleSetCount, 2u);
    EXPECT_EQ(context->vmg.menuCount, 1u);
    for (int b = 0; b < 2; b++) EXPECT_EQ(context->vmg.menus[0].buttons[b].command, 4u) << b;
    EXPECT_EQ(context->titleSets[1], nullptr);
    const TitleSetDesc& first = *context->titleSets[0];
    EXPECT_EQ(textOf(first.sources[1]), u"C:\\Holiday\\Disc\\VTS_01_2.VOB");
    EXPECT_EQ(first.titleAttributes.audioStreamCount, 2u);
    EXPECT_EQ(first.titleAttributes.audio[1].subStreamId, 0xA1u);
    EXPECT_EQ(first.chapters[2].highlightButton, 2);
    EXPECT_EQ(first.postCommand, 1u);
    EXPECT_EQ(first.menuCount, 2u);
    EXPECT_EQ(first.menus[0].loopMode, 1u);
    EXPECT_EQ(first.menus[0].playFrames, 600u);
    EXPECT_EQ(first.menus[0].blinkDelay, 50u);
    for (const ButtonDesc& button : first.menus[0].buttons) EXPECT_EQ(button.command != 0, button.color != 0);
    EXPECT_EQ(first.menus[1].audioButtonMark, 3u);
    EXPECT_EQ(first.menus[1].buttons[1].param1, 1u);
}

TEST(FormatDocument, Errors)
{
    EXPECT_EQ(expectErrorRows(document()), 41u);
}
