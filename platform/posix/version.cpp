#include "platform/version.h"

uint32_t PlatformVersion() {
    return 10;
}
