// CKVETMCtrlApp: the module's application object for the toolkit.

#pragma once

#include "toolkit/CWinApp.h"

class CKVETMCtrlApp : public CWinApp {};
