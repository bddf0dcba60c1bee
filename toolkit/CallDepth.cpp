#include "toolkit/CallDepth.h"

#include "toolkit/CWinApp.h"

namespace calls {

namespace {

int g_Counting = 0;
int g_Stack = 0;
void (*g_WhenEnded)() = nullptr;

void Ended() {
    if (g_Stack == 0) AfxGetApp()->ForgetCancel();
    if (g_WhenEnded != nullptr) g_WhenEnded();
}

} // namespace

Counted::Counted() {
    ++g_Counting;
    ++g_Stack;
}

Counted::~Counted() {
    --g_Stack;
    // As the scopes nest, none counts any more behind the last one on the stack.
    if (--g_Counting == 0) Ended();
}

Waiting::Waiting() : m_Waits(g_Counting > 0) {
    if (m_Waits && --g_Counting == 0) Ended();
}

Waiting::~Waiting() {
    if (m_Waits) ++g_Counting;
}

int Counting() {
    return g_Counting;
}

int Stack() {
    return g_Stack;
}

void WhenEnded(void (*action)()) {
    g_WhenEnded = action;
}

} // namespace calls
