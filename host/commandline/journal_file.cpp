#include "host/commandline/journal_file.h"

#include <iostream>

#include "host/commandline/actions.h"
#include "host/record/json_lines.h"
#include "host/support/host_error.h"
#include "host/support/refusal.h"
#include "host/support/system.h"
#include "host/support/words.h"

namespace etmhost {

JournalFile::JournalFile(const std::string& name) : m_Name(name) {
    if (const auto path = NativePath(name)) m_Out.open(*path, std::ios::binary | std::ios::trunc);
    if (!m_Out.is_open()) throw HostError("cannot write journal file \"" + Escape(name) + "\"");
}

void JournalFile::Write(const record::Event& event) {
    if (m_Failed) return; // with a gap it would be worth less than its beginning
    m_Out << record::ToJsonLine(event) + '\n' << std::flush;
    if (m_Out) return;
    m_Failed = true;
    PrintRefusal(std::cerr, kProgram,
                 "cannot write journal file \"" + m_Name + "\"; it ends ahead of " +
                     event.operation);
}

} // namespace etmhost
