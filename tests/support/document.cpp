#include "tests/support/document.h"

#include "tests/support/files.h"

#include <filesystem>
#include <regex>
#include <sstream>

std::string documentText(std::string_view name)
{
    const std::filesystem::path root = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path();
    const Bytes bytes = readFile((root / "docs" / name).u16string());
    return std::string(bytes.begin(), bytes.end());
}

std::vector<std::string> documentProjects(const std::string& text)
{
    const std::string opening = "```ini\n", closing = "```\n";
    std::vector<std::string> found;
    for (size_t at = text.find(opening); at != text.npos; at = text.find(opening, at)) {
        at += opening.size();
        const size_t end = text.find(closing, at);
        if (text.compare(at, 8, "[COMMON]") == 0) found.push_back(text.substr(at, end - at));
        at = end + closing.size();
    }
    return found;
}

static std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    for (size_t at = 1; at < line.size();) {
        const size_t end = line.find('|', at);
        if (end == line.npos) break;
        const std::string cell = line.substr(at, end - at);
        const size_t first = cell.find_first_not_of(' ');
        cells.push_back(first == cell.npos ? "" : cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
        at = end + 1;
    }
    return cells;
}

std::vector<DocumentRow> documentRows(const std::string& text)
{
    std::vector<DocumentRow> rows;
    std::istringstream lines(text);
    std::string line, heading;
    bool inTable = false;
    while (std::getline(lines, line)) {
        const bool isRow = line.starts_with("|");
        if (line.starts_with("#")) heading = line.substr(line.find_first_not_of("# "));
        if (isRow && inTable && !line.starts_with("|---")) rows.push_back({ heading, cellsOf(line) });
        inTable = isRow;
    }
    return rows;
}

static std::vector<std::string> matches(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; at++) found.push_back((*at)[1]);
    return found;
}

std::vector<std::string> namesIn(const std::string& cell)
{
    return matches(cell, "`([^`]*)`");
}

std::vector<unsigned> numbersIn(const std::string& cell)
{
    std::vector<unsigned> numbers;
    for (const std::string& digits : matches(cell, "\\b(\\d{4})\\b")) numbers.push_back(unsigned(std::stoul(digits)));
    return numbers;
}
