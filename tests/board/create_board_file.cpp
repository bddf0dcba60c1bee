// The button "Create New Board File": what it refuses, and what it writes.

#include "board/BoardFile.h"
#include "tests/board/BoardTest.h"

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace {

constexpr char kNoTitle[] = "Please declare title of the board initialization file.\n"
                            "The title must begin with \"Title=\" keyword.";
constexpr char kEmptyTitle[] = "Please declare non-empty title\nof the board initialization file.";
constexpr char kTitleInUse[] = "Declared title of board initialization file\nis already in use.\n\n"
                               "Please declare unique title\nof the board initialization file.";
constexpr char kExtension[] = "Board initialization files must have file extensions \".mac\".\n\n"
                              "Otherwise they will not be recognized.";

class CreateBoardFile : public BoardTest {
protected:
    /// Types `commands`, presses the button and returns the text of the box that came up.
    /// The save dialog is confirmed with `saveAs`, or cancelled if that is empty.
    std::string Create(const std::string& commands, const std::string& saveAs) {
        display.ClearLog();
        if (!saveAs.empty()) display.AnswerSave(saveAs.c_str());
        display.Type(1080, commands);
        display.Click(1082);
        const std::vector<std::string> boxes = display.Boxes();
        return boxes.empty() ? "" : boxes.back().substr(std::strlen("[Error] "));
    }
    std::string WrongDirectory(const std::string& wanted) const {
        return "Board initialization files must be saved in directory\n\"" + wanted +
               "\".\n\nOtherwise they will not be recognized.";
    }
    static std::string CannotCreate(const std::string& path) {
        return "Error creating board initialization file\n\"" + path + "\".";
    }
    size_t FileCount() const {
        using Entries = std::filesystem::recursive_directory_iterator;
        return static_cast<size_t>(std::distance(Entries(directory), Entries()));
    }
};

} // namespace

TEST_F(CreateBoardFile, RefusalsSayWhyAndLeaveNothingBehind) {
    Write("old.mac", kMarker + ";Title=Old\n");
    for (const char* name : {"sub", "taken.mac"})
        std::filesystem::create_directory(directory / name);
    const std::string elsewhere = WrongDirectory(directory.string());
    const struct {
        std::string commands, saveAs, box; // saveAs empty: it does not come to that
    } rows[] = {
        {"", "", kNoTitle},
        {"title of it\r\nx", "", kNoTitle},
        {"Title=", "", kEmptyTitle},
        {"x\r\nTitle=\r\nTitle=B", "", kEmptyTitle},
        {"Title=OLD", "", kTitleInUse},
        {"Title=New", "sub/new.mac", elsewhere},
        {"Title=New", "../new.mac", elsewhere},
        {"Title=New", "sub\\new.mac", elsewhere},
        {"Title=New", std::string(100, 'n'), ""},
        {"Title=Newer", "new.txt", kExtension},
        {"Title=Newer", "new.", kExtension},
        {"Title=Newer", "new.mac1", kExtension},
        {"Title=Newer", "taken.mac", CannotCreate(PathOf("taken.mac"))},
    };
    Configure([&] {
        for (const auto& row : rows) {
            const std::string saveAs = row.saveAs.empty() ? "" : PathOf(row.saveAs);
            EXPECT_EQ(Create(row.commands, saveAs), row.box) << row.commands << row.saveAs;
            const auto asked = testing::StartsWith("save in " + directory.string());
            EXPECT_THAT(display.Log(), testing::Contains(asked).Times(saveAs.empty() ? 0 : 1));
        }
        EXPECT_EQ(Create("Title=Newer", "new.mac"), elsewhere);     // no directory at all
        EXPECT_EQ(Create("Title=Newer", ""), "");                   // cancelled
        const std::string withSeparator = directory.string() + "/"; // never fits
        settings.SetTextAttribute(TA_BOARD_DIRECTORY, withSeparator.c_str());
        EXPECT_EQ(Create("Title=Newer", PathOf("a.mac")), WrongDirectory(withSeparator));
        EXPECT_EQ(display.Entries(1078).size(), 3u);
    });
    EXPECT_EQ(FileCount(), 4u);
}

