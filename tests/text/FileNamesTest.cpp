// Names of files, lists of them, and the directories that they are found in.

#include "text/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
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
    struct Row {
        const char* path;
        bool has;
        const char* extension;
    };
    for (const Row& row : {Row{"a.mac", true, "mac"},
                           {"a.b.c", true, "c"},
                           {"a.", true, nullptr},
                           {".mac", true, "mac"},
                           {".", true, nullptr},
                           {"a", false, nullptr},
                           {"", false, nullptr},
                           {"d.x/a", false, nullptr},
                           {"d.x\\a", false, nullptr},
                           {"c.x:a", false, nullptr},
                           {"d.x/", false, nullptr},
                           {"/.a", true, "a"}}) {
        EXPECT_EQ(HasExtension(row.path), row.has) << row.path;
        const char* const found = GetExtension(row.path);
        EXPECT_STREQ(found, row.extension) << row.path;
    }
}

TEST(FileNames, MatchPatterns) {
    struct Row {
        const char* pattern;
        const char* name;
        bool matches;
    };
    for (const Row& row : {Row{"*.*", "a", true},
                           {"*.mac", "a.MAC", true},
                           {"*.MAC", ".mac", true},
                           {"*.mac", "a.mac1", false},
                           {"*.mac", "mac", false},
                           {"*.mac", "a.", false},
                           {"*.", "a.", false},
                           {"*.", "a", false},
                           {"*.b.mac", "a.b.mac", false},
                           {"Board.Mac", "board.mac", true},
                           {"board", "board.mac", false},
                           {"*", "a", false},
                           {"*", "*", true}})
        EXPECT_EQ(MatchFileName(row.pattern, row.name), row.matches)
            << row.pattern << " " << row.name;
}

TEST(FileNames, StandInLists) {
    struct Row {
        const char* list;
        std::vector<std::string> items;
    };
    const Row rows[] = {{nullptr, {}},
                        {"", {}},
                        {"a", {"a"}},
                        {"a;", {"a"}},
                        {";", {""}},
                        {";a", {"", "a"}},
                        {"a;;", {"a", ""}},
                        {"a;;b", {"a", "", "b"}},
                        {"a;b;the longest of them", {"a", "b", "the longest of them"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.list ? row.list : "null");
        jString item;
        std::vector<std::string> items;
        for (int32_t index = 0; GetListItem(index, row.list, item); ++index) {
            EXPECT_EQ(item.Length, jString::kUnknownLength);
            items.emplace_back(item.Data);
        }
        EXPECT_EQ(items, row.items);
        item.Assign("kept");
        EXPECT_FALSE(GetListItem(static_cast<int32_t>(items.size()), row.list, item));
        EXPECT_FALSE(GetListItem(INT32_MAX, row.list, item));
        EXPECT_STREQ(item.Data, "kept");
        if (!items.empty()) {
            EXPECT_TRUE(GetListItem(INT32_MIN, row.list, item));
            EXPECT_EQ(item.Data, items.front());
        }
        std::vector<std::string> walked;
        for (const char* rest = row.list; NextListItem(rest, item);) walked.emplace_back(item.Data);
        EXPECT_EQ(walked, row.items);
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
    jString list;
    EXPECT_FALSE(FindFiles(directory.string().c_str(), "*.mac", true, list));
    EXPECT_EQ(list.GetLength(), 0u);
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
    for (int i = 0; i < 3000; ++i) {
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
