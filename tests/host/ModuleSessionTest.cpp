#include "host/module_session.h"

#include <gtest/gtest.h>

#include "host/host_error.h"

namespace etmhost {
namespace {

using Log = std::vector<std::string>;

// Identity operations that nobody looks at.
template <class Interface> class Nameless : public Interface {
public:
    const char* GetInterfaceName() override { return ""; }
    int32_t GetInterfaceVersion() override { return 0; }
    const char* GetComponentName() override { return ""; }
    int32_t GetComponentVersion() override { return 0; }
    IOrnInterface* GetInterface(const char*) override { return nullptr; }
    void ReleaseInterface(IOrnInterface*) override {}
};

// A control component that writes down how it is treated.
class FakeControl final : public Nameless<IOrnKVETMCtrl> {
public:
    explicit FakeControl(Log& log) : log(log) {}

    int32_t GetParamCount() override { return 0; }
    int32_t GetParam(uint32_t, uint32_t) override { return 0; }
    int32_t SetParam(uint32_t, uint32_t) override { return 0; }
    int32_t CheckParam(uint32_t, uint32_t) override { return 0; }
    int32_t AttachInterface(const char* name, IOrnInterface* object) override {
        log.push_back(std::string("attach ") + name + "=" + object->GetInterfaceName());
        return 0;
    }
    int32_t DetachInterface(const char* name) override {
        log.push_back(std::string("detach ") + name);
        return 0;
    }
    int32_t GetImplementedCount() override { return 0; }
    const char* GetImplementedName(int32_t) override { return nullptr; }
    int32_t GetRequiredCount() override { return 2; }
    const char* GetRequiredName(int32_t index) override { return index == 0 ? "IOrnEmu" : second; }
    int32_t GetRequiredOption(int32_t) override { return 0; }
    IOrnInterface* GetAttachedInterface(const char*) override { return nullptr; }
    bool Init(uint32_t) override {
        log.push_back("init");
        return initWorks;
    }
    bool Open() override { return true; }
    bool Apply() override { return true; }
    void GetLastError(char* buffer, int32_t size) override {
        std::string("why").copy(buffer, static_cast<size_t>(size));
        buffer[3] = '\0';
    }

    Log& log;
    const char* second = "IOrnAPI";
    bool initWorks = true;
};

// A module whose second row is the control component.
class FakeModule final : public Nameless<IOrnAPIBase> {
public:
    int32_t GetRowCount() override { return rows; }
    const char* GetRowComponentName(int32_t) override { return ""; }
    const char* GetRowInterfaceName(int32_t row) override {
        return row == 1 ? "IOrnKVETMCtrl" : nullptr;
    }
    IOrnInterface* CreateRowObject(int32_t row) override {
        log.push_back("create " + std::to_string(row));
        return &control;
    }
    void DestroyRowObject(int32_t row, IOrnInterface* object) override {
        log.push_back("destroy " + std::to_string(row) + (object == &control ? "" : " another"));
    }
    void SetModulePath(const char* path) override { log.push_back(std::string("path ") + path); }
    const char* GetModulePath() override { return nullptr; }
    void SetAPI(IOrnInterface* api) override {
        log.push_back(std::string("api ") + (api != nullptr ? api->GetInterfaceName() : "none"));
    }

    Log log;
    int32_t rows = 2;
    FakeControl control{log};
};

struct Fixture {
    std::string Error() {
        try {
            ModuleSession session(module, "/dir/module", host);
        } catch (const HostError& error) {
            return error.what();
        }
        return "none";
    }

    SimulatedHost host{*FindChip("arm7"), {}, Journal()};
    FakeModule module;
};

TEST(ModuleSession, GoesThroughTheStepsInOrder) {
    Fixture fixture;
    EXPECT_EQ(fixture.Error(), "none");
    EXPECT_EQ(fixture.module.log,
              (Log{"path /dir/module", "api IOrnAPI", "create 1", "attach IOrnEmu=IOrnEmu",
                   "attach IOrnAPI=IOrnAPI", "init", "detach IOrnEmu", "detach IOrnAPI",
                   "destroy 1", "api none"}));
}

TEST(ModuleSession, CleansUpBehindEveryFailure) {
    const Log kEnd = {"detach IOrnEmu", "detach IOrnAPI", "destroy 1", "api none"};
    Fixture init;
    init.module.control.initWorks = false;
    EXPECT_EQ(init.Error(), "the module failed in Init: why");
    EXPECT_EQ(Log(init.module.log.end() - 4, init.module.log.end()), kEnd);

    Fixture unknown;
    unknown.module.control.second = "IOrnNew";
    EXPECT_EQ(unknown.Error(), "the module requires \"IOrnNew\", which this host lacks");
    EXPECT_EQ(unknown.module.log.end()[-2], "destroy 1");

    Fixture empty;
    empty.module.rows = 1;
    EXPECT_EQ(empty.Error(), "the module offers no control component");
    EXPECT_EQ(empty.module.log, (Log{"path /dir/module", "api IOrnAPI", "api none"}));
}

} // namespace
} // namespace etmhost
