// Capacities and lengths of the string that lets its users write into it.

#include "text/jString.h"

#include <gtest/gtest.h>

TEST(jString, SparesEightBytesWhenAnAssignHasToAllocate) {
    for (const auto& [length, capacity] :
         {std::pair{15u, 16u}, {16, 32}, {23, 32}, {24, 40}, {65535, 65544}}) {
        const std::string text(length, 'x');
        jString string;
        string.Assign(text.c_str());
        EXPECT_EQ(string.Capacity, capacity) << length;
        EXPECT_EQ(string.GetBuffer(), text);
        string.Assign(nullptr);
        EXPECT_EQ(string.Capacity, capacity) << "an empty text keeps the buffer";
    }
}

TEST(jString, GrowsNoFurtherThanNeededAndMeasuresAnewAfterAccess) {
    jString string;
    EXPECT_EQ(&string.Append("123456789012345"), &string);
    EXPECT_EQ(string.Capacity, 16u);
    string.Append(nullptr).Append("6");
    EXPECT_EQ(string.Capacity, 24u);
    EXPECT_EQ(string.Length, 16u);
    string.GetBuffer()[3] = '\0';
    string.Append("abcdefghijklmnopqrstuvwxyz");
    EXPECT_STREQ(string.Data, "123abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(string.Capacity, 32u);
    EXPECT_EQ(string.Reserve(100), 103u);
    EXPECT_EQ(string.Reserve(0), 31u);
    string.At(28) = '\0';
    EXPECT_EQ(string.GetLength(), 28u);
    EXPECT_EQ(&string.At(4000000000), string.Data + 28);
    string.GetBuffer()[2] = '\0';
    EXPECT_EQ(string.GetLength(), 2u);
}
