// The button "Create New Board File": what it refuses, and what it writes.

#include "board/BoardFile.h"
#include "tests/board/BoardTest.h"

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace {

class CreateBoardFile : public BoardTest {
protected:
    /// Types `commands`, presses the button and returns the box that came up. The save
    /// dialog is confirmed with `saveAs`, or cancelled if that is empty.
    std::string Create(const std::string& commands, const std::string& saveAs) {
        display.ClearLog();
        if (!saveAs.empty()) display.AnswerSave(saveAs.c_str());
        display.Type(1080, commands);
        display.Click(1082);
        return display.Boxes().empty() ? "" : display.Boxes().back();
    }
    static std::string WrongDirectory(const std::string& wanted) {
        return "[Error] Board initialization files must be saved in directory\n\"" + wanted +
               "\".\n\nOtherwise they will not be recognized.";
    }
    static std::string CannotCreate(const std::string& path) {
        return "[Error] Error creating board initialization file\n\"" + path + "\".";
    }
    ptrdiff_t FileCount() const {
        using Entries = std::filesystem::recursive_directory_iterator;
        return std::distance(Entries(Path()), Entries());
    }
};

} // namespace

TEST_F(CreateBoardFile, RefusalsSayWhyAndLeaveNothingBehind) {
    Write("old.mac", kMarker + ";Title=Old\n");
    for (const char* name : {"sub", "taken.mac"}) std::filesystem::create_directory(PathOf(name));
    const std::string elsewhere = WrongDirectory(Path()), sound = "Title=New";
    const char* const extension = "[Error] Board initialization files must have file extensions "
                                  "\".mac\".\n\nOtherwise they will not be recognized.";
    const std::string longest = LongestName(PathOf(""));
    const std::string tooLong(longest.size() - 3, 'n'); // with the extension to come
    const struct {
        std::string commands, saveAs, box; // saveAs empty: it does not come to that
    } rows[] = {
        {"title of it\r\nx", "",
         "[Error] Please declare title of the board initialization file.\n"
         "The title must begin with \"Title=\" keyword."},
        {"x\r\nTitle=\r\nTitle=B", "",
         "[Error] Please declare non-empty title\nof the board initialization file."},
        {"Title=OLD", "",
         "[Error] Declared title of board initialization file\nis already in use.\n\n"
         "Please declare unique title\nof the board initialization file."},
        {sound, PathOf("../new.mac"), elsewhere},
        {sound, PathOf("sub\\new.mac"), elsewhere},
        {sound, "new.mac", elsewhere},
        {sound, PathOf("new."), extension},
        {sound, PathOf("taken.mac"), CannotCreate(PathOf("taken.mac"))},
        {sound, PathOf(tooLong), CannotCreate(PathOf(tooLong + ".mac"))},
        {sound, PathOf("a;b"), CannotCreate(PathOf("a;b.mac"))},
    };
    Configure([&] {
        for (const auto& row : rows) {
            EXPECT_EQ(Create(row.commands, row.saveAs), row.box) << row.commands << row.saveAs;
            const auto asked = testing::Contains(testing::StartsWith("save in " + Path()));
            EXPECT_THAT(display.Log(), asked.Times(row.saveAs.empty() ? 0 : 1));
        }
        EXPECT_EQ(Create(sound, ""), "");                            // cancelled
        EXPECT_EQ(Create(sound, PathOf(std::string(100, 'n'))), ""); // a name of any length
        for (const std::string& spelt :
             {Path() + "/.", Path() + "/sub/..",
              std::string(Path()).insert(Path().find_last_of("/\\"), 1, kSeparator)}) {
            settings.SetTextAttribute(TA_BOARD_DIRECTORY, spelt.c_str());
            EXPECT_EQ(Create("Title=" + spelt, PathOf("new.mac")), "");
            EXPECT_EQ(Selected(), spelt + kSeparator + "new.mac");
        }
        const std::string withSeparator = Path() + "/"; // never fits
        settings.SetTextAttribute(TA_BOARD_DIRECTORY, withSeparator.c_str());
        EXPECT_EQ(Create("Title=Newer", PathOf("a.mac")), WrongDirectory(withSeparator));
        EXPECT_EQ(display.Entries(1078).size(), 6u);
    });
    EXPECT_EQ(FileCount(), 5);
}

