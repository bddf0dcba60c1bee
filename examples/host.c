/* A first host, in C: loads the module that the command line names, shows the "ETM Control" dialog
 * for a chip that it makes up, and prints what the module sends to the chip. */
#define _DEFAULT_SOURCE /* realpath */
#include "orn.h"
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#define FULL_PATH(file) _fullpath(NULL, file, 0)
#define FIND(file, name) GetProcAddress(LoadLibraryA(file), name)
typedef FARPROC Found;
#else
#include <dlfcn.h>
#define FULL_PATH(file) realpath(file, NULL)
#define FIND(file, name) dlsym(dlopen(file, RTLD_NOW), name)
typedef void* Found;
#endif

/* --- What all objects have: a table, and behind it what this host wants to know ------------ */

typedef struct Object {
    const void* slots;
    const char* name;
} Object;

static const char* ORN_CALL GetInterfaceName(void* self) {
    return ((const Object*)self)->name;
}
static int32_t ORN_CALL GetInterfaceVersion(void* self) {
    (void)self;
    return ORN_VERSION_WITH_HAS_COMMAND;
}
static const char* ORN_CALL GetComponentName(void* self) {
    (void)self;
    return "ExampleHost";
}
static int32_t ORN_CALL GetComponentVersion(void* self) {
    (void)self;
    return 100;
}
static void* ORN_CALL GetInterface(void* self, const char* name) {
    (void)self, (void)name;
    return NULL;
}
static void ORN_CALL ReleaseInterface(void* self, void* object) {
    (void)self, (void)object;
}
#define ROOT_SLOTS                                                                                 \
    GetInterfaceName, GetInterfaceVersion, GetComponentName, GetComponentVersion, GetInterface,    \
        ReleaseInterface

/* --- The target ----------------------------------------------------------------------------- */

static const char kReport[] = /* with the NUL at its end */
    "ETM protocol version: 3\nETM architecture version: 1.3\nNumber of data comparators: 2\n"
    "Number of address comparator pairs: 4\nNumber of memory map decoders: 8\nNumber of counters: 2"
    "\nNumber of external inputs: 4\nNumber of external outputs: 1\nSequencer present: yes\n"
    "FIFOFULL logic present: yes\nNormal format supported: yes\nHalf-rate clocking supported: yes\n"
    "Full-rate clocking supported: no\nMultiplexed  format  supported: no\n"
    "Demultiplexed format supported: no\n";

static struct {
    uint32_t id, value;
} values[] = {{ORN_VALUE_ETMCCR, 0x30194824},  {ORN_VALUE_ETMSCR, 0x2A},
              {ORN_VALUE_PORT_SIZES, 0x8088},  {ORN_VALUE_CONTROL, 0},
              {ORN_VALUE_BUFFER_SIZE, 524288}, {ORN_VALUE_TRIGGER_COUNT, 262144}};

/* Returns the place of a value; NULL if there is none. */
static uint32_t* Find(uint32_t id) {
    size_t i;
    for (i = 0; i < sizeof values / sizeof *values; ++i)
        if (values[i].id == id) return &values[i].value;
    return NULL;
}
static const char* ORN_CALL Command(void* self, const char* text, void* stream) {
    (void)self;
    printf("%s\n", text);
    if (stream != NULL) orn_stream_write(stream, kReport, sizeof kReport);
    return NULL; /* done */
}
static const char* ORN_CALL GetInfoText(void* self, uint32_t which) {
    (void)self, (void)which;
    return "Example emulator, buffer of 2 MB";
}
static uint32_t ORN_CALL GetTraceState(void* self, uint32_t* detail) {
    (void)self;
    return *detail = 0;
}
static OrnBool ORN_CALL HasFeature(void* self, uint32_t feature) {
    (void)self, (void)feature;
    return 0;
}
static OrnBool ORN_CALL SetValue(void* self, uint32_t id, uint32_t value) {
    uint32_t* const place = Find(id);
    (void)self;
    if (place == NULL) return 0;
    printf("value %u = 0x%X\n", (unsigned)id, (unsigned)value);
    *place = value;
    return 1;
}
static OrnBool ORN_CALL GetValue(void* self, uint32_t id, uint32_t* value) {
    const uint32_t* const place = Find(id);
    (void)self;
    if (place == NULL) return 0;
    *value = *place;
    return 1;
}
static const char* ORN_CALL GetSettingsLine(void* self, uint32_t index) {
    (void)self;
    return index == 0 ? "ETM PC = all" : NULL;
}
static const OrnVETMTraceSlots kTrace = {ROOT_SLOTS, Command,  GetInfoText, GetTraceState,
                                         HasFeature, SetValue, GetValue,    GetSettingsLine};

