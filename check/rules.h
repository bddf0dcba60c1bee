// The rules of the contract that can be seen from between a host and the module. Reports,
// "etmhost check --rules" and docs/checking.md come from this table.

#pragma once

#include <cstddef>
#include <iterator>

namespace hostcheck {

enum class Rule {
    ModulePath,
    CallOrder,
    OtherThread,
    AttachmentMissing,
    WrongObject,
    NamelessObject,
    MissingOperation,
    ObjectGone,
    Exception,
    BadText,
    ShortLivedText,
    ChangedText,
    EmptyRefusal,
    ReportEnd,
    ReportValue,
    LinesEnd,
    LineBreak,
    ValueNotWritten,
    BufferOverrun,
    SettingEnd,
    SettingLost,
    AfterDestroy,
    WrongDestroy,
    DetachForgotten,
    DestroyForgotten,
    TrueNotOne,
    OldVersion,
    AttachmentAbsent,
    OtherLibrarysStream,
};

/// A breach is a fault of the host; a remark is legal, or can only be suspected.
enum class Kind { Breach, Remark };

struct RuleText {
    Rule rule;
    Kind kind;
    const char* name;
    const char* sentence;
};

inline constexpr RuleText kRules[] = {
    {Rule::ModulePath, Kind::Breach, "module-path",
     "SetModulePath tells the full path of the file that was loaded, ahead of the first Open or "
     "InitBoardFile."},
    {Rule::CallOrder, Kind::Breach, "call-order",
     "AttachInterface comes before Init, and a successful Init before Open, Apply and "
     "InitBoardFile."},
    {Rule::OtherThread, Kind::Breach, "other-thread", "All calls are made on one thread."},
    {Rule::AttachmentMissing, Kind::Breach, "attachment-missing",
     "IOrnAPI, IOrnVETMTrace and IOrnXTraceClient are attached at Init and while the dialog or an "
     "apply needs them."},
    {Rule::WrongObject, Kind::Breach, "wrong-object",
     "The object that is handed over for an interface gives the name of that interface."},
    {Rule::NamelessObject, Kind::Breach, "nameless-object",
     "GetInterfaceName and GetComponentName give a name, neither null nor an empty text."},
    {Rule::MissingOperation, Kind::Breach, "missing-operation",
     "An object begins with a pointer to its table, and the table has every operation of the "
     "interface."},
    {Rule::ObjectGone, Kind::Breach, "object-gone", "An object outlives its attachment."},
    {Rule::Exception, Kind::Breach, "exception", "No exception leaves an operation of the host."},
    {Rule::BadText, Kind::Breach, "bad-text",
     "A text is memory that can be read, up to a NUL at its end."},
    {Rule::ShortLivedText, Kind::Breach, "short-lived-text",
     "A text that an operation returned remains valid until the next call on the same interface, "
     "and a name for good."},
    {Rule::ChangedText, Kind::Breach, "changed-text",
     "A text that an operation returned stays as it is until the next call on the same interface, "
     "and a name for good."},
    {Rule::EmptyRefusal, Kind::Breach, "empty-refusal",
     "Command returns null, or a text that says what went wrong."},
    {Rule::ReportEnd, Kind::Breach, "report-end",
     "The capability report has a NUL at its end, and none before."},
    {Rule::ReportValue, Kind::Breach, "report-value",
     "Behind each label in the capability report stand a colon and a value of its form."},
    {Rule::LinesEnd, Kind::Breach, "lines-end",
     "Behind the last settings line GetSettingsLine returns null, not an empty text or yet another "
     "line."},
    {Rule::LineBreak, Kind::Breach, "line-break", "A settings line comes without its line end."},
    {Rule::ValueNotWritten, Kind::Breach, "value-not-written",
     "GetValue and ReadSetting that answer true have written all of what they were asked for."},
    {Rule::BufferOverrun, Kind::Breach, "buffer-overrun",
     "Nothing is written behind the 32 bits of a word, or the size of a buffer."},
    {Rule::SettingEnd, Kind::Breach, "setting-end",
     "The text of ReadSetting has its NUL within the size of the buffer."},
    {Rule::SettingLost, Kind::Breach, "setting-lost",
     "What WriteSetting has taken with true is what ReadSetting gives next."},
    {Rule::AfterDestroy, Kind::Breach, "after-destroy",
     "A component that was destroyed, and its support component, are not called any more."},
    {Rule::WrongDestroy, Kind::Breach, "wrong-destroy",
     "DestroyRowObject gets what CreateRowObject made from the same row, once."},
    {Rule::DetachForgotten, Kind::Breach, "detach-forgotten",
     "What was attached is detached before the last component is destroyed."},
    {Rule::DestroyForgotten, Kind::Breach, "destroy-forgotten",
     "Each component is destroyed before the program ends."},
    {Rule::TrueNotOne, Kind::Remark, "true-not-one",
     "A true other than 1 is legal; a host that answers so may have returned a wider type."},
    {Rule::OldVersion, Kind::Remark, "old-version",
     "An IOrnXTraceClient below version 111 is legal; its HasCommand is never called."},
    {Rule::AttachmentAbsent, Kind::Remark, "attachment-absent",
     "IOrnTraceClient, IOrnXTrace, IOrnEmu and SetAPI may be left out; what they are for is "
     "missing."},
    {Rule::OtherLibrarysStream, Kind::Remark, "other-librarys-stream",
     "The code that answers \"capability\" seems to use another C++ library than the module, whose "
     "streams it cannot write; orn_stream_write can."},
};

constexpr bool RulesAreInOrder() {
    for (size_t i = 0; i < std::size(kRules); ++i)
        if (static_cast<size_t>(kRules[i].rule) != i) return false;
    return std::size(kRules) == static_cast<size_t>(Rule::OtherLibrarysStream) + 1;
}
static_assert(RulesAreInOrder());

constexpr const RuleText& TextOf(Rule rule) {
    return kRules[static_cast<size_t>(rule)];
}

} // namespace hostcheck