TEST_F(CreateBoardFile, BytesOfTheNewFile) {
    const std::string t300(300, 't'), t259(259, 't'), longest = LongestName(PathOf(""));
    const struct {
        std::string commands, saveAs, name, title;
        int size, mode;
        std::string portSize, halfRate, lines;
    } rows[] = {
        {"Title=A\r\nmem_init 1\r\n", "a.mac", "a.mac", "A", 1, 0, "8", "on", "mem_init 1\r\n\r\n"},
        {"1\n\n  trace 2\nnot: TITLE= K\xC3\xBC \nTitle=x\n3", "'b' c", "'b' c.mac", " K\xC3\xBC ",
         0, 1, "4", "off", "1\r\n\r\n  trace 2\r\n3\r\n"},
        {"Title=" + t300 + "\n" + t300, "c.MAC", "c.MAC", t259, 2, 0, "16", "on", t259 + "\r\n"},
        {"Title=Long", longest, longest, "Long", 1, 0, "8", "on", ""},
        {"Title=" + kGeneric, "a.mac", "a.mac", kGeneric, -1, -1, "0", "off", ""},
    };
    for (const auto& row : rows) {
        Configure([&] {
            display.Select(1065, row.size);
            display.Select(1068, row.mode);
            EXPECT_EQ(Create(row.commands, PathOf(row.saveAs)), "");
            EXPECT_EQ(display.Text(1080), row.commands); // not read back
            EXPECT_EQ(display.Entries(1078).at(display.Selection(1078)), row.title);
        });
        EXPECT_EQ(Read(row.name), kMarker + ";Title=" + row.title +
                                      "\r\n\r\ntrace clear\r\ntrace enable\r\ntrace etm portsize=" +
                                      row.portSize + "\r\ntrace etm halfrate=" + row.halfRate +
                                      "\r\ntrace update\r\n\r\n" + row.lines);
        // Stored at once, although the dialog did not end with OK, and listed from then on.
        EXPECT_EQ(Selected(), PathOf(row.name));
        EXPECT_EQ(settings.Working.PortSizeIndex, row.size);
        Configure([&] { EXPECT_NE(display.Selection(1078), 0); });
    }
}

#if !defined(_WIN32)

TEST_F(CreateBoardFile, NothingOutsideTheDirectoryIsWritten) {
    for (const char* name : {"boards", "Boards"}) std::filesystem::create_directory(PathOf(name));
    const std::string boards = PathOf("boards"), outside = Write("outside.txt", "kept");
    std::filesystem::create_symlink(outside, boards + "/link.mac");
    ASSERT_EQ(mkfifo((boards + "/pipe.mac").c_str(), 0600), 0);
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, boards.c_str());
    Configure([&] {
        for (const std::string& path : {boards + "/link.mac", boards + "/pipe.mac"})
            EXPECT_EQ(Create("Title=A", path), CannotCreate(path));
        EXPECT_EQ(Create("Title=A", PathOf("Boards/a.mac")), WrongDirectory(boards));
    });
    EXPECT_EQ(Read("outside.txt"), "kept");
    EXPECT_EQ(FileCount(), 5);
}

TEST_F(CreateBoardFile, AFullDiskOrADeadProcessLeavesTheFileThatWasThere) {
    const std::string old = kMarker + ";Title=Old\r\n", path = Write("a.mac", old);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    rlimit unlimited{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const rlimit tiny{40, unlimited.rlim_max};
    Configure([&] {
        EXPECT_EXIT(
            {
                setrlimit(RLIMIT_FSIZE, &tiny);
                Create("Title=A", path);
            },
            testing::KilledBySignal(SIGXFSZ), "");
        EXPECT_EQ(Read("a.mac"), old);
        const ptrdiff_t files = FileCount();
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        for (const std::string& full : {path, PathOf("b.mac")}) {
            setrlimit(RLIMIT_FSIZE, &tiny);
            const std::string box = Create("Title=A", full);
            setrlimit(RLIMIT_FSIZE, &unlimited);
            EXPECT_EQ(box, CannotCreate(full));
        }
        std::signal(SIGXFSZ, handler);
        EXPECT_EQ(Read("a.mac"), old);
        EXPECT_EQ(FileCount(), files);
        EXPECT_EQ(display.Entries(1078).size(), 2u);

        // With room again the file is replaced, and who may read it stays.
        EXPECT_EQ(Create("Title=A", path), "");
        EXPECT_NE(Read("a.mac"), old);
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0640u);
    });
}

#endif

TEST(GetTextLine, CountsLinesFromOneAndCutsThem) {
    using Row = std::tuple<int32_t, const char*, const char*>; // "-": there is no such line
    for (const auto& [number, text, expected] : {Row{0, "a", "-"},
                                                 {1, "a\r\nb", "a\r\n"},
                                                 {3, "a\n", "-"},
                                                 {2, "a\n12345678", "1234567"}}) {
        char line[8] = "-";
        EXPECT_EQ(GetTextLine(number, text, line, sizeof line), *expected != '-') << text;
        EXPECT_STREQ(line, expected) << text;
    }
}
