// What the checker knows of the conversation, beside the objects that stand in it.
//
//     host ──▶ module objects of the checker ──▶ module
//     host ◀── host objects of the checker   ◀── module
//
// There is one for the process, from the first call on and for good: hosts call in while they end,
// and the module keeps pointers to what was attached. What it keeps may be used on any thread: that
// a host calls from another one is something to tell of.

#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "check/Findings.h"
#include "host/record/Event.h"

class IOrnInterface;

namespace hostcheck {

class HostSide;

/// Does `work`; nothing that it throws gets out. For what the checker does by itself.
template <class Work> void Quietly(Work&& work) noexcept {
    try {
        work();
    } catch (...) {
        // Memory is short: the calls go on, and the finding is lost.
    }
}

class Checker {
public:
    Checker(const Checker&) = delete;
    Checker& operator=(const Checker&) = delete;

    static Checker& Get();
    /// The program ends: the last that is to be told, if the checker was of use at all.
    static void End();

    Findings findings;
    record::EventStream events; ///< the recording
    bool records = false;       ///< whether one is wanted

    /// Records a call. What an answer has to have, and this one has not, because the call was not
    /// made or threw, is no, 0, null, or the reason.
    void Record(record::Event event);

    // --- What the host has done -----------------------------------------------------------

    /// A call of the host, of the operation at `place`.
    void Called(const std::string& place);
    /// SetModulePath; `isOwn`: that of the file that the host has loaded.
    void PathTold(const std::string& path, bool isOwn);
    void ApiTold();
    void ComponentMade();
    /// Returns whose proxy `proxy` is, which the module has; null for none.
    HostSide* Find(const IOrnInterface* proxy);
    void Attached(const std::string& name, HostSide* object);

    /// Init, Open, Apply or InitBoardFile on the way; REQUIRES: `end` for each `begin`.
    void BeginWork(const char* operation);
    void EndWork();
    void InitEnded(bool done);

    /// The component goes; `last`: no other one is there.
    void ComponentGone(bool last);
    /// Returns what stands in for the host's `object` as the interface `name`; null for null and
    /// for a name that the module does not know.
    HostSide* Wrap(const std::string& name, IOrnInterface* object);

private:
    Checker();

    void CheckAttachments(const char* operation);

    enum class Init { None, Failed, Done };

    std::mutex m_Mutex;
    std::thread::id m_Thread;
    bool m_PathTold = false, m_ApiTold = false;
    Init m_Init = Init::None;
    int m_Work = 0;       // operations on their way
    int m_Components = 0; // that were made and not destroyed
    struct Attachment {
        HostSide* object = nullptr;
        bool wasThere = false; // ahead of Init
    };
    std::map<std::string, Attachment> m_Attachments;
    std::vector<HostSide*> m_Objects; // all that there were, never freed
};

} // namespace hostcheck
