// Steps, conditions and windows in words, for the journal and for failures.

#pragma once

#include <string>

#include "host/drive/Script.h"
#include "host/drive/User.h"

namespace etmhost {

std::string Described(const ControlName& name);
std::string Described(const EntryName& name);
std::string Described(const KeyName& key);
std::string Described(const Condition& condition);
std::string Described(const FrontWindow& window);
const char* Described(Answer answer);

} // namespace etmhost
