// codes.h: the result codes that the host looks at, by name. Their texts come from the library.
#pragma once

#include <cstdint>

constexpr uint64_t libraryCode(uint64_t id)
{
    return 0x84000000 + id;
}

inline constexpr uint64_t CODE_UNKNOWN_CHAR = libraryCode(1000), CODE_WRONG_CHAR = libraryCode(1001),
                          CODE_NUMBER_EXPECTED = libraryCode(1003), CODE_STRING_EXPECTED = libraryCode(1004),
                          CODE_COMMA_EXPECTED = libraryCode(1005), CODE_OPENING_EXPECTED = libraryCode(1006),
                          CODE_CLOSING_EXPECTED = libraryCode(1007), CODE_DOT_EXPECTED = libraryCode(1008),
                          CODE_NO_VERSION = libraryCode(1009), CODE_WRONG_VERSION = libraryCode(1010),
                          CODE_VIDEO_MODE = libraryCode(1011), CODE_NO_TITLE_SETS = libraryCode(1012),
                          CODE_ASPECT = libraryCode(1013), CODE_NO_BACKGROUND = libraryCode(1014),
                          CODE_NO_SUBPICTURE = libraryCode(1015), CODE_RESOLUTION = libraryCode(1016),
                          CODE_COLOR = libraryCode(1017), CODE_MENUS = libraryCode(1018),
                          CODE_BUTTONS = libraryCode(1019), CODE_MENU_TYPE = libraryCode(1020),
                          CODE_BITRATE = libraryCode(1022), CODE_MPEG_TYPE = libraryCode(1023),
                          CODE_AUDIO_TYPE = libraryCode(1024), CODE_AUDIO_CHANNELS = libraryCode(1025),
                          CODE_AUDIO_RATE = libraryCode(1026), CODE_AUDIO_SIZE = libraryCode(1027),
                          CODE_COLON_EXPECTED = libraryCode(1029), CODE_LANGUAGE = libraryCode(1030),
                          CODE_MENU_EXISTENCE = libraryCode(1031), CODE_POST_COMMAND = libraryCode(1032),
                          CODE_NO_SOURCE = libraryCode(1033), CODE_CANCELED = libraryCode(1034),
                          CODE_AUDIO_STREAMS = libraryCode(1035), CODE_MANAGER_VOB = libraryCode(2003),
                          CODE_MANAGER_IFO = libraryCode(2005), CODE_TITLE_SETS = libraryCode(2007),
                          CODE_NOT_MPEG = libraryCode(2008), CODE_CHAPTERS = libraryCode(2016),
                          CODE_MENU_VOB = libraryCode(2019), CODE_OLD_IFO = libraryCode(2020),
                          CODE_MENU_MOVIE_ENDS = libraryCode(2022), CODE_MANAGER_READ = libraryCode(2025),
                          CODE_MANAGER_BACKUP = libraryCode(2026), CODE_TITLE_SET_READ = libraryCode(2027),
                          CODE_TITLE_SET_BACKUP = libraryCode(2028), CODE_MENU_ASSET = libraryCode(2031),
                          CODE_NOT_8BIT = libraryCode(2033), CODE_NOT_32BIT = libraryCode(2034),
                          CODE_EMPTY_BUTTON = libraryCode(2037), CODE_SOUND_LAYER = libraryCode(3001),
                          CODE_SOUND_RATE = libraryCode(3002), CODE_LPCM_FORMAT = libraryCode(3006),
                          CODE_MUX_UNDERRUN = libraryCode(3008), CODE_VIDEO_STANDARD = libraryCode(3010),
                          CODE_MUX_OVERFLOW = libraryCode(3017), CODE_BAD_SECTOR = libraryCode(4015),
                          CODE_WRITE_FAILED = libraryCode(4019), CODE_READ_FAILED = libraryCode(4020),
                          CODE_NO_NAV_PACK = libraryCode(9001), CODE_NO_PACK = libraryCode(9002);

