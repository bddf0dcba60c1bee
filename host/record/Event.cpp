#include "host/record/Event.h"

#include <algorithm>

namespace record {

const Value* Find(const Fields& fields, std::string_view name) {
    for (const auto& [known, value] : fields)
        if (known == name) return &value;
    return nullptr;
}

std::string TextOf(const Fields& fields, std::string_view name) {
    const Value* value = Find(fields, name);
    const std::string* text = value != nullptr ? std::get_if<std::string>(value) : nullptr;
    return text != nullptr ? *text : "";
}

bool IsTrue(const Fields& fields, std::string_view name) {
    const Value* value = Find(fields, name);
    return value != nullptr && *value != Value(nullptr) && *value != Value(false) &&
           *value != Value(int64_t{0});
}

void EventStream::Add(EventWriter& writer) {
    const auto lock = Lock();
    m_Writers.push_back(&writer);
}

void EventStream::AddFirst(EventWriter& writer) {
    const auto lock = Lock();
    m_Writers.insert(m_Writers.begin(), &writer);
}

void EventStream::Remove(EventWriter& writer) {
    const auto lock = Lock();
    std::erase(m_Writers, &writer);
}

void EventStream::Write(const Event& event) {
    const auto lock = Lock();
    for (EventWriter* writer : m_Writers) writer->Write(event);
}

void EventStream::Tell(const char* operation, Fields arguments) {
    Write({.operation = operation, .arguments = std::move(arguments)});
}

void EventStream::Step(const std::string& text) {
    Tell("step", {{"text", text}});
}

void EventStream::Note(const std::string& text) {
    Tell("note", {{"text", text}});
}

} // namespace record