/* --- The one named setting ------------------------------------------------------------------- */

static char board[ORN_SETTING_LENGTH + 1] = ORN_BOARD_NONE;

static OrnBool ORN_CALL HasCommand(void* self, const char* name) {
    (void)self, (void)name;
    return 0;
}
static OrnBool ORN_CALL WriteSetting(void* self, const char* section, const char* key,
                                     const char* value) {
    (void)self, (void)section;
    printf("%s = %s\n", key, value);
    snprintf(board, sizeof board, "%s", value);
    return 1;
}
static OrnBool ORN_CALL ReadSetting(void* self, const char* section, const char* key, int32_t size,
                                    char* buffer) {
    (void)self, (void)section, (void)key;
    snprintf(buffer, (size_t)size, "%s", board);
    return 1;
}
static const OrnXTraceClientSlots kSettings = {ROOT_SLOTS, HasCommand, WriteSetting, ReadSetting};

/* --- What judges addresses, if it can -------------------------------------------------------- */

static OrnBool ORN_CALL Action(void* self, const char* action, const char* argument) {
    (void)self, (void)action, (void)argument;
    return 0;
}
static const OrnTraceClientSlots kClient = {ROOT_SLOTS, Action};

/* --- The module ------------------------------------------------------------------------------ */

static const OrnInterfaceSlots kPlain = {ROOT_SLOTS};
static Object objects[] = {{&kPlain, ORN_API},           {&kTrace, ORN_VETM_TRACE},
                           {&kClient, ORN_TRACE_CLIENT}, {&kSettings, ORN_XTRACE_CLIENT},
                           {&kPlain, ORN_XTRACE},        {&kPlain, ORN_EMU}};
#define OBJECTS (sizeof objects / sizeof *objects)

int main(int count, char** arguments) {
    char* const file = count == 2 ? FULL_PATH(arguments[1]) : NULL;
    OrnDLLFunction entry = NULL;
    OrnAPIBase* module;
    OrnKVETMCtrl* control;
    char error[260] = "";
    size_t i;

    if (file != NULL) {
        const Found found = FIND(file, "OrnDLL");
        memcpy(&entry, &found, sizeof entry);
    }
    if (entry == NULL) {
        fprintf(stderr, "usage: host MODULE\n");
        return 2;
    }
    module = entry();
    module->slots->SetModulePath(module, file);
    module->slots->SetAPI(module, &objects[0]);
    control = module->slots->CreateRowObject(module, 0);
    for (i = 0; i < OBJECTS; ++i)
        control->slots->AttachInterface(control, objects[i].name, &objects[i]);
    if (!control->slots->Init(control, 0) || !control->slots->Open(control))
        control->slots->GetLastError(control, error, sizeof error);
    fputs(error, stderr);
    for (i = 0; i < OBJECTS; ++i) control->slots->DetachInterface(control, objects[i].name);
    module->slots->DestroyRowObject(module, 0, control);
    module->slots->SetAPI(module, NULL);
    free(file);
    return *error == '\0' ? 0 : 1;
}
