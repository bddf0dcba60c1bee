// Text of any bytes in JSON, which knows UTF-8 only: what is none stands as an array of its bytes.

#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace record {

template <class Json> Json JsonFromText(const std::string& text) {
    try {
        (void)Json(text).dump();
        return text;
    } catch (const nlohmann::json::exception&) {
        return std::vector<unsigned char>(text.begin(), text.end());
    }
}

/// Throws an exception for what is no such text.
template <class Json> std::string TextFromJson(const Json& value) {
    if (!value.is_array()) return value.template get<std::string>();
    std::string text;
    for (const Json& byte : value) {
        if (!byte.is_number_unsigned() || byte.template get<uint64_t>() > 255)
            throw std::runtime_error(byte.dump() + " is no byte of a text");
        text += static_cast<char>(byte.template get<unsigned char>());
    }
    return text;
}

} // namespace record
