// A library with the module's export and nothing behind it, to compare loading with.

extern "C" __attribute__((visibility("default"))) void* OrnDLL() {
    return nullptr;
}
