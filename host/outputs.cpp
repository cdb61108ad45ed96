// outputs.cpp: files that a command makes.
#include "outputs.h"

#include "cli.h"
#include "report.h"
#include "text.h"

namespace fs = std::filesystem;

static fs::path folderOf(const fs::path& path)
{
    const fs::path folder = path.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

bool sameFile(const fs::path& a, const fs::path& b)
{
    std::error_code error;
    if (fs::equivalent(a, b, error)) return true;
    return a.filename() == b.filename() && fs::equivalent(folderOf(a), folderOf(b), error);
}

static int checkOutput(const Output& output, const std::vector<fs::path>& inputs)
{
    std::error_code error;
    const std::string name = output.role + " " + printablePath(output.path);
    for (const fs::path& input : inputs) {
        if (sameFile(input, output.path)) return refuse(name + " is one of the inputs");
    }
    // Only files are written over: a link could lead to one that the user has not named.
    const fs::file_status there = fs::symlink_status(output.path, error);
    if (fs::exists(there) && !fs::is_regular_file(there)) return refuse(name + " is there and is no plain file");
    return EXIT_DONE;
}

int checkOutputs(const std::vector<Output>& outputs, const std::vector<fs::path>& inputs)
{
    for (size_t i = 0; i < outputs.size(); i++) {
        if (const int refused = checkOutput(outputs[i], inputs)) return refused;
        for (size_t k = 0; k < i; k++) {
            if (!sameFile(outputs[i].path, outputs[k].path)) continue;
            return refuse(outputs[i].role + " " + printablePath(outputs[i].path) + " is " + outputs[k].role + " too");
        }
    }
    return EXIT_DONE;
}
