// The texts of chips/*.json. chip_texts.cpp is made of them by the build.

#pragma once

#include <span>

namespace etmhost {

/// The descriptions, that of the default chip first.
extern const std::span<const char* const> kChipTexts;

} // namespace etmhost