// Of DVD-Audio.
inline constexpr uint64_t CODE_NOT_LPCM = libraryCode(3015), CODE_TOO_MANY_TRACKS = libraryCode(3100),
                          CODE_AOB_UNDERRUN = libraryCode(3102), CODE_AUDIO_NO_VERSION = libraryCode(6002),
                          CODE_AUDIO_VERSION = libraryCode(6003), CODE_AUDIO_MODE = libraryCode(6004),
                          CODE_NO_AUDIO_TITLE_SETS = libraryCode(6005), CODE_AUDIO_TITLE_SETS = libraryCode(6006),
                          CODE_SAMPLE_SIZE = libraryCode(6008), CODE_SAMPLE_RATE = libraryCode(6009),
                          CODE_CHANNEL_COUNT = libraryCode(6010), CODE_AUDIO_FORMAT = libraryCode(6011),
                          CODE_NO_PLAY_TIME = libraryCode(6012), CODE_20_BITS = libraryCode(6017),
                          CODE_WRONG_WAVE = libraryCode(6019), CODE_NO_AOB = libraryCode(6020),
                          CODE_AOB_NOT_WRITTEN = libraryCode(6021), CODE_ASSIGNMENT = libraryCode(6022),
                          CODE_AUDIO_MENUS = libraryCode(6023), CODE_STILLS = libraryCode(6024),
                          CODE_STILL_ATTRIBUTES = libraryCode(6025);

inline constexpr uint64_t CODE_EXTRACT_NO_DISC = libraryCode(7003), CODE_EXTRACT_NO_TABLE = libraryCode(7004),
                          CODE_EXTRACT_TABLE = libraryCode(7005), CODE_EXTRACT_MLP = libraryCode(7006),
                          CODE_EXTRACT_UNREAD = libraryCode(7007), CODE_EXTRACT_NO_PACK = libraryCode(7008),
                          CODE_EXTRACT_OUTPUT = libraryCode(7009), CODE_EXTRACT_NO_TRACK = libraryCode(7010),
                          CODE_EXTRACT_ASSIGNMENT = libraryCode(7011), CODE_EXTRACT_MANAGER_UNREAD = libraryCode(7012),
                          CODE_EXTRACT_TITLE_SET_UNREAD = libraryCode(7013), CODE_EXTRACT_MANAGER = libraryCode(7014),
                          CODE_EXTRACT_TITLE_SET = libraryCode(7015), CODE_EXTRACT_NO_LPCM = libraryCode(7016),
                          CODE_EXTRACT_NOT_OPEN = libraryCode(7017);

inline constexpr uint64_t CODE_INVALID_ARGUMENT = libraryCode(87), CODE_TITLE_SET_SKIPPED = libraryCode(1099);
inline constexpr uint64_t CODE_BASE_ARGUMENT = 0x88010001, CODE_BASE_MEMORY = 0x88010002, CODE_SHORT_READ = 0x88010102;
inline constexpr uint64_t CODE_NOTHING_SCANNED = 0xFFFFFFFFFFFFFFFD;   // the one result of more than 32 bits, -3
inline constexpr uint64_t CODE_FILE_NOT_FOUND = 2;                     // of both platforms

// A number of the platform: neither the library's nor the base layer's.
constexpr bool isPlatformCode(uint64_t code)
{
    const uint64_t family = code & 0xFFFF0000;
    return code != CODE_NOTHING_SCANNED && family != libraryCode(0) && family != 0x88010000;
}

// Whether a number of the platform may tell that a file can't be opened: not found, not permitted, a folder.
constexpr bool isUnreadableFile(uint64_t code)
{
    switch (code) {   // errno or GetLastError
    case CODE_FILE_NOT_FOUND:
    case 3:
    case 5:
    case 13:
    case 20:
    case 21:
    case 32:
    case 123: return true;
    default: return false;
    }
}
