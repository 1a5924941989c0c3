/* The C interface of libzerbin.so.1, the engine of the generic application object: blocks
 * made from the block library, their values, images, members and references, and projects
 * read and written through the engine's project file service. Any language that can call C
 * can use it; the library links no window system.
 *
 * Conventions:
 * - Every function that can fail returns ZERBIN_OK or a negative code below, and leaves the
 *   reason in words for ZerbinLastError. None throws or unwinds into the caller.
 * - Texts are UTF-8. A function that hands out text writes it as snprintf does: at most size
 *   bytes, always terminated when size > 0, and the full length without the terminator in
 *   *length (when length is not NULL); the text was cut when *length >= size. A NULL buffer
 *   with size 0 asks only for the length.
 * - Threads: the engine runs on one thread, the host's user-interface thread. The first call
 *   that makes an object (ZerbinBlockNew, ZerbinProjectNew, ZerbinProjectLoad) fixes that
 *   thread for the process; a call from any other thread does nothing and returns
 *   ZERBIN_E_WRONG_THREAD (ZerbinLastError and ZerbinVersion work on every thread).
 * - Handles are owned by the caller and given back with their Free function; NULL is ignored.
 *
 * Compiles as C89 and later and as C++98 and later. */
#ifndef ZERBIN_ZERBIN_H
#define ZERBIN_ZERBIN_H

#include <stddef.h>

#if defined(__GNUC__)
#define ZERBIN_EXPORT __attribute__((visibility("default")))
#else
#define ZERBIN_EXPORT
#endif

#ifdef __cplusplus
#define ZERBIN_API extern "C" ZERBIN_EXPORT
#else
#define ZERBIN_API ZERBIN_EXPORT
#endif

/* The version of this header; ZerbinVersion() gives that of the library loaded. */
#define ZERBIN_VERSION_MAJOR 1
#define ZERBIN_VERSION_MINOR 0
#define ZERBIN_VERSION_PATCH 0
#define ZERBIN_HEADER_VERSION \
    (ZERBIN_VERSION_MAJOR * 10000 + ZERBIN_VERSION_MINOR * 100 + ZERBIN_VERSION_PATCH)

/* Result codes, shared with the plug-in's entry points (zerbin/plugin.h). */
#define ZERBIN_OK 0                       /* done; for ZerbinCanUnloadNow: it may be unloaded */
#define ZERBIN_FALSE 1                    /* ZerbinCanUnloadNow: objects of it are alive */
#define ZERBIN_E_CLASS_NOT_AVAILABLE (-1) /* no class of that ProgID in this library */
#define ZERBIN_E_INVALID_ARGUMENT (-2)    /* a null pointer where one is needed, a bad number */
#define ZERBIN_E_REGISTRATION (-3)        /* the registration file can't be written or removed */
#define ZERBIN_E_OUT_OF_MEMORY (-4)
#define ZERBIN_E_UNEXPECTED (-5)   /* the engine failed; ZerbinLastError says how */
#define ZERBIN_E_WRONG_THREAD (-6) /* called from another thread than the host's */
#define ZERBIN_E_NOT_FOUND (-7)    /* no such block type, attribute, input or output */
#define ZERBIN_E_REFUSED (-8)      /* a value the rules refuse; the old value stays */
#define ZERBIN_E_FILE (-9)         /* a file could not be read or written */

/* The style of a message box: one of the button sets plus one of the icons. */
#define ZERBIN_MB_OK 0x00
#define ZERBIN_MB_OKCANCEL 0x01
#define ZERBIN_MB_YESNOCANCEL 0x03
#define ZERBIN_MB_YESNO 0x04
#define ZERBIN_MB_BUTTONS 0x0F /* the mask of the button set */
#define ZERBIN_MB_ICONCRITICAL 0x10
#define ZERBIN_MB_ICONQUESTION 0x20
#define ZERBIN_MB_ICONEXCLAMATION 0x30
#define ZERBIN_MB_ICONINFORMATION 0x40
#define ZERBIN_MB_ICONS 0xF0 /* the mask of the icon */

/* What the user answered a message box. */
#define ZERBIN_ID_OK 1
#define ZERBIN_ID_CANCEL 2
#define ZERBIN_ID_YES 6
#define ZERBIN_ID_NO 7

/* Shows one message box of the component and returns the answer (ZERBIN_ID_...). Text and
 * caption are UTF-8; lines in the text are broken with "\r\n". */
typedef int (*ZerbinMessageHandler)(void* context, const char* text, const char* caption,
                                    int style);

/* The units the user sees values in. */
#define ZERBIN_UNITS_SI 0
#define ZERBIN_UNITS_US 1 /* US customary */

/* The kinds of a block's members. */
#define ZERBIN_ATTRIBUTE 0 /* a configuration parameter */
#define ZERBIN_INPUT 1     /* an input reference */
#define ZERBIN_OUTPUT 2    /* an output reference */

/* ---- The library -------------------------------------------------------------------------- */

/* ZERBIN_HEADER_VERSION of the library loaded: a host built against a newer minor version checks
 * it. */
ZERBIN_API int ZerbinVersion(void);

/* The last failure of the calling thread, in words; "" when there was none. Valid until the
 * thread's next call. */
ZERBIN_API const char* ZerbinLastError(void);

/* What every later block is made from: the block library folder (type T is T/T.xml in it), the
 * SNVT dictionary and the owner device document. NULL takes the one installed with the
 * library; an owner device of "" gives none. The documents are read here, strictly: a file
 * that cannot be read gives ZERBIN_E_FILE and changes nothing. Blocks alive keep what they
 * were made from; a switch of library drops the types read from the old one. */
