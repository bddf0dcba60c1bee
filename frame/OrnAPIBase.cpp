#include "frame/OrnAPIBase.h"

#include "frame/guard.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/jKVETMCtrl.h"
#include "frame/slots.h"
#include "platform/compare.h"

namespace {

IOrnInterface* CreateCtrl() {
    return GuardedEntry<IOrnInterface*>(
        nullptr, [] { return new jKVETMCtrl; });
}

void DestroyCtrl(IOrnInterface* object) {
    GuardedEntry(
        0,
        [object] {
            jKVETMCtrl::Destroy(static_cast<jKVETMCtrl*>(object));
            return 0;
        });
}

} // namespace

OrnAPIBase::OrnAPIBase() {
    m_Table.AddFactoryRow({ORN_KVETM_CTRL, "KVETMControl", CreateCtrl, DestroyCtrl});
}

const char* OrnAPIBase::GetInterfaceName() {
    return ORN_API_BASE;
}
int32_t OrnAPIBase::GetInterfaceVersion() {
    return ORN_API_BASE_VERSION;
}
const char* OrnAPIBase::GetComponentName() {
    return "OrnAPIBase";
}
int32_t OrnAPIBase::GetComponentVersion() {
    return 120;
}
IOrnInterface* OrnAPIBase::GetInterface(const char*) {
    return nullptr;
}
void OrnAPIBase::ReleaseInterface(IOrnInterface*) {}

int32_t OrnAPIBase::GetRowCount() {
    return m_Table.Count;
}

const char* OrnAPIBase::GetRowComponentName(int32_t row) {
    const FactoryRow* found = m_Table.Find(row);
    return found != nullptr ? found->ComponentName : "";
}

const char* OrnAPIBase::GetRowInterfaceName(int32_t row) {
    const FactoryRow* found = m_Table.Find(row);
    return found != nullptr ? found->InterfaceName : "";
}

IOrnInterface* OrnAPIBase::CreateRowObject(int32_t row) {
    const FactoryRow* found = m_Table.Find(row);
    return found != nullptr ? found->Create() : nullptr;
}

void OrnAPIBase::DestroyRowObject(int32_t row, IOrnInterface* object) {
    const FactoryRow* found = m_Table.Find(row);
    if (found != nullptr) found->Destroy(object);
}

void OrnAPIBase::SetModulePath(const char* path) {
    GuardedEntry(
        0,
        [&] {
            ModulePath = path != nullptr ? path : "";
            return 0;
        });
}

const char* OrnAPIBase::GetModulePath() {
    return ModulePath.empty() ? nullptr : ModulePath.c_str();
}

void OrnAPIBase::SetAPI(IOrnInterface* api) {
    GuardedEntry(
        0,
        [&] {
            if (api == nullptr || CompareNoCase(api->GetInterfaceName(), ORN_API) == 0)
                g_HostAPI = static_cast<IOrnAPI*>(api);
            return 0;
        });
}
