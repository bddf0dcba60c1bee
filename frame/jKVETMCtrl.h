// jKVETMCtrl: the control component. See IOrnKVETMCtrl.h.
//
// Who owns it: the host, by way of the factory. The settings record and the support
// component, which others reach through the slots, go with the last component.
//
// The host may call in at any moment, from inside its own operations too. What would
// pull something away from under a call on its way waits for the end of that call; see
// toolkit/CallDepth.h.
//
// Where: jKVETMCtrl.cpp; the life of the sheet in Open.cpp.

#pragma once

#include <string>

#include "frame/interfaces/IOrnKVETMCtrl.h"

class jKVETMCtrl final : public IOrnKVETMCtrl {
public:
    jKVETMCtrl();
    /// Destroys a component: at once if nothing is on its way, otherwise when all calls
    /// have ended; then its loops end as cancelled, and the host is called no more.
    /// Null does nothing.
    static void Destroy(jKVETMCtrl* component);
    jKVETMCtrl(const jKVETMCtrl&) = delete;
    jKVETMCtrl& operator=(const jKVETMCtrl&) = delete;

    const char* GetInterfaceName() override;
    int32_t GetInterfaceVersion() override;
    const char* GetComponentName() override;
    int32_t GetComponentVersion() override;
    IOrnInterface* GetInterface(const char* name) override;
    void ReleaseInterface(IOrnInterface* object) override;

    int32_t GetParamCount() override;
    int32_t GetParam(uint32_t id, uint32_t argument) override;
    int32_t SetParam(uint32_t id, uint32_t value) override;
    int32_t CheckParam(uint32_t id, uint32_t value) override;

    int32_t AttachInterface(const char* name, IOrnInterface* object) override;
    int32_t DetachInterface(const char* name) override;
    int32_t GetImplementedCount() override;
    const char* GetImplementedName(int32_t index) override;
    int32_t GetRequiredCount() override;
    const char* GetRequiredName(int32_t index) override;
    int32_t GetRequiredOption(int32_t index) override;
    IOrnInterface* GetAttachedInterface(const char* name) override;

    bool Init(uint32_t option) override;
    bool Open() override;
    bool Apply() override;
    void GetLastError(char* buffer, int32_t size) override;

private:
    class Entry;

    ~jKVETMCtrl();
    static void ServeWhatWaited();
    bool OpenSheet();
    bool OpenInsideSheet();
    bool Fail(std::string reason);

    std::string LastError;
    int m_Calls = 0;             // of Init, Open and Apply that are on their way
    bool m_DestroyLater = false; // the host has given it up
};
