// jKVETMSupp: the support component. See IOrnKVETMSupp.h.
//
// Who owns it: the control component, which makes it when it is first asked for.

#pragma once

#include <string>

#include "frame/interfaces/IOrnKVETMSupp.h"

class jKVETMSupp final : public IOrnKVETMSupp {
public:
    const char* GetInterfaceName() override;
    int32_t GetInterfaceVersion() override;
    const char* GetComponentName() override;
    int32_t GetComponentVersion() override;
    IOrnInterface* GetInterface(const char* name) override;
    void ReleaseInterface(IOrnInterface* object) override;

    bool InitBoardFile(const char* directory, char* value, uint32_t size, int32_t* mode) override;
    bool CanInitBoardFile() override;
    void GetLastError(char* buffer, int32_t size) override;

private:
    bool SettleSelection(const char* directory);
    bool AskUser();
    bool TakeFixedSelection(const char* selection);
    void Take(int32_t mode, const char* value);

    // The contract's own names.
    std::string LastError;
    int32_t Mode = ORN_MODE_NONE; // what the last call made of the selection
    std::string Value;            // the selection that went with the last other mode
};
