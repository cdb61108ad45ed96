// dvdnav_test.cpp: libdvdnav plays authored discs: first play, chapters, and from title to title by the post commands.

#include "tests/readers/player.h"

#include <gtest/gtest.h>

struct Place {
    int32_t title = 0, chapter = 0;
    bool operator==(const Place&) const = default;
};
static std::ostream& operator<<(std::ostream& out, const Place& place)
{
    return out << place.title << ":" << place.chapter;
}

/** Plays until the disc stops, or for so many blocks. @return the places that were played, in order */
static std::vector<Place> play(dvdnav_t* nav, uint64_t blocks)
{
    std::vector<Place> places;
    for (uint64_t i = 0; i < blocks; i++) {
        uint8_t buffer[2048];
        uint8_t* block = buffer;
        int32_t event = 0, length = 0;
        if (dvdnav_get_next_block(nav, block, &event, &length) != DVDNAV_STATUS_OK) {
            ADD_FAILURE() << dvdnav_err_to_string(nav);
            break;
        }
        if (event == DVDNAV_STOP) break;
        if (event == DVDNAV_STILL_FRAME) dvdnav_still_skip(nav);
        if (event == DVDNAV_WAIT) dvdnav_wait_skip(nav);
        if (event != DVDNAV_BLOCK_OK) continue;
        Place place;
        dvdnav_current_title_info(nav, &place.title, &place.chapter);
        if (places.empty() || !(places.back() == place)) places.push_back(place);
    }
    return places;
}

static std::vector<int32_t> titles(const std::vector<Place>& places)
{
    std::vector<int32_t> list;
    for (const Place& place : places) {
        if (list.empty() || list.back() != place.title) list.push_back(place.title);
    }
    return list;
}

constexpr const char* THREE_CHAPTERS = "chapters=3\nchapter1=0\nchapter2=200000\nchapter3=450000\n";

TEST(DvdNav, FirstPlayReachesTitleOneAndItsChapters)
{
    const Disc disc(PAL, { { .keys = THREE_CHAPTERS }, { .pattern = 1 } });
    Player player(disc);
    ASSERT_NE(player.nav, nullptr);
    EXPECT_EQ(play(player.nav, 1000000), (std::vector<Place>{ { 1, 1 }, { 1, 2 }, { 1, 3 } }));
}

TEST(DvdNav, ChaptersCanBeJumpedTo)
{
    const Disc disc(NTSC, { { .keys = THREE_CHAPTERS } });
    Player player(disc);
    ASSERT_NE(player.nav, nullptr);
    int32_t count = 0;
    ASSERT_EQ(dvdnav_get_number_of_parts(player.nav, 1, &count), DVDNAV_STATUS_OK);
    EXPECT_EQ(count, 3);
    (void)play(player.nav, 50);
    for (const int32_t chapter : { 3, 1, 2 }) {
        ASSERT_EQ(dvdnav_part_play(player.nav, 1, chapter), DVDNAV_STATUS_OK);
        const std::vector<Place> places = play(player.nav, 50);
        ASSERT_FALSE(places.empty());
        EXPECT_EQ(places.back(), (Place{ 1, chapter }));
    }
}

TEST(DvdNav, ProjectsFirstPlayCommand)
{
    const Disc disc(PAL, { {}, { .pattern = 1 } }, "[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_TT(2,0,0)\n");
    Player player(disc);
    ASSERT_NE(player.nav, nullptr);
    EXPECT_EQ(titles(play(player.nav, 1000000)), (std::vector<int32_t>{ 2 }));
}

TEST(DvdNav, PostCommandsLeadFromTitleToTitle)
{
    // 1 -> next -> 2 -> next -> 3 -> first -> 1 ...
    const Disc round(PAL, { { .seconds = 4, .keys = "postcmd=next\n" },
                            { .pattern = 1, .seconds = 4, .keys = "postcmd=next\n" },
                            { .pattern = 2, .seconds = 4, .keys = "postcmd=first\n" } });
    Player player(round);
    ASSERT_NE(player.nav, nullptr);
    std::vector<int32_t> order = titles(play(player.nav, 6000));
    ASSERT_GE(order.size(), 4u);
    order.resize(4);
    EXPECT_EQ(order, (std::vector<int32_t>{ 1, 2, 3, 1 }));
}

TEST(DvdNav, PreviousAndTheEndOfATitle)
{
    // 2 -> previous -> 1, which has no post command: the disc stops.
    const Disc disc(PAL, { { .seconds = 4 }, { .pattern = 1, .seconds = 4, .keys = "postcmd=previous\n" } },
                    "[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_TT(2,0,0)\n");
    Player player(disc);
    ASSERT_NE(player.nav, nullptr);
    EXPECT_EQ(titles(play(player.nav, 1000000)), (std::vector<int32_t>{ 2, 1 }));
}

TEST(DvdNav, LoopStartsTheTitleAgain)
{
    const Disc disc(NTSC, { { .seconds = 12, .keys = std::string(THREE_CHAPTERS) + "postcmd=loop\n" } });
    Player player(disc);
    ASSERT_NE(player.nav, nullptr);
    std::vector<Place> places = play(player.nav, 20000);
    ASSERT_GE(places.size(), 6u);
    places.resize(6);
    EXPECT_EQ(places, (std::vector<Place>{ { 1, 1 }, { 1, 2 }, { 1, 3 }, { 1, 1 }, { 1, 2 }, { 1, 3 } }));
}
