// A block whose type may change under saved projects, as a host that keeps projects sees it.
// A host writing a project records ITypeChange_Stamp() on each block element, as the XML
// attribute "TypeStamp" beside its own; the block's IAppObject_XmlLoad reads it back and, when
// the type changed since, takes every saved value that still fits, keeps the others as saved
// and tells the user once per type. The host marks such blocks and offers to update them.
#pragma once

#include <string>
#include <vector>

#include "interfaces/IObject.h"

namespace zerbin {

// The XML attribute of a block element in a project that holds the stamp.
inline constexpr const char* kTypeStampAttribute = "TypeStamp";

struct ITypeChange : virtual IObject {
    // The stamp to record: the type's as it stands ("HHHHHHHH@VERSION": a short hash of the
    // definition and the library's version), or, for a block loaded changed and not updated
    // since, the one it was saved under, so that the next load finds the change again. Empty
    // when the type's definition is not loaded: then the host records none.
    virtual std::string ITypeChange_Stamp() = 0;
    // Whether the last project load found the type changed since the block was saved: the
    // stamps differ, or the project names a parameter or output the type no longer has.
    virtual bool ITypeChange_IsChanged() = 0;
    // What changed, one line each for the user, empty when nothing did:
    //   "type changed: saved as STAMP, now STAMP"   ("(no stamp)" for a project without one)
    //   "NAME 'VALUE' kept: REASON"                 a saved value the type no longer takes
    //   "output NAME kept: REASON"                  a displayable output the type lacks
    //   "NAME new: 'VALUE'"                         a parameter the project gave no value
    virtual std::vector<std::string> ITypeChange_Changes() = 0;
    // "Update to the library's type": each kept value is written through the editors' rules
    // where a parameter of its name now takes it; the rest is dropped and returned, one line
    // each: "NAME 'VALUE': REASON" or "output NAME: REASON". Afterwards the block is not
    // changed and its stamp is the type's. A host undoes it by restoring the block from the
    // element it saved before.
    virtual std::vector<std::string> ITypeChange_Update() = 0;
};

}  // namespace zerbin
