#include "platform/version.h"

#include <windows.h>

uint32_t PlatformVersion() {
    return GetVersion();
}