ZERBIN_API int ZerbinOpenLibrary(const char* library, const char* dictionary,
                                 const char* ownerDevice);

/* Every message box of the engine goes to handler from now on, with context as its first
 * argument; NULL prints "TITLE: TEXT" on stderr and answers OK (Yes to a question). */
ZERBIN_API int ZerbinOnMessage(ZerbinMessageHandler handler, void* context);

/* The unit system of every block's displayed values: ZERBIN_UNITS_SI or ZERBIN_UNITS_US. */
ZERBIN_API int ZerbinUseUnits(int system);

/* ---- Blocks ------------------------------------------------------------------------------- */

typedef struct ZerbinBlock ZerbinBlock;

/* A new block of the type from the current library, made in the order a host keeps
 * (dictionary, type, owner device, create). ZERBIN_E_NOT_FOUND when the library has no such
 * type; *block is NULL on failure. */
ZERBIN_API int ZerbinBlockNew(const char* type, ZerbinBlock** block);

/* Takes the block apart and frees it. */
ZERBIN_API void ZerbinBlockFree(ZerbinBlock* block);

/* The block's type name. */
ZERBIN_API int ZerbinBlockType(const ZerbinBlock* block, char* buffer, size_t size, size_t* length);

/* The name the user gave the block, and its write. */
ZERBIN_API int ZerbinBlockUserName(const ZerbinBlock* block, char* buffer, size_t size,
                                   size_t* length);
ZERBIN_API int ZerbinBlockSetUserName(ZerbinBlock* block, const char* name);

/* The key the host knows the block by; its members' keys are made from it. */
ZERBIN_API int ZerbinBlockSetKey(ZerbinBlock* block, const char* key);

/* Writes an attribute's stored value as the command's --set does, by the rules the editors
 * follow: a label of a list is taken for its code. A value the rules refuse returns
 * ZERBIN_E_REFUSED with the reason for ZerbinLastError, and the old value stays. */
ZERBIN_API int ZerbinBlockSetValue(ZerbinBlock* block, const char* attribute, const char* value);

/* An attribute's stored value. */
ZERBIN_API int ZerbinBlockValue(const ZerbinBlock* block, const char* attribute, char* buffer,
                                size_t size, size_t* length);

/* The block's image: two upper-case hexadecimal digits a byte, in the controller's byte order,
 * or in the other form when intelOrder is not 0. */
ZERBIN_API int ZerbinBlockImage(ZerbinBlock* block, int intelOrder, char* buffer, size_t size,
                                size_t* length);

/* How many members of a kind (ZERBIN_ATTRIBUTE, ZERBIN_INPUT, ZERBIN_OUTPUT) the block has. */
ZERBIN_API int ZerbinBlockMemberCount(const ZerbinBlock* block, int kind, size_t* count);

/* The name of member index (from 0) of a kind, in the definition's order. */
ZERBIN_API int ZerbinBlockMemberName(const ZerbinBlock* block, int kind, size_t index, char* buffer,
                                     size_t size, size_t* length);

/* The class of a member's value type: "SignedNumeric", "UnsignedNumeric", "Bitfield", "Enum",
 * "Float", "Textual" or "Struct"; "" when it has no type. */
ZERBIN_API int ZerbinBlockMemberClass(const ZerbinBlock* block, int kind, const char* name,
                                      char* buffer, size_t size, size_t* length);

/* The reference of an input (four hexadecimal digits, six for an extended input) or the code
 * that stands for an output, for an input that connects to it. */
ZERBIN_API int ZerbinBlockReference(const ZerbinBlock* block, int kind, const char* name,
                                    char* buffer, size_t size, size_t* length);

/* Connects an input: writes its reference, which must fill the input's place exactly
 * (ZERBIN_E_REFUSED otherwise). */
ZERBIN_API int ZerbinBlockSetReference(ZerbinBlock* block, const char* input,
                                       const char* reference);

/* ---- Projects ----------------------------------------------------------------------------- */

/* The blocks of one project file, in its order; the project owns them. */
typedef struct ZerbinProject ZerbinProject;

/* An empty project. */
ZERBIN_API int ZerbinProjectNew(ZerbinProject** project);

/* Reads a project strictly and makes each of its blocks from the current library, keyed
 * "Block1", "Block2", ... in order, with the values the file holds. A file that cannot be
 * read gives ZERBIN_E_FILE; a block whose type the library lacks, ZERBIN_E_NOT_FOUND. */
ZERBIN_API int ZerbinProjectLoad(const char* file, ZerbinProject** project);

/* Writes the project atomically: the whole file or nothing, the previous version kept as
 * FILE~. ZERBIN_E_FILE when it cannot be written; the old file then stays as it was. */
ZERBIN_API int ZerbinProjectSave(const ZerbinProject* project, const char* file);

/* Frees the project and its blocks. */
ZERBIN_API void ZerbinProjectFree(ZerbinProject* project);

/* How many blocks the project holds; 0 for NULL. */
ZERBIN_API size_t ZerbinProjectCount(const ZerbinProject* project);

/* Block index (from 0), still owned by the project; NULL when there is none. */
ZERBIN_API ZerbinBlock* ZerbinProjectBlock(const ZerbinProject* project, size_t index);

/* Hands a block to the project, which frees it with itself; it is saved last. */
ZERBIN_API int ZerbinProjectAdd(ZerbinProject* project, ZerbinBlock* block);

#endif /* ZERBIN_ZERBIN_H */
