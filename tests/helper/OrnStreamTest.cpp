// The helper library, as a host in another language calls it.

#include <gtest/gtest.h>

#include <sstream>

#include "frame/interfaces/orn_stream.h"

namespace {

TEST(StreamWrite, TakesWhatThereIsAndSurvivesTheRest) {
    std::ostringstream stream;
    const char report[] = "two\nlines\n";
    EXPECT_EQ(orn_stream_write(&stream, report, sizeof report), 1);
    EXPECT_EQ(orn_stream_write(&stream, "", 0), 1);
    EXPECT_EQ(orn_stream_write(nullptr, "text", 4), 0);
    EXPECT_EQ(orn_stream_write(&stream, nullptr, 4), 0);
    EXPECT_EQ(orn_stream_write(&stream, "text", SIZE_MAX), 0);
    EXPECT_EQ(stream.str(), std::string(report, sizeof report));

    std::ostream none(nullptr);
    EXPECT_EQ(orn_stream_write(&none, "text", 4), 0);
    stream.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_ANY_THROW(stream.setstate(std::ios::failbit));
    EXPECT_EQ(orn_stream_write(&stream, "text", 4), 0);
}

} // namespace
