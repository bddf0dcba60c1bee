// Names of files, lists of them, and the directories that they are found in.

#include "text/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <sstream>

#include "platform/paths.h"
#include "testkit/TemporaryDirectory.h"
#include "text/jString.h"
#include "text/shown_text.h"
#include "text/text_tools.h"

namespace {

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(FileNames, GetADefaultExtension) {
    for (const std::string& row : Words("board=board.mac board.=board. dir.d\\a=dir.d\\a.mac "
                                        "\"a\"=a.mac 'a.b'=a.b \"a'=\"a'.mac \"=\".mac ''=.mac")) {
        const std::string name = row.substr(0, row.find('='));
        EXPECT_EQ(name + "=" + AddDefaultExt(name.c_str(), "mac"), row);
    }
    const std::string longest(255, 'n'), quoted = "\"" + longest.substr(1) + "\"";
    EXPECT_EQ(AddDefaultExt(longest.c_str(), "mac"), longest + ".mac");
    for (const std::string& tooLong : {longest + "n", quoted})
        EXPECT_STREQ(AddDefaultExt(tooLong.c_str(), "mac"), "BadFile.Ext");
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
    for (const std::string& row : Words("*.*=a *.mac=a.MAC *.MAC=.mac Board.Mac=board.mac *=* "
                                        "*.mac!a.mac1 *.mac!mac *.mac!a. *.!a. *.!a "
                                        "*.b.mac!a.b.mac board!board.mac *!a")) {
        const size_t place = row.find_first_of("=!");
        const std::string pattern = row.substr(0, place), name = row.substr(place + 1);
        EXPECT_EQ(MatchFileName(pattern.c_str(), name.c_str()), row[place] == '=') << row;
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
        for (int32_t index = 0; GetListItem(index, list.c_str(), item); ++index)
            items.append(item.Data).append("|");
        EXPECT_EQ(items, row);
    }
}

TEST(Files, AreFoundByPattern) {
    const TemporaryDirectory directory;
    std::filesystem::create_directories(directory.PathOf("sub/empty"));
    for (const char* name : {"a.mac", "B.MAC", "c.mac1", "mac", "sub/d.mac", "sub/e.txt"})
        directory.Write(name, "x");
    std::filesystem::create_directory(directory.PathOf("folder.mac"));
#if !defined(_WIN32)
    std::filesystem::create_symlink("nowhere", directory.PathOf("broken.mac"));
    std::filesystem::create_directory_symlink("..", directory.PathOf("sub/loop"));
#endif
    const struct {
        const char* pattern;
        bool recurse, found;
        std::vector<std::string> names;
    } rows[] = {
        {"*.mac", false, true, {"a.mac", "B.MAC"}},
        {"*.mac", true, true, {"a.mac", "B.MAC", "sub/d.mac"}},
        {"E.TXT", true, true, {"sub/e.txt"}},
        {"*.zip", true, true, {}}, // the list was not empty before
        {"*.zip", false, false, {}},
    };
    for (const auto& row : rows) {
        jString list, item;
        list.Assign("first");
        EXPECT_EQ(FindFiles(directory.Path().c_str(), row.pattern, row.recurse, list), row.found);
        std::vector<std::string> names;
        for (int32_t i = 1; GetListItem(i, list.GetBuffer(), item); ++i) {
            EXPECT_EQ(item.Data[directory.Path().size()], kSeparator) << item.Data;
            const std::filesystem::path path = item.Data;
            names.push_back(path.lexically_relative(directory.Path()).generic_string());
        }
        EXPECT_THAT(names, ::testing::UnorderedElementsAreArray(row.names)) << row.pattern;
    }
    jString list;
    EXPECT_FALSE(FindFiles(directory.PathOf("none").c_str(), "*.*", true, list));
}

TEST(TextTools, CutWhatIsShown) {
    const std::tuple<std::string, size_t, size_t, std::string> rows[] = {
        // A text, the limit for all of it and for a line, and what is shown
        {"", 0, 0, ""},
        {"ab\ncd\n", 6, 2, "ab\ncd\n"},
        {"abc\r\nd", 9, 2, "ab...\nd"},
        {"abcdef", 5, 2, "ab..."},
        {"\xE2\x82\xACx", 3, 9, "\xE2\x82\xAC..."}, // a character is not divided
        {"\xE2\x82\xACx", 9, 2, "..."},
        {"\xF0\x9F\x98\x80x", 3, 9, "..."},
        {"\xFC\xFC\xFC", 2, 9, "\xFC\xFC..."}, // in another encoding each byte is one
        {"\x81\x82\x83\x84\x85", 4, 9, "\x81\x82\x83\x84..."},
    };
    for (const auto& [text, limit, lineLimit, shown] : rows)
        EXPECT_EQ(ShownLines(text, limit, lineLimit), shown) << text;
}

TEST(TextTools, CopyAndFind) {
    char buffer[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(CopyBounded(buffer, 5, "ab"), buffer);
    EXPECT_EQ(std::string(buffer, 6), std::string("ab\0\0\0#", 6));
    EXPECT_STREQ(CopyBounded(buffer, 5, "abcdefg"), "abcd");
    EXPECT_EQ(buffer[5], '#');
    for (const char* text : {static_cast<const char*>(nullptr), "Title=x"})
        EXPECT_EQ(FindNoCase(text, text ? "" : "a"), nullptr);
}

} // namespace
