#include "toolkit/win32/WindowTable.h"

#include <unordered_map>

namespace {

std::unordered_map<HWND, CWnd*>& Table() {
    static std::unordered_map<HWND, CWnd*> table;
    return table;
}

} // namespace

WindowPeer::WindowPeer(CWnd& model, HWND window) : m_Window(window) {
    Table()[window] = &model;
}

WindowPeer::~WindowPeer() {
    Table().erase(m_Window);
}

WindowPeer* PeerOf(const CWnd& model) {
    return static_cast<WindowPeer*>(model.GetPeer());
}

HWND WindowOf(const CWnd& model) {
    const WindowPeer* peer = PeerOf(model);
    return peer != nullptr ? peer->m_Window : nullptr;
}

CWnd* ModelOf(HWND window) {
    const auto found = Table().find(window);
    return found != Table().end() ? found->second : nullptr;
}

std::string TextOf(HWND window) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(window)) + 1, '\0');
    const int length = GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(length));
    return text;
}
