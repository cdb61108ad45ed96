// player.h: libdvdnav on an authored disc, and where it is.
#pragma once

#include "tests/readers/material.h"

#include <dvdnav/dvdnav.h>

// A player, closed with the record.
struct Player {
    explicit Player(const Disc& disc);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /** Reads on up to and with the next navigation pack. Stills on the way last as long as they please: one without an
        end is where the player stays.
        @return "manager page 1", "title set 1 page 2", "title 1 chapter 3", "still", "stop", or what went wrong */
    std::string next();
    /** Activates a button of the page at hand and reads on. @return as next */
    std::string press(int button);
    /** Calls a menu and reads on. @return as next */
    std::string call(DVDMenuID_t menu);
    /** Number of the selected button. */
    int button();
    /** Navigation pack at hand. */
    const pci_t& pci()
    {
        return *dvdnav_get_current_nav_pci(nav);
    }
    const dsi_t& dsi()
    {
        return *dvdnav_get_current_nav_dsi(nav);
    }

    dvdnav_t* nav = nullptr;
    int titleSet = 0;                                   // of the domain at hand
    dvdnav_spu_stream_change_event_t subPicture = {};   // last told
    std::vector<uint32_t> palette;                      // last told: 16 colours, 0, Y, Cr, Cb
};
