// environment.h: a folder that temporary files of this process go to while a test looks at them.
#pragma once

#include "tests/support/files.h"

#include <string>
#include <vector>

// The system's temporary folder, until the record ends. Make it before the folders of the test.
struct TempFolder {
    TempFolder();
    /** A folder that need not be there. */
    explicit TempFolder(const std::u16string& path);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /** Names of the files in it that begin with "spu", in any case. */
    std::vector<std::string> unitFiles() const;

    TempDir dir;
    std::vector<std::u16string> before;   // what the variables held
};
