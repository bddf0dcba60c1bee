// OrnAPIBase: the module object behind OrnDLL. See IOrnAPIBase.h.

#pragma once

#include <string>

#include "frame/FactoryTable.h"
#include "frame/interfaces/IOrnAPIBase.h"

class OrnAPIBase final : public IOrnAPIBase {
public:
    OrnAPIBase();

    const char* GetInterfaceName() override;
    int32_t GetInterfaceVersion() override;
    const char* GetComponentName() override;
    int32_t GetComponentVersion() override;
    IOrnInterface* GetInterface(const char* name) override;
    void ReleaseInterface(IOrnInterface* object) override;

    int32_t GetRowCount() override;
    const char* GetRowComponentName(int32_t row) override;
    const char* GetRowInterfaceName(int32_t row) override;
    IOrnInterface* CreateRowObject(int32_t row) override;
    void DestroyRowObject(int32_t row, IOrnInterface* object) override;
    void SetModulePath(const char* path) override;
    const char* GetModulePath() override;
    void SetAPI(IOrnInterface* api) override;

private:
    FactoryTable m_Table;
    std::string ModulePath; // the contract's own name
};
