#include "frame/DeafHost.h"

#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/slots.h"

namespace {

template <class Interface> class Deaf : public Interface {
public:
    const char* GetInterfaceName() override { return ""; }
    int32_t GetInterfaceVersion() override { return 0; }
    const char* GetComponentName() override { return "KVETMControl"; }
    int32_t GetComponentVersion() override { return 0; }
    IOrnInterface* GetInterface(const char*) override { return nullptr; }
    void ReleaseInterface(IOrnInterface*) override {}
};

class DeafTrace final : public Deaf<IOrnVETMTrace> {
public:
    const char* Command(const char*, std::ostream*) override {
        return "The component is being destroyed";
    }
    const char* GetInfoText(uint32_t) override { return nullptr; }
    uint32_t GetTraceState(uint32_t*) override { return 0; }
    OrnBool HasFeature(uint32_t) override { return 0; }
    OrnBool SetValue(uint32_t, uint32_t) override { return 0; }
    OrnBool GetValue(uint32_t, uint32_t*) override { return 0; }
    const char* GetSettingsLine(uint32_t) override { return nullptr; }
};

class DeafTraceClient final : public Deaf<IOrnTraceClient> {
public:
    OrnBool Action(const char*, const char*) override { return 0; }
};

class DeafXTraceClient final : public Deaf<IOrnXTraceClient> {
public:
    OrnBool HasCommand(const char*) override { return 0; }
    OrnBool WriteSetting(const char*, const char*, const char*) override { return 0; }
    OrnBool ReadSetting(const char*, const char*, int32_t, char*) override { return 0; }
};

template <class Object, class Slot> void Replace(Slot*& slot) {
    static Object object;
    if (slot != nullptr) slot = &object;
}

} // namespace

void DeafenHost() {
    Replace<Deaf<IOrnAPI>>(g_API);
    Replace<DeafTrace>(g_VETMTrace);
    Replace<DeafTraceClient>(g_TraceClient);
    Replace<DeafXTraceClient>(g_XTraceClient);
    Replace<Deaf<IOrnXTrace>>(g_XTrace);
    Replace<Deaf<IOrnEmu>>(g_Emu);
}
