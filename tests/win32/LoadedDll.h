#pragma once

#include "tests/module/LoadedModule.h"

using LoadedDll = LoadedModule;
