#include "tests/readers/player.h"

#include <gtest/gtest.h>

#include <cstring>

Player::Player(const Disc& disc)
{
    EXPECT_EQ(disc.result, 0u);
    EXPECT_EQ(dvdnav_open(&nav, disc.root.c_str()), DVDNAV_STATUS_OK);
    if (nav) dvdnav_set_readahead_flag(nav, 0);
}

Player::~Player()
{
    if (nav) dvdnav_close(nav);
}

static std::string place(Player* player)
{
    const std::string page = " page " + std::to_string(player->dsi().dsi_gi.vobu_vob_idn);
    if (dvdnav_is_domain_vmgm(player->nav)) return "manager" + page;
    if (dvdnav_is_domain_vtsm(player->nav)) return "title set " + std::to_string(player->titleSet) + page;
    int32_t title = 0, chapter = 0;
    dvdnav_current_title_info(player->nav, &title, &chapter);
    return "title " + std::to_string(title) + " chapter " + std::to_string(chapter);
}

std::string Player::next()
{
    if (!nav) return "no disc";
    for (int blocks = 0; blocks < 20000; blocks++) {
        alignas(8) uint8_t buffer[2048] = {};
        int32_t event = 0, length = 0;
        if (dvdnav_get_next_block(nav, buffer, &event, &length) != DVDNAV_STATUS_OK) return dvdnav_err_to_string(nav);
        switch (event) {
        case DVDNAV_NAV_PACKET: return place(this);
        case DVDNAV_STOP: return "stop";
        case DVDNAV_WAIT: dvdnav_wait_skip(nav); break;
        case DVDNAV_STILL_FRAME:
            if (reinterpret_cast<const dvdnav_still_event_t*>(buffer)->length == 0xFF) return "still";
            dvdnav_still_skip(nav);
            break;
        case DVDNAV_VTS_CHANGE: titleSet = reinterpret_cast<const dvdnav_vts_change_event_t*>(buffer)->new_vtsN; break;
        case DVDNAV_SPU_STREAM_CHANGE: memcpy(&subPicture, buffer, sizeof(subPicture)); break;
        case DVDNAV_SPU_CLUT_CHANGE:
            palette.resize(16);
            memcpy(palette.data(), buffer, 16 * sizeof(uint32_t));
            break;
        default: break;
        }
    }
    return "nowhere";
}

std::string Player::press(int number)
{
    if (dvdnav_button_select_and_activate(nav, dvdnav_get_current_nav_pci(nav), number) != DVDNAV_STATUS_OK) {
        return std::string("refused: ") + dvdnav_err_to_string(nav);
    }
    return next();
}

std::string Player::call(DVDMenuID_t menu)
{
    if (dvdnav_menu_call(nav, menu) != DVDNAV_STATUS_OK) return std::string("refused: ") + dvdnav_err_to_string(nav);
    return next();
}

int Player::button()
{
    int32_t number = 0;
    dvdnav_get_current_highlight(nav, &number);
    return number;
}
