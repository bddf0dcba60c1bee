// The export, and the two static objects of the module.

#include "frame/CKVETMCtrlApp.h"
#include "frame/OrnAPIBase.h"
#include "frame/slots.h"

namespace {

// In this order: components that the module object makes use the application.
CKVETMCtrlApp g_Application;
OrnAPIBase g_ModuleObject;

} // namespace

const char* ModulePath() {
    return g_ModuleObject.GetModulePath();
}

IOrnAPIBase* OrnDLL() {
    return &g_ModuleObject;
}
