// LoadedDll: the built library beside the program, loaded as a host does it.

#pragma once

#include <string>

#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "tests/support/RecordingHost.h"

class LoadedDll {
public:
    /// `boardDirectory` is where the module believes to lie. Throws std::runtime_error
    /// if the library can't be loaded.
    explicit LoadedDll(const std::string& boardDirectory = "C:\\debugger");
    ~LoadedDll();
    LoadedDll(const LoadedDll&) = delete;
    LoadedDll& operator=(const LoadedDll&) = delete;

    std::string LastError();

    RecordingHost host;
    IOrnAPIBase* module = nullptr;
    IOrnKVETMCtrl* control = nullptr;
    void* const library; // its handle
};
