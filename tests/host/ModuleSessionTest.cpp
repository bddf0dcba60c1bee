#include "host/module_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <streambuf>

#include "host/host_error.h"

namespace etmhost {
namespace {

// A journal that has room up to the first questions of Init; then it throws.
struct ShortBuffer : std::streambuf {
    ShortBuffer() { setp(text, text + sizeof text); }
    char text[100];
};

TEST(ModuleSession, EndsCleanlyBehindAFailedInit) {
    LoadedModule module(std::filesystem::path(ETMHOST_PATH)
                            .replace_filename(std::string("KVETMControl") + LibraryExtension()));
    ShortBuffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);
    SimulatedHost failing(*FindChip("arm7"), {}, Journal(&out));
    EXPECT_THAT(
        [&] { ModuleSession(module.object(), module.path(), failing); },
        testing::ThrowsMessage<HostError>(testing::StartsWith("the module failed in Init: ")));
    SimulatedHost working(*FindChip("arm7"), {}, Journal());
    ModuleSession session(module.object(), module.path(), working);
    EXPECT_TRUE(session.control().Apply()) << session.LastError();
}

} // namespace
} // namespace etmhost
