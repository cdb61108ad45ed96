// document.h: what a document of docs/ shows, so that tests can hold it against the library.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/** Whole text of a document, by its file's name. */
std::string documentText(std::string_view name);

/** The complete projects of a document: those of its INI blocks that begin with the section COMMON. */
std::vector<std::string> documentProjects(const std::string& text);

// A row of a table, with the heading that stands above the table.
struct DocumentRow {
    std::string heading;
    std::vector<std::string> cells;
};

/** The rows of all tables of a document, without their first two lines. */
std::vector<DocumentRow> documentRows(const std::string& text);

/** The names that stand between backticks in a cell. */
std::vector<std::string> namesIn(const std::string& cell);

/** The numbers of four digits in a cell. */
std::vector<unsigned> numbersIn(const std::string& cell);
