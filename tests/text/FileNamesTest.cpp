// Names of files, lists of them, and the directories that they are found in.

#include "text/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "platform/paths.h"
#include "tests/support/TemporaryDirectory.h"
#include "text/jString.h"
#include "text/text_tools.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace {

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(FileNames, GetADefaultExtension) {
    struct Row {
        std::string name;
        std::string result;
    };
    const std::string longest(255, 'n');
    const Row rows[] = {
        {"board", "board.mac"},
        {"board.txt", "board.txt"},
        {"board.", "board."},
        {"dir.d/board", "dir.d/board.mac"},
        {"C:\\dir.d\\board", "C:\\dir.d\\board.mac"},
        {"\"my board\"", "my board.mac"},
        {"'my.board'", "my.board"},
        {"\"board'", "\"board'.mac"},
        {"\"", "\".mac"},
        {"''", ".mac"},
        {"", ""},
        {longest, longest + ".mac"},
        {longest + "n", "BadFile.Ext"},
        {"\"" + longest.substr(1) + "\"", "BadFile.Ext"}, // the quotes count
    };
    for (const Row& row : rows) EXPECT_EQ(AddDefaultExt(row.name.c_str(), "mac"), row.result);
    const char* const empty = "";
    EXPECT_EQ(AddDefaultExt(empty, "mac"), empty);
    EXPECT_STREQ(AddDefaultExt(nullptr, nullptr), "");
}

TEST(FileNames, HaveExtensions) {
    // A path, "=", and its extension or "." for a point without one
    for (const std::string& row : Words("a.mac=mac a.b.c=c a.=. .mac=mac .=. a= d.x/a= d.x\\a= "
                                        "c.x:a= d.x/= /.a=a =")) {
        const std::string path = row.substr(0, row.find('='));
        const std::string extension = row.substr(path.size() + 1);
        EXPECT_EQ(HasExtension(path.c_str()), !extension.empty()) << row;
        const char* const found = GetExtension(path.c_str());
        EXPECT_EQ(found ? found : "", extension == "." ? "" : extension) << row;
    }
}

TEST(FileNames, MatchPatterns) {
    for (const auto& [matches, rows] :
         {std::pair{true, "*.*:a *.mac:a.MAC *.MAC:.mac Board.Mac:board.mac *:*"},
          {false,
           "*.mac:a.mac1 *.mac:mac *.mac:a. *.:a. *.:a *.b.mac:a.b.mac board:board.mac *:a"}})
        for (const std::string& row : Words(rows)) {
            const std::string pattern = row.substr(0, row.find(':'));
            EXPECT_EQ(MatchFileName(pattern.c_str(), row.c_str() + pattern.size() + 1), matches)
                << row;
        }
}

TEST(FileNames, StandInLists) {
    // A list, "=", and its items, each with a bar behind it
    for (const std::string& row : Words("= a=a| a;=a| ;=| ;a=|a| a;;=a|| a;;b=a||b| "
                                        "a;the_longest_of_them=a|the_longest_of_them|")) {
        const std::string list = row.substr(0, row.find('='));
        jString item;
        item.Assign("kept");
        EXPECT_FALSE(GetListItem(INT32_MAX, list.c_str(), item)) << row;
        EXPECT_FALSE(GetListItem(0, nullptr, item));
        EXPECT_STREQ(item.Data, "kept");
        EXPECT_EQ(GetListItem(INT32_MIN, list.c_str(), item), !list.empty()) << row;

        std::string items = list + "=";
        for (int32_t index = 0; GetListItem(index, list.c_str(), item); ++index) {
            EXPECT_EQ(item.Length, jString::kUnknownLength);
            items.append(item.Data).append("|");
        }
        EXPECT_EQ(items, row);
        std::string walked = list + "=";
        const char* rest = list.c_str();
        while (NextListItem(rest, item)) walked.append(item.Data).append("|");
        EXPECT_EQ(walked, row);
    }
}

class Files : public ::testing::Test {
protected:
    Files() { std::filesystem::create_directories(directory / "sub" / "empty"); }

    void Make(const std::string& name) const { std::ofstream(directory / name) << "x"; }

