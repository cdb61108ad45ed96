// author.h: the command `author`: one authoring run, shown to the user.
#pragma once

#include <filesystem>

struct AuthorOptions {
    std::filesystem::path project, target, previous, log;   // previous and log may be empty
    bool quiet = false;
};

/** @return the program's exit code */
int runAuthor(const AuthorOptions& options);
