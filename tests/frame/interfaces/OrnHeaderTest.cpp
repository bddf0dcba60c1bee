// orn.h against the C++ headers: the tables have the slots that the compiler gives the classes,
// in its order, with the same arguments and results. The types are held at compile time, those
// of 32-bit Windows with their calling convention among them (tools/check-headers).

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "frame/interfaces/orn.h"

namespace {

// What the compiler does with operations of a class, whatever orn.h says.
#if defined(_WIN32) && defined(__i386__)
#define OF_A_CLASS __attribute__((__thiscall__))
#else
#define OF_A_CLASS
#endif
static_assert(std::is_same_v<decltype(&IOrnXTraceClient::HasCommand),
                             OrnBool (OF_A_CLASS IOrnXTraceClient::*)(const char*)>);

/// How a type of the C++ headers crosses in C.
template <class T> struct InC {
    using Pointed = std::remove_pointer_t<T>;
    using Type = std::conditional_t<std::is_same_v<T, bool>, OrnBool,
                                    std::conditional_t<std::is_class_v<Pointed>, void*, T>>;
};
template <class Result, class Class, class... Arguments>
auto Crosses(Result (Class::*)(Arguments...)) ->
    typename InC<Result>::Type(OF_A_CLASS*)(void*, typename InC<Arguments>::Type...);

/// The number of an operation in the table of its class, which a member pointer holds: behind a
/// one on most machines, twice on those where functions lie at odd addresses.
template <class Member> size_t SlotOf(Member member) {
    ptrdiff_t value = 0;
    std::memcpy(&value, &member, sizeof value);
    return static_cast<size_t>(value - 1) / sizeof(void*);
}

/// A class whose one more operation stands behind all that Interface has.
template <class Interface> struct OneMore : Interface {
    virtual void Last() = 0;

protected:
    ~OneMore() = default;
};

#define SAME(Operation)                                                                            \
    static_assert(                                                                                 \
        std::is_same_v<decltype(Slots::Operation), decltype(Crosses(&Interface::Operation))>);     \
    EXPECT_EQ(offsetof(Slots, Operation), SlotOf(&Interface::Operation) * sizeof(void*))           \
        << #Operation;                                                                             \
    EXPECT_EQ(SlotOf(&Interface::Operation), count++) << #Operation;

#define SAME_ROOT                                                                                  \
    SAME(GetInterfaceName)                                                                         \
    SAME(GetInterfaceVersion)                                                                      \
    SAME(GetComponentName)                                                                         \
    SAME(GetComponentVersion)                                                                      \
    SAME(GetInterface)                                                                             \
    SAME(ReleaseInterface)
#define SAME_PARAM                                                                                 \
    SAME_ROOT                                                                                      \
    SAME(GetParamCount) SAME(GetParam) SAME(SetParam) SAME(CheckParam)
#define SAME_OBJECT                                                                                \
    SAME_PARAM                                                                                     \
    SAME(AttachInterface)                                                                          \
    SAME(DetachInterface)                                                                          \
    SAME(GetImplementedCount)                                                                      \
    SAME(GetImplementedName)                                                                       \
    SAME(GetRequiredCount)                                                                         \
    SAME(GetRequiredName)                                                                          \
    SAME(GetRequiredOption)                                                                        \
    SAME(GetAttachedInterface)

#define SAME_TABLE(Name, Operations)                                                               \
    {                                                                                              \
        SCOPED_TRACE(#Name);                                                                       \
        using Slots = Orn##Name##Slots;                                                            \
        using Interface = IOrn##Name;                                                              \
        size_t count = 0;                                                                          \
        Operations EXPECT_EQ(SlotOf(&OneMore<Interface>::Last), count);                            \
        EXPECT_EQ(sizeof(Slots), count * sizeof(void*));                                           \
    }

TEST(OrnHeader, HasTheTablesOfTheInterfaces) {
    SAME_TABLE(Interface, SAME_ROOT)
    SAME_TABLE(API, SAME_ROOT)
    SAME_TABLE(XTrace, SAME_ROOT)
    SAME_TABLE(Emu, SAME_ROOT)
    SAME_TABLE(IParam, SAME_PARAM)
    SAME_TABLE(Object, SAME_OBJECT)
    SAME_TABLE(APIBase, SAME_ROOT SAME(GetRowCount) SAME(GetRowComponentName)
                            SAME(GetRowInterfaceName) SAME(CreateRowObject) SAME(DestroyRowObject)
                                SAME(SetModulePath) SAME(GetModulePath) SAME(SetAPI))
    SAME_TABLE(KVETMCtrl, SAME_OBJECT SAME(Init) SAME(Open) SAME(Apply) SAME(GetLastError))
    SAME_TABLE(KVETMSupp, SAME_ROOT SAME(InitBoardFile) SAME(CanInitBoardFile) SAME(GetLastError))
    SAME_TABLE(VETMTrace, SAME_ROOT SAME(Command) SAME(GetInfoText) SAME(GetTraceState)
                              SAME(HasFeature) SAME(SetValue) SAME(GetValue) SAME(GetSettingsLine))
    SAME_TABLE(TraceClient, SAME_ROOT SAME(Action))
    SAME_TABLE(XTraceClient, SAME_ROOT SAME(HasCommand) SAME(WriteSetting) SAME(ReadSetting))
}

} // namespace
