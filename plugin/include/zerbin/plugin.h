/* The entry points of the plug-in Zerbin.so, the in-process server of the generic application
 * object. A host loads the library with dlopen (its path stands in the registration file that
 * ZerbinRegisterServer writes), looks the functions up with dlsym under the names below, and
 * asks ZerbinGetClassObject for a new block by its ProgID, "Zerbin.CDBAppObject".
 *
 * Calling convention: C linkage and the platform's C calling convention (the System V ABI on
 * Linux). The entry points never throw or unwind into the host; they answer with the result
 * codes of zerbin/zerbin.h. Like every operation of the component they are called on the
 * host's user-interface thread only: the thread of the first ZerbinGetClassObject is taken
 * for it, and an entry point called from another thread does nothing and returns
 * ZERBIN_E_WRONG_THREAD (ZerbinCanUnloadNow and ZerbinReleaseObject answer on any thread).
 *
 * Ownership: ZerbinGetClassObject hands the caller one counted reference to the new object in
 * a ZerbinObject. The caller owns it and gives it back with ZerbinReleaseObject; a C++ host
 * copies the std::shared_ptr out of it first (see zerbin::TakeObject below). The object lives
 * while any reference to it does. The code of every object lives in the library: the host
 * must not dlclose it while ZerbinCanUnloadNow answers ZERBIN_FALSE. A block's members hold
 * their block until IAppObject_Destroy; a member the host keeps after that must be dropped
 * before the library is unloaded, as must every block.
 */
#ifndef ZERBIN_PLUGIN_H
#define ZERBIN_PLUGIN_H

#if defined(__GNUC__)
#define ZERBIN_PLUGIN_EXPORT __attribute__((visibility("default")))
#else
#define ZERBIN_PLUGIN_EXPORT
#endif

/* The result codes, message box styles and answers, unit systems and handler types. */
#include "zerbin/zerbin.h"

#ifdef __cplusplus
#define ZERBIN_PLUGIN_API extern "C" ZERBIN_PLUGIN_EXPORT
#else
#define ZERBIN_PLUGIN_API ZERBIN_PLUGIN_EXPORT
#endif

/* The ProgID of the one class, made of the library's base name; as it ships: */
#define ZERBIN_PROGID "Zerbin.CDBAppObject"

/* A counted reference to an object of the library; opaque to C. */
typedef struct ZerbinObject ZerbinObject;

/* Writes the registration file $XDG_DATA_HOME/zerbin/plugins/<ProgID>.plugin ($XDG_DATA_HOME
 * defaults to ~/.local/share), replacing an older one, with the lines
 *     ProgID=<ProgID>
 *     Path=<absolute path of this library>
 *     Version=<version of this library>
 *     BlockLibrary=<the block library installed with it>   (only when one is found)
 * ZERBIN_OK, ZERBIN_E_REGISTRATION, or ZERBIN_E_OUT_OF_MEMORY. */
ZERBIN_PLUGIN_API int ZerbinRegisterServer(void);

/* Removes that file, and the folders zerbin/plugins and zerbin above it when nothing else is in
 * them. ZERBIN_OK also when there was none; ZERBIN_E_REGISTRATION when it stays;
 * ZERBIN_E_OUT_OF_MEMORY. */
ZERBIN_PLUGIN_API int ZerbinUnregisterServer(void);

/* Creates a new CDBAppObject when progId is this library's ProgID (letter case aside) and
 * stores a reference to it in *object. Any other ProgID gives ZERBIN_E_CLASS_NOT_AVAILABLE
 * and *object = NULL. */
ZERBIN_PLUGIN_API int ZerbinGetClassObject(const char* progId, ZerbinObject** object);

/* ZERBIN_OK when no object made by the library is alive (a block's icon counts, however long
 * the host keeps it after the block) and no ZerbinObject is unreleased, else ZERBIN_FALSE. */
ZERBIN_PLUGIN_API int ZerbinCanUnloadNow(void);

/* Gives back a reference from ZerbinGetClassObject; NULL is ignored. */
ZERBIN_PLUGIN_API void ZerbinReleaseObject(ZerbinObject* object);

