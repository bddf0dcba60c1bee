// Which files are board files, under which title, and what is shown of them.

#include "board/BoardFile.h"
#include "tests/board/BoardTest.h"
#include "tests/support/built.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

TEST_F(BoardTest, TitleAndCommandsOfAFile) {
    const std::string a = kMarker + ";Title=A\n", shownA = "Title=A|", t300(300, 't');
    const struct {
        std::string bytes, title, commands; // title "-": not a board file; "|": CR LF
    } rows[] = {
        {kMarker + ";Title=My Board\r\n\r\nx 1\r\n", "My Board", "Title=My Board|x 1|"},
        {";[OrnithalWorksTraceInitFile]\n;Title=A\n  1\t\n\n \t\n2", "A", "Title=A|1\t|2|"},
        {"; see [ORNITHALWORKSTRACEINITFILE] here\n;title=A\n", "A", "title=A|"},
        {"x\n" + a, "-", "x|Title=A|"},
        {" " + a, "-", shownA},
        {";" + std::string(225, ' ') + a, "-", shownA}, // the marker behind the limit
        {kMarker + "Title=A\n", "-", shownA},
        {kMarker + ";Title=\n", "", "Title=|"},
        {kMarker + ";old Title=New Title=x\n", "New Title=x", "Title=New Title=x|"},
        {kMarker + ";a\r;Title=B\rc\n", "B", ""},
        {kMarker + ";Title=" + t300 + "\n", t300.substr(52),
         "Title=" + t300.substr(49) + "|" + t300.substr(251) + "|"},
        {a + " trace on\nTRACE x\ntracer\nno trace\n; c\n", "A", "Title=A|no trace|"},
        {a + t300 + "\n", "A", shownA + t300.substr(42) + "|" + t300.substr(258) + "|"},
        {";[OrnithalWorksTraceInitFile]\r;Title=A\rx", "-", ""}, // all of it one line
        {"\xEF\xBB\xBF" + a + "\xEF\xBB\xBF 1\n", "A", "Title=A|\xEF\xBB\xBF 1|"},
        {kMarker + std::string(";Title=A\0b\nc\0d\n\0e\n", 18), "A", "Title=A|c|"},
    };
    for (const auto& row : rows) {
        const std::string path = Write("x.mac", row.bytes);
        InputFile file(path.c_str()), again(path.c_str());
        ASSERT_TRUE(file.IsOpen() && again.IsOpen());
        std::string title = "-";
        ReadBoardTitle(file, title);
        EXPECT_EQ(title, row.title) << row.bytes;
        std::string commands = ReadBoardCommands(again).Text;
        for (size_t at; (at = commands.find("\r\n")) != std::string::npos;)
            commands.replace(at, 2, "|");
        EXPECT_EQ(commands, row.commands) << row.bytes;
    }
}

#ifndef _WIN32
TEST_F(BoardTest, TheExamplesAreListed) {
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, built::kBoardExamples);
    Configure([&] {
        EXPECT_THAT(display.Entries(1078),
                    testing::IsSupersetOf(
                        {testing::StartsWith("STM32F4, "), testing::StartsWith("Example board")}));
    });
}
#endif

TEST_F(BoardTest, OnlyMarkedFilesOfTheDirectoryItselfAreListed) {
    const std::string boards = PathOf("boards;1") + kSeparator, longest = LongestName(boards);
    std::filesystem::create_directories(boards + "sub.mac");
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, PathOf("boards;1").c_str());
    std::vector<std::string> titles = {kGeneric};
    const std::vector<std::string> good = {"plain.mac", "UPPER.MAC", ".mac", "a 'b' \xC3\xBC.mac",
                                           longest};
    for (const std::string& name : good) {
        titles.push_back(name);
        Write("boards;1/" + name, kMarker + ";Title=" + name + "\r\n");
    }
    const std::vector<std::string> others = {"x.mac1", "n" + longest, "semi;colon.mac",
                                             "sub.mac/deep.mac"};
    for (const std::string& name : others) Write("boards;1/" + name, kMarker + ";Title=never\r\n");
    Write("boards;1/unmarked.mac", ";Title=unmarked\n");
    Write("colon.mac", kMarker + ";Title=of another directory\r\n");
    std::filesystem::current_path(Path());
#if !defined(_WIN32)
    ASSERT_EQ(mkfifo((boards + "pipe.mac").c_str(), 0600), 0);
    std::filesystem::create_symlink("plain.mac", boards + "link.mac");
    std::filesystem::create_symlink("/dev/zero", boards + "device.mac");
    titles.push_back("plain.mac");
#endif
    std::vector<std::string> listed;
    Configure([&] { listed = display.Entries(1078); });
    EXPECT_THAT(listed, testing::UnorderedElementsAreArray(titles));

    // Each of them can be stored, and is selected when the dialog comes up again.
    for (int i = 1; i < static_cast<int>(listed.size()); ++i) {
        Configure([&] {
            display.Select(1078, i);
            display.Click(IDOK);
        });
        ASSERT_TRUE(std::ifstream(Selected()).is_open()) << Selected();
        Configure([&] { EXPECT_EQ(display.Selection(1078), i) << Selected(); });
    }
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, PathOf("missing").c_str());
    Configure([&] { EXPECT_EQ(display.Entries(1078).size(), 1u); });
    std::filesystem::current_path("..");
}

TEST_F(BoardTest, SelectionForTheStoredValue) {
    const std::string path = Write("one.mac", kMarker + ";Title=One\n");
    // What is stored; the version of the host's interface, and whether it has ExecuteCmd
    const std::tuple<std::string, int32_t, bool, int, std::string> rows[] = {
        {"---", 111, true, 1, "/startup"},       {"---", 110, true, 0, "/none"},
        {"", 111, true, 1, "/startup"},          {"/NONE", 111, true, 0, "/none"},
        {"/Startup", 111, true, 1, "/startup"},  {"/startup", 111, false, 0, "/none"},
        {"/gone.mac", 111, true, 1, "/startup"}, {path, 111, false, 1, path},
        {PathOf("ONE.MAC"), 111, true, 2, path},
    };
    for (const auto& [stored, version, offers, selection, afterOk] : rows) {
        SCOPED_TRACE(stored);
        host.xTraceClient.m_Version = version;
        host.offersExecuteCmd = offers;
        settings.SetTextAttribute(TA_BOARD_FILE, stored.c_str());
        int shown = -1;
        Configure([&] {
            shown = display.Selection(1078);
            display.Click(IDOK);
        });
        EXPECT_EQ(shown, selection);
        EXPECT_EQ(Selected(), afterOk);
        EXPECT_EQ(host.TakeCalls().size(), version == 111 ? 1u : 0u) << "HasCommand";
    }
}

TEST(BoardFiles, HavePathsThatTheSettingHolds) {
    for (const size_t size : {259, 260})
        for (const bool separated : {true, false}) {
            const std::string directory = std::string(99, 'd') + (separated ? "/" : "");
            const std::string name = std::string(size - 100 - 4, 'n') + ".mac";
            EXPECT_EQ(CanBeBoardFile(directory, name), size == 259) << size << separated;
        }
}