TEST_F(CreateBoardFile, BytesOfTheNewFile) {
    const std::string t300(300, 't'), t259(259, 't');
    const struct {
        std::string commands, saveAs;
        int size, mode;
        std::string name, title, settings, lines;
    } rows[] = {
        {"Title=A\r\nmem_init 1\r\n", "a.mac", 1, 0, "a.mac", "A", "8 on", "mem_init 1\r\n\r\n"},
        {"1\n\n  trace 2\nnot: TITLE= K\xC3\xBC \nTitle=x\n3", "'b' c", 0, 1, "'b' c.mac",
         " K\xC3\xBC ", "4 off", "1\r\n\r\n  trace 2\r\n3\r\n"},
        {"Title=" + t300 + "\n" + t300, "c.MAC", 2, 0, "c.MAC", t259, "16 on", t259 + "\r\n"},
        {"Title=" + kGeneric, "a.mac", -1, -1, "a.mac", kGeneric, "0 off", ""},
    };
    for (const auto& row : rows) {
        Configure([&] {
            display.Select(1065, row.size);
            display.Select(1068, row.mode);
            EXPECT_EQ(Create(row.commands, PathOf(row.saveAs)), "");
            EXPECT_EQ(display.Text(1080), row.commands); // not read back
            EXPECT_EQ(display.Entries(1078).at(display.Selection(1078)), row.title);
        });
        const size_t blank = row.settings.find(' ');
        EXPECT_EQ(Read(PathOf(row.name)),
                  kMarker + ";Title=" + row.title +
                      "\r\n\r\ntrace clear\r\ntrace enable\r\ntrace etm portsize=" +
                      row.settings.substr(0, blank) + "\r\ntrace etm halfrate=" +
                      row.settings.substr(blank + 1) + "\r\ntrace update\r\n\r\n" + row.lines);
        // Stored at once, although the dialog did not end with OK, and listed from then on.
        EXPECT_EQ(Selected(), PathOf(row.name));
        EXPECT_EQ(settings.Working.PortSizeIndex, row.size);
        Configure([&] { EXPECT_NE(display.Selection(1078), 0); });
    }
}

#if !defined(_WIN32)

TEST_F(CreateBoardFile, NothingOutsideTheDirectoryIsWritten) {
    for (const char* name : {"boards", "Boards"})
        std::filesystem::create_directory(directory / name);
    const std::string boards = PathOf("boards"), outside = Write("outside.txt", "kept");
    std::filesystem::create_symlink(outside, boards + "/link.mac");
    ASSERT_EQ(mkfifo((boards + "/pipe.mac").c_str(), 0600), 0);
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, boards.c_str());
    const size_t before = FileCount();
    Configure([&] {
        for (const std::string& path : {boards + "/link.mac", boards + "/pipe.mac"})
            EXPECT_EQ(Create("Title=A", path), CannotCreate(path));
        EXPECT_EQ(Create("Title=A", PathOf("Boards/a.mac")), WrongDirectory(boards));
    });
    EXPECT_EQ(Read(outside), "kept");
    EXPECT_EQ(FileCount(), before);
}

TEST_F(CreateBoardFile, AFullDiskShowsNothingAndSelectsNothing) {
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit tiny{40, old.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    Configure([&] {
        setrlimit(RLIMIT_FSIZE, &tiny);
        const std::string box = Create("Title=A", PathOf("a.mac"));
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_EQ(box, "");
        EXPECT_EQ(display.Entries(1078).size(), 1u);
    });
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Read(PathOf("a.mac")), kMarker + ";Title=A\r"); // as far as it was written
    EXPECT_EQ(Selected(), "---");
}

#endif

TEST(GetTextLine, CountsLinesFromOneAndCutsThem) {
    const struct {
        int32_t number;
        const char* text;
        const char* line; // null: there is none
    } rows[] = {
        {1, "", ""},    {0, "a", nullptr},   {1, "a\r\nb", "a\r\n"},      {2, "a\r\nb", "b"},
        {2, "a\n", ""}, {3, "a\n", nullptr}, {1, "1234567\n", "1234567"}, {2, "12345678\nb", "b"},
    };
    for (const auto& row : rows) {
        char line[8] = "unset";
        EXPECT_EQ(GetTextLine(row.number, row.text, line, sizeof line), row.line != nullptr)
            << row.number << " of " << row.text;
        EXPECT_STREQ(line, row.line != nullptr ? row.line : "unset");
    }
}
