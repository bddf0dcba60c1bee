#include "host/target/board_file.h"

#include <fstream>

#include "host/support/system.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

constexpr int kMostReports = 20;

std::string_view WithoutSpace(std::string_view line) {
    constexpr std::string_view kSpace = " \t\r\v\f";
    const size_t begin = line.find_first_not_of(kSpace);
    return begin == std::string_view::npos
               ? std::string_view()
               : line.substr(begin, line.find_last_not_of(kSpace) - begin + 1);
}

} // namespace

Refusal RunBoardFile(const std::string& path,
                     const std::function<Refusal(int number, std::string_view line)>& execute) {
    const std::optional<std::filesystem::path> native = NativePath(path);
    std::error_code ignored;
    std::ifstream file;
    // Only regular files: a pipe of that name would keep the host waiting for ever.
    if (native && std::filesystem::is_regular_file(*native, ignored))
        file.open(*native, std::ios::binary);
    if (!file.is_open()) return "Cannot open macro file \"" + Escape(path) + "\"";
    std::string problems;
    int count = 0;
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        const std::string_view line = WithoutSpace(text);
        if (line.empty() || line.front() == ';') continue;
        const Refusal refusal = execute(number, line);
        if (refusal && ++count <= kMostReports) {
            problems +=
                (problems.empty() ? "line " : "\nline ") + std::to_string(number) + ": " + *refusal;
        }
    }
    if (file.bad()) {
        problems +=
            (problems.empty() ? "" : "\n") + ("Cannot read macro file \"" + Escape(path) + "\"");
    }
    if (count > kMostReports) problems += "\nand " + std::to_string(count - kMostReports) + " more";
    return problems.empty() ? Refusal() : problems;
}

} // namespace etmhost
