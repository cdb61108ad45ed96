// extract_rig.cpp: `orven extract` on the discs of audio_disc.h, and what lies in folders.
#include "extract_rig.h"

#include <algorithm>

namespace fs = std::filesystem;

static std::string slashed(std::string text)
{
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

ProcessResult runExtraction(const TempDir& folder, const std::vector<std::string>& more, const std::string& disc,
                            const std::string& out)
{
    std::vector<std::string> arguments = { "extract", disc, "--out", out };
    arguments.insert(arguments.end(), more.begin(), more.end());
    ProcessResult result = runOrven(arguments, folder.root);
    result.out = slashed(result.out);
    result.err = slashed(result.err);
    return result;
}

std::map<std::string, Bytes> contentOf(const fs::path& folder)
{
    std::map<std::string, Bytes> files;
    if (!fs::exists(folder)) return files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = toUtf8(fs::relative(entry.path(), folder).generic_u16string());
        files[name] = entry.is_regular_file() ? discFile(entry.path()) : Bytes();
    }
    return files;
}

Names namesIn(const fs::path& folder)
{
    Names names;
    for (const auto& [name, bytes] : contentOf(folder)) names.push_back(name);
    return names;
}

fs::path audioTs(const TempDir& folder)
{
    return folder.root / "disc" / "AUDIO_TS";
}
