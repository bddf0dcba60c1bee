// What is read of files whose place something else takes meanwhile.

#include "platform/directory.h"

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "testkit/TemporaryDirectory.h"

TEST(Directory, TakesNothingFromAPipeInAFilesPlace) {
    const TemporaryDirectory temporary;
    const std::string path = temporary.Write("a", "12345");
    Directory directory(temporary.Path());
    DirectoryEntry entry;
    do ASSERT_TRUE(directory.Next(entry));
    while (entry.Name != "a");
    ASSERT_TRUE(entry.IsFile);
    char text[6] = {};
    {
        InputFile file(directory, "a");
        EXPECT_EQ(file.Read(text, 3), 3u);
        EXPECT_EQ(file.Read(text + 3, 3), 2u); // reads on
        EXPECT_EQ(file.Read(text, 3), 0u);
        EXPECT_STREQ(text, "12345");
    }
#if !defined(_WIN32)
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int pipe = open(path.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_EQ(write(pipe, "abc", 3), 3);
    EXPECT_EQ(InputFile(directory, "a").Read(text, 3), 0u);
    EXPECT_EQ(read(pipe, text, 6), 3);
    EXPECT_STREQ(text, "abc45");
    close(pipe);
#endif

    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(InputFile(directory, "a").Read(text, 3), 0u);
    std::filesystem::remove(path);
    EXPECT_FALSE(InputFile(directory, "a").IsOpen());
}