/* The project file service (zerbin::IProjectFiles, interfaces/IProjectFiles.h, for C++
 * hosts): projects read through the component's strict XML reader and written atomically,
 * the previous version kept as FILE~. Stores a reference in *object, given back with
 * ZerbinReleaseObject. ZERBIN_OK, ZERBIN_E_INVALID_ARGUMENT or ZERBIN_E_OUT_OF_MEMORY. */
ZERBIN_PLUGIN_API int ZerbinGetProjectFiles(ZerbinObject** object);

/* The block library in which type T is the folder <library>/T with its definition T/T.xml.
 * NULL or "" restores the default, the parent of the library's own folder. A switch drops
 * the types read from the previous library: later blocks take the new library's, blocks
 * alive keep theirs. ZERBIN_OK, or ZERBIN_E_OUT_OF_MEMORY / ZERBIN_E_UNEXPECTED when the
 * process could not take it. */
ZERBIN_PLUGIN_API int ZerbinSetBlockLibrary(const char* library);

/* ---- The component's process-wide services, as a host sets them up ----------------------
 * A host calls these before its first block, or whenever its settings change; they act on
 * every block of the process. A Qt host that has made its QApplication gets the component's
 * own Qt message boxes and event serving without them. */

/* Every message box of the component goes to handler from now on, with context as its first
 * argument. NULL gives the component its own boxes back (Qt boxes in a Qt host, else the
 * text on stderr, answered OK or Yes). ZERBIN_OK. */
ZERBIN_PLUGIN_API int ZerbinSetMessageHandler(ZerbinMessageHandler handler, void* context);

/* Shows a message box as the component shows its own, whatever handler is set: a Qt box in a
 * Qt host, else the text on stderr answered OK (Yes for a question). For a host whose own boxes
 * should look and answer as the component's. Text and caption are UTF-8; style is a
 * ZERBIN_MB_ button set plus icon. Returns the answer (ZERBIN_ID_...), or
 * ZERBIN_E_INVALID_ARGUMENT for a NULL text or caption. */
ZERBIN_PLUGIN_API int ZerbinShowMessageBox(const char* text, const char* caption, int style);

/* Lets the host's queued user-interface events run, then returns. */
typedef void (*ZerbinEventPump)(void* context);

/* The component's long loops call pump (with context) once a pass, so that the host's window
 * stays alive. NULL: nothing is called, not even the component's own Qt event serving; a host
 * sets that before it tears its windows down. ZERBIN_OK. */
ZERBIN_PLUGIN_API int ZerbinSetEventPump(ZerbinEventPump pump, void* context);

/* The unit system of every block's displayed values. ZERBIN_OK, or ZERBIN_E_INVALID_ARGUMENT
 * for another number. */
ZERBIN_PLUGIN_API int ZerbinSetUnitSystem(int system);

/* The types to look the entry points up with dlsym. */
typedef int (*ZerbinRegisterServerFn)(void);
typedef int (*ZerbinUnregisterServerFn)(void);
typedef int (*ZerbinGetClassObjectFn)(const char*, ZerbinObject**);
typedef int (*ZerbinCanUnloadNowFn)(void);
typedef void (*ZerbinReleaseObjectFn)(ZerbinObject*);
typedef int (*ZerbinGetProjectFilesFn)(ZerbinObject**);
typedef int (*ZerbinSetBlockLibraryFn)(const char*);
typedef int (*ZerbinSetMessageHandlerFn)(ZerbinMessageHandler, void*);
typedef int (*ZerbinShowMessageBoxFn)(const char*, const char*, int);
typedef int (*ZerbinSetEventPumpFn)(ZerbinEventPump, void*);
typedef int (*ZerbinSetUnitSystemFn)(int);

#ifdef __cplusplus
#include <memory>

#include "interfaces/IObject.h"

struct ZerbinObject {
    std::shared_ptr<zerbin::IObject> object;
};

namespace zerbin {

/* Copies the reference out of handle and gives the handle back with release. */
inline std::shared_ptr<IObject> TakeObject(ZerbinObject* handle, ZerbinReleaseObjectFn release) {
    std::shared_ptr<IObject> object = handle != nullptr ? handle->object : nullptr;
    release(handle);
    return object;
}

} /* namespace zerbin */
#endif

#endif /* ZERBIN_PLUGIN_H */
