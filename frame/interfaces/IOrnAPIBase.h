// IOrnAPIBase: the module object, a small factory.
//
// What it is     The object behind the library's one export, OrnDLL. Through it
//                a host finds out which components the module offers, creates
//                and destroys them by row number, and tells the module the two
//                facts that it can learn from the host alone: the path of the
//                module's file, and the host's IOrnAPI.
// Who owns it    The module; one static object from load to unload.
// Which thread   The host's one thread (see IOrnInterface.h). No lock.
//
// How a host drives the module:
//  1. Load the library and call OrnDLL.
//  2. SetModulePath with the full path of the library, SetAPI with its IOrnAPI.
//  3. GetRowCount, then GetRowInterfaceName and GetRowComponentName per row.
//  4. CreateRowObject: the control component (IOrnKVETMCtrl.h).
//  5. GetRequiredCount, GetRequiredName, AttachInterface for each name.
//  6. Init.
//  7. Open, Apply, GetLastError, GetInterface("IOrnKVETMSupp") at will.
//  8. DetachInterface for what was attached; DestroyRowObject.
//  9. Unload.
// Steps 2 and 3 may swap; 5 comes before 6, and 6 before 7.

#ifndef IORNAPIBASE_H
#define IORNAPIBASE_H

#include "IOrnInterface.h"

constexpr char ORN_API_BASE[] = "IOrnAPIBase"; // its name
constexpr int32_t ORN_API_BASE_VERSION = 120;

class IOrnAPIBase : public IOrnInterface {
public:
    /// Slot 6. Returns the number of rows of the factory; 1 right after load.
    virtual int32_t GetRowCount() = 0;

    /// Slot 7. Returns the component name of row `row`, counted from 0; the empty
    /// text for an index below 0 or at or above GetRowCount().
    virtual const char* GetRowComponentName(int32_t row) = 0;

    /// Slot 8. Returns the interface name of row `row`; the empty text for an
    /// index outside the table.
    virtual const char* GetRowInterfaceName(int32_t row) = 0;

    /// Slot 9. Creates the component of row `row` and returns it; null for an
    /// index outside the table and when memory is short. The caller gives it
    /// back to DestroyRowObject with the same row.
    virtual IOrnInterface* CreateRowObject(int32_t row) = 0;

    /// Slot 10. Destroys an object that CreateRowObject made from the same row,
    /// with all that it handed out. Does nothing for a null object or an index
    /// outside the table. While an operation of it is running, its dialogs end as
    /// cancelled, the host's interfaces are not called any more, and the object goes when
    /// the outermost call has ended; the host may let go of its own objects at once,
    /// unless another component is there that uses them.
    virtual void DestroyRowObject(int32_t row, IOrnInterface* object) = 0;

    /// Slot 11. Tells the module the full path of its own file; copied. Null
    /// counts as empty. REQUIRES: called before the first ETM Configuration
    /// dialog and the first InitBoardFile, which look for board files in that
    /// path's directory.
    virtual void SetModulePath(const char* path) = 0;

    /// Slot 12. Returns the path of SetModulePath; null while it is empty.
    /// Remains valid until the next SetModulePath.
    virtual const char* GetModulePath() = 0;

    /// Slot 13. Hands over the host's IOrnAPI, or null to take it back. An object
    /// whose GetInterfaceName is not "IOrnAPI", whatever the case of the letters,
    /// is ignored. The object stays the host's. The control component works
    /// with what AttachInterface gave it, not with this one.
    virtual void SetAPI(IOrnInterface* api) = 0;

protected:
    ~IOrnAPIBase() = default;
};

#if defined(_WIN32)
#define ORN_EXPORT extern "C"
#else
/// What makes OrnDLL an export.
#define ORN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// The module's one export. Returns the module object: never null, the same
/// pointer at each call, without any other effect.
ORN_EXPORT IOrnAPIBase* OrnDLL();

#endif
