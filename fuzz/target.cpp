#include "fuzz/target.h"

#include <cstdio>
#include <string_view>
#include <vector>

namespace {

std::vector<const FuzzTarget*>& Targets() {
    static std::vector<const FuzzTarget*> targets;
    return targets;
}

const FuzzTarget* chosen = nullptr;

} // namespace

FuzzTarget::FuzzTarget(const char* name, Run run) : name(name), run(run) {
    Targets().push_back(this);
}

extern "C" int LLVMFuzzerInitialize(int*, char*** arguments) {
    std::string_view called = **arguments;
    called.remove_prefix(called.rfind('/') + 1);
    for (const FuzzTarget* target : Targets())
        if (target->name == called) chosen = target;
    if (chosen != nullptr) return 0;
    std::fprintf(stderr, "to be called by the name of a target:");
    for (const FuzzTarget* target : Targets()) std::fprintf(stderr, " %s", target->name);
    std::fprintf(stderr, "\n");
    std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    chosen->run(data, size);
    return 0;
}
