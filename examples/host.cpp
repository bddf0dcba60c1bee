// A first host, in C++11: loads the module that the command line names, shows the "ETM Control"
// dialog for a chip that it makes up, and prints what the module sends to the chip.
#include "orn.h"
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#ifdef _WIN32
#include <windows.h>
#define realpath(file, none) _fullpath(none, file, 0)
#define dlopen(file, mode) LoadLibraryA(file)
#define dlsym(library, name) reinterpret_cast<void*>(GetProcAddress(library, name))
#else
#include <dlfcn.h>
#endif

static const char kReport[] = // with the NUL at its end
    "ETM protocol version: 3\nETM architecture version: 1.3\nNumber of data comparators: 2\n"
    "Number of address comparator pairs: 4\nNumber of memory map decoders: 8\nNumber of counters: 2"
    "\nNumber of external inputs: 4\nNumber of external outputs: 1\nSequencer present: yes\n"
    "FIFOFULL logic present: yes\nNormal format supported: yes\nHalf-rate clocking supported: yes\n"
    "Full-rate clocking supported: no\nMultiplexed  format  supported: no\n"
    "Demultiplexed format supported: no\n";
template <class Interface, const char* kName> struct Object : Interface { // what all objects have
    const char* GetInterfaceName() override { return kName; }
    int32_t GetInterfaceVersion() override { return ORN_VERSION_WITH_HAS_COMMAND; }
    const char* GetComponentName() override { return "ExampleHost"; }
    int32_t GetComponentVersion() override { return 100; }
    IOrnInterface* GetInterface(const char*) override { return nullptr; }
    void ReleaseInterface(IOrnInterface*) override {}
};
struct Trace : Object<IOrnVETMTrace, ORN_VETM_TRACE> {
    std::map<uint32_t, uint32_t> values = {
        {ORN_VALUE_ETMCCR, 0x30194824},  {ORN_VALUE_ETMSCR, 0x2A},
        {ORN_VALUE_PORT_SIZES, 0x8088},  {ORN_VALUE_CONTROL, 0},
        {ORN_VALUE_BUFFER_SIZE, 524288}, {ORN_VALUE_TRIGGER_COUNT, 262144}};
    const char* Command(const char* text, std::ostream* stream) override {
        std::printf("%s\n", text);
        if (stream != nullptr) orn_stream_write(stream, kReport, sizeof kReport);
        return nullptr; // done
    }
    const char* GetInfoText(uint32_t) override { return "Example emulator, buffer of 2 MB"; }
    uint32_t GetTraceState(uint32_t* detail) override { return *detail = 0; }
    OrnBool HasFeature(uint32_t) override { return 0; }
    OrnBool SetValue(uint32_t id, uint32_t value) override {
        return std::printf("value %u = 0x%X\n", id, values[id] = value) > 0 ? 1 : 0;
    }
    OrnBool GetValue(uint32_t id, uint32_t* value) override {
        return values.count(id) != 0 ? (*value = values[id], 1) : 0;
    }
    const char* GetSettingsLine(uint32_t i) override { return i == 0 ? "ETM PC = all" : nullptr; }
};
struct Client : Object<IOrnTraceClient, ORN_TRACE_CLIENT> {
    OrnBool Action(const char*, const char*) override { return 0; } // evaluates nothing
};
struct Settings : Object<IOrnXTraceClient, ORN_XTRACE_CLIENT> {
    std::string board = ORN_BOARD_NONE;
    OrnBool HasCommand(const char*) override { return 0; }
    OrnBool WriteSetting(const char*, const char* key, const char* value) override {
        return std::printf("%s = %s\n", key, (board = value).c_str()) > 0 ? 1 : 0;
    }
    OrnBool ReadSetting(const char*, const char*, int32_t size, char* buffer) override {
        return std::snprintf(buffer, size, "%s", board.c_str()) < size ? 1 : 0;
    }
};
int main(int count, char** arguments) {
    char* const file = count == 2 ? realpath(arguments[1], nullptr) : nullptr;
    auto* entry = reinterpret_cast<decltype(&OrnDLL)>(dlsym(dlopen(file, RTLD_NOW), "OrnDLL"));
    if (entry == nullptr) return std::fputs("usage: host MODULE\n", stderr), 2;
    IOrnAPIBase* const module = entry();
    Object<IOrnAPI, ORN_API> api;
    Object<IOrnXTrace, ORN_XTRACE> xTrace;
    Object<IOrnEmu, ORN_EMU> emu;
    Trace trace;
    Client client;
    Settings settings;
    module->SetModulePath(file);
    module->SetAPI(&api);
    auto* const control = static_cast<IOrnKVETMCtrl*>(module->CreateRowObject(0));
    IOrnInterface* const objects[] = {&api, &trace, &client, &settings, &xTrace, &emu};
    for (IOrnInterface* i : objects) control->AttachInterface(i->GetInterfaceName(), i);
    char error[260] = "";
    if (!control->Init(0) || !control->Open()) control->GetLastError(error, sizeof error);
    for (IOrnInterface* i : objects) control->DetachInterface(i->GetInterfaceName());
    module->DestroyRowObject(0, control);
    module->SetAPI(nullptr);
    std::free(file);
    return *error == '\0' ? 0 : (std::fprintf(stderr, "%s\n", error), 1);
}
