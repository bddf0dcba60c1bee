// Paths in parts, and comparison without regard to case.

#include "platform/paths.h"

#include <gtest/gtest.h>

#include "platform/compare.h"

TEST(Paths, ComeApartAtBothSeparators) {
    struct Row {
        const char* path;
        const char* parts; // drive|directory|name|extension
        const char* directory;
    };
    for (const Row& row : {Row{"C:\\tools\\debugger\\module.dll",
                               "C:|\\tools\\debugger\\|module|.dll", "C:\\tools\\debugger"},
                           {"C:\\module.dll", "C:|\\|module|.dll", "C:"},
                           {"/opt/debug.d/module.so", "|/opt/debug.d/|module|.so", "/opt/debug.d"},
                           {"/module.so", "|/|module|.so", "/"},
                           {"a\\b/c.d.e", "|a\\b/|c.d|.e", "a\\b"},
                           {".mac", "|||.mac", ""}}) {
        const PathParts parts = SplitPath(row.path);
        EXPECT_EQ(parts.Drive + "|" + parts.Directory + "|" + parts.Name + "|" + parts.Extension,
                  row.parts);
        EXPECT_EQ(DirectoryOf(row.path), row.directory) << row.path;
    }
    EXPECT_EQ(JoinPath("/a", "b"), std::string("/a") + kSeparator + "b");
    EXPECT_EQ(JoinPath("/", "b"), "/b");
}

TEST(Compare, LeavesCaseAside) {
    EXPECT_EQ(CompareNoCase("aZ[9", "Az[9"), 0);
    EXPECT_LT(CompareNoCase("ab", "B"), 0);
    EXPECT_LT(CompareNoCase(nullptr, "a"), 0);
    EXPECT_NE(CompareNoCase("\xC4", "\xE4"), 0) << "no locale takes part";
    EXPECT_GT(CompareNoCase("\xC4", "a"), 0) << "bytes have no sign";
    EXPECT_EQ(CompareNoCaseN("yesterday", "YES", 3), 0);
    EXPECT_LT(CompareNoCaseN("y", "YES", 3), 0);
}