    /// The names found below the directory, with "/" between their parts.
    std::vector<std::string> Find(const char* pattern, bool recurse) {
        jString list;
        list.Assign("first");
        found = FindFiles(directory.string().c_str(), pattern, recurse, list);
        std::vector<std::string> names;
        const char* rest = list.GetBuffer();
        for (jString item; NextListItem(rest, item);) names.emplace_back(item.Data);
        EXPECT_EQ(names.front(), "first");
        names.erase(names.begin());
        for (std::string& name : names) {
            EXPECT_EQ(name[directory.string().size()], kSeparator) << name;
            name = std::filesystem::path(name).lexically_relative(directory).generic_string();
        }
        return names;
    }

    const TemporaryDirectory temporary;
    const std::filesystem::path directory = temporary.Path();
    bool found = false;
};

TEST_F(Files, AreFoundByPattern) {
    for (const char* name : {"a.mac", "B.MAC", "c.mac1", "mac", "sub/d.mac", "sub/e.txt"})
        Make(name);
    std::filesystem::create_directory(directory / "folder.mac");

    EXPECT_THAT(Find("*.mac", false), UnorderedElementsAre("a.mac", "B.MAC"));
    EXPECT_TRUE(found);
    EXPECT_THAT(Find("*.mac", true), UnorderedElementsAre("a.mac", "B.MAC", "sub/d.mac"));
    EXPECT_THAT(Find("E.TXT", true), ElementsAre("sub/e.txt"));
    EXPECT_THAT(Find("*.zip", true), IsEmpty());
    EXPECT_TRUE(found) << "the list was not empty before";
    EXPECT_THAT(Find("*.zip", false), IsEmpty());
    EXPECT_FALSE(found) << "nothing fits";
}

TEST_F(Files, AreNotFoundWithoutADirectory) {
    for (const std::string& name : {(directory / "none").string(), std::string()}) {
        jString list;
        list.Assign("kept");
        EXPECT_FALSE(FindFiles(name.c_str(), "*.*", true, list)) << name;
        EXPECT_STREQ(list.Data, "kept");
    }
}

#if !defined(_WIN32)
TEST_F(Files, AreRegularOnesAndLinksToThem) {
    Make("sub/real.mac");
    std::filesystem::create_symlink("sub/real.mac", directory / "link.mac");
    std::filesystem::create_symlink("nowhere", directory / "broken.mac");
    std::filesystem::create_directory_symlink("..", directory / "sub" / "loop");
    ASSERT_EQ(mkfifo((directory / "pipe.mac").c_str(), 0600), 0);
    std::filesystem::create_symlink("pipe.mac", directory / "pipelink.mac");
    EXPECT_THAT(Find("*.mac", true), UnorderedElementsAre("link.mac", "sub/real.mac"));
}
#endif

TEST_F(Files, AreGatheredByThousands) {
    std::vector<std::string> names;
    for (int i = 0; i < 2000; ++i) {
        names.push_back("a_board_file_" + std::to_string(i) + ".mac"); // beyond 65535 bytes
        Make(names.back());
    }
    EXPECT_THAT(Find("*.mac", false), testing::UnorderedElementsAreArray(names));
}

TEST(TextTools, CopyFindAndCut) {
    char buffer[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(CopyBounded(buffer, 5, "ab"), buffer);
    EXPECT_EQ(std::string(buffer, 6), std::string("ab\0\0\0#", 6));
    EXPECT_STREQ(CopyBounded(buffer, 5, "abcdefg"), "abcd");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_STREQ(CopyBounded(buffer, 1, "x"), "");
    EXPECT_STREQ(CopyBounded(buffer, 5, nullptr), "");

    const char* const text = "; Title=Title=x";
    EXPECT_EQ(FindNoCase(text, "TITLE="), text + 2);
    EXPECT_EQ(FindNoCase(text, "=X"), text + 13);
    for (const char* absent : {"=xx", "", "titles"}) EXPECT_EQ(FindNoCase(text, absent), nullptr);
    EXPECT_EQ(FindNoCase("", "a"), nullptr);
    EXPECT_EQ(FindNoCase(nullptr, "a"), nullptr);

    char line[] = "ab\r\ncd\r";
    CutAtChar(line, '\r');
    CutAtChar(line, '\n');
    EXPECT_STREQ(line, "ab");
}

} // namespace
