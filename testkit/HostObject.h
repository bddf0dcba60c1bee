// HostObject: the six identity operations of a host's object.
//
// What it is     The part of every host object that has nothing to do with trace: a host
//                derives from it and writes the operations of the interface alone.
// Who owns it    Whoever makes it; the module borrows it while it is attached.
// Which thread   The host's one thread (see IOrnInterface.h).
//
//     class MyTrace : public HostObject<IOrnVETMTrace> {
//     public:
//         MyTrace() : HostObject(ORN_VETM_TRACE) {}
//         ...

#pragma once

#include "IOrnInterface.h"

template <class Interface> class HostObject : public Interface {
public:
    /// `name` is a static text: that of the interface. `component` names the host.
    explicit HostObject(const char* name, int32_t version = 120, const char* component = "TestHost",
                        int32_t componentVersion = 1)
        : m_Name(name), m_Version(version), m_Component(component),
          m_ComponentVersion(componentVersion) {}

    const char* GetInterfaceName() override { return m_Name; }
    int32_t GetInterfaceVersion() override { return m_Version; }
    const char* GetComponentName() override { return m_Component; }
    int32_t GetComponentVersion() override { return m_ComponentVersion; }
    IOrnInterface* GetInterface(const char*) override { return nullptr; }
    void ReleaseInterface(IOrnInterface*) override {}

    const char* m_Name;
    int32_t m_Version;

private:
    const char* m_Component;
    int32_t m_ComponentVersion;
};
