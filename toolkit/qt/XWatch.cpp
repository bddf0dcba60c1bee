#include "toolkit/qt/XWatch.h"

#include <QApplication>
#include <cstring>
#include <dlfcn.h>
#include <poll.h>
#include <utility>
#include <vector>

namespace qt {

namespace {

// --- GLib, which Qt has loaded: what is needed of its binary interface ---------------

struct SourceFunctions {
    int (*prepare)(void* source, int* timeout);
    int (*check)(void* source);
    int (*dispatch)(void* source, int (*callback)(void*), void* data);
    void (*finalize)(void* source);
    void* closure[2];
};

struct Source { // its beginning
    void* callback[2];
    const SourceFunctions* functions;
};

constexpr int kBeforeQt = -300; // a smaller number comes first

/// A function of a library that is loaded already; null if it is not.
template <class Function> Function* Find(const char* library, const char* name) {
    void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) return nullptr;
    auto* found = reinterpret_cast<Function*>(dlsym(handle, name));
    dlclose(handle); // Qt keeps it
    return found;
}

template <class Function> Function* InGlib(const char* name) {
    return Find<Function>("libglib-2.0.so.0", name);
}

/// Puts a new source into the loop of the main thread; returns its number, 0 without GLib.
unsigned Attach(const SourceFunctions& functions, Source*& source) {
    auto* make = InGlib<Source*(const SourceFunctions*, unsigned)>("g_source_new");
    auto* setPriority = InGlib<void(Source*, int)>("g_source_set_priority");
    auto* attach = InGlib<unsigned(Source*, void*)>("g_source_attach");
    constexpr unsigned kRoom = 256; // a source is smaller
    if (make == nullptr || setPriority == nullptr || attach == nullptr) return 0;
    source = make(&functions, kRoom);
    setPriority(source, kBeforeQt);
    return attach(source, nullptr);
}

void Remove(Source* source) {
    if (source == nullptr) return;
    if (auto* destroy = InGlib<void(Source*)>("g_source_destroy")) destroy(source);
    if (auto* unref = InGlib<void(Source*)>("g_source_unref")) unref(source);
}

/// Whether a source reads from an X connection: its code lies in Qt's part for X, or in
/// GDK, which Qt's theme for GNOME brings along.
bool ReadsFromX(const Source& source) {
    Dl_info where{};
    if (dladdr(reinterpret_cast<void*>(source.functions->dispatch), &where) == 0) return false;
    return std::strstr(where.dli_fname, "XcbQpa") != nullptr ||
           std::strstr(where.dli_fname, "libgdk-") != nullptr;
}

// --- The watch: one, as there is one application --------------------------------------

struct Watch {
    const QCoreApplication* application = nullptr;
    void* connection = nullptr;
    int (*hasError)(void* connection) = nullptr;
    int socket = -1;
    void (*cancel)() = nullptr;
    std::vector<unsigned> readers; // numbers of the sources that read from X
    Source* source = nullptr;
};

Watch g_Watch;
bool g_Broken = false;

/// Whether the server has hung up. A thread of Qt's reads from the connection and notes that
/// it is broken; until it gets its turn, only the socket knows.
bool HasHungUp() {
    pollfd socket{g_Watch.socket, POLLIN, 0};
    return g_Watch.socket >= 0 && poll(&socket, 1, 0) > 0 &&
           (socket.revents & (POLLHUP | POLLERR)) != 0;
}

bool IsBroken() {
    // Beside an application of the host's the connection is no business of ours.
    return g_Watch.hasError != nullptr && QCoreApplication::instance() == g_Watch.application &&
           (g_Watch.hasError(g_Watch.connection) != 0 || HasHungUp());
}

Source* FindSource(unsigned number) {
    static auto* find = InGlib<Source*(void*, unsigned)>("g_main_context_find_source_by_id");
    return find != nullptr ? find(nullptr, number) : nullptr;
}

int Dispatch(void*, int (*)(void*), void*) {
    g_Broken = true;
    auto* destroy = InGlib<void(Source*)>("g_source_destroy");
    for (const unsigned number : g_Watch.readers)
        if (Source* reader = FindSource(number)) destroy(reader);
    g_Watch.cancel();
    return 0; // the source goes
}

// A handler that took its time may lie between the watch's look and a reader's turn.
SourceFunctions g_Reading{};         // of a reader, with our own dispatch
decltype(g_Reading.dispatch) g_Read; // Qt's

int ReadUnlessBroken(void* source, int (*callback)(void*), void* data) {
    return IsBroken() ? 1 : g_Read(source, callback, data);
}

void StandBefore(Source& reader) {
    g_Reading = *reader.functions;
    g_Read = std::exchange(g_Reading.dispatch, ReadUnlessBroken);
    reader.functions = &g_Reading;
}

constexpr SourceFunctions kWatching = {[](void*, int* timeout) -> int {
                                           *timeout = -1;
                                           return IsBroken() ? 1 : 0;
                                       },
                                       [](void*) { return IsBroken() ? 1 : 0; },
                                       Dispatch,
                                       nullptr,
                                       {}};

} // namespace

SourcesBefore::SourcesBefore() {
    static constexpr SourceFunctions kNever = {[](void*, int*) { return 0; },
                                               [](void*) { return 0; },
                                               [](void*, int (*)(void*), void*) { return 0; },
                                               nullptr,
                                               {}};
    Source* source = nullptr;
    m_First = Attach(kNever, source);
    Remove(source);
}

void WatchX(QApplication& application, const SourcesBefore& before, void (*cancel)()) {
#if QT_CONFIG(xcb)
    if (QGuiApplication::platformName() != "xcb" || before.First() == 0) return;
    auto* native = application.nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr || native->connection() == nullptr) return;
    g_Watch = {&application, native->connection(), nullptr, -1, cancel, {}, nullptr};
    g_Watch.hasError = Find<int(void*)>("libxcb.so.1", "xcb_connection_has_error");
    if (auto* socketOf = Find<int(void*)>("libxcb.so.1", "xcb_get_file_descriptor"))
        g_Watch.socket = socketOf(g_Watch.connection);
    const unsigned last = Attach(kWatching, g_Watch.source);
    for (unsigned number = before.First(); number < last; ++number) {
        Source* reader = FindSource(number);
        if (reader == nullptr || !ReadsFromX(*reader)) continue;
        g_Watch.readers.push_back(number);
        if (g_Watch.readers.size() == 1) StandBefore(*reader);
    }
    // Xlib, below some of Qt's calls, ends the process too.
    auto* setExitHandler =
        Find<void(void*, void (*)(void*, void*), void*)>("libX11.so.6", "XSetIOErrorExitHandler");
    if (setExitHandler != nullptr && native->display() != nullptr)
        setExitHandler(
            native->display(), [](void*, void*) {}, nullptr);
#else
    static_cast<void>(application), static_cast<void>(before), static_cast<void>(cancel);
#endif
}

void UnwatchX() {
    Remove(g_Watch.source);
    g_Watch = {};
}

bool HasXBroken() {
    return g_Broken || IsBroken();
}

} // namespace qt
