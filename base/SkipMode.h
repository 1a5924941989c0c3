// Skip mode: many operations of the component run under the rule that a step that fails is
// dropped and the next step runs, with the caller hearing nothing. SkipStep is the one way to
// write such a step, so a reader sees at a glance which steps may fail and be dropped; Need
// turns a step through a missing object into such a failure instead of a null dereference.
#pragma once

#include <memory>
#include <new>
#include <utility>

#include <pugixml.hpp>

#include "interfaces/Error.h"

namespace zerbin {

// Runs one step of a skip-mode operation. An exception ends the step and is swallowed; the
// fields the step had not yet written stay as they were. True when the step ran through.
// Running out of memory and a file that cannot be read are not a step's failure but the
// user's to hear of: std::bad_alloc and IoError go on to the caller.
template <class F>
bool SkipStep(F&& step) {
    try {
        std::forward<F>(step)();
        return true;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const IoError&) {
        throw;
    } catch (...) {
        return false;
    }
}

// The object behind p; throws Error(MissingObject) when there is none.
template <class T>
T& Need(const std::shared_ptr<T>& p) {
    if (!p) {
        throw Error("the object is missing", ErrorKind::MissingObject);
    }
    return *p;
}

// n itself; throws Error(MissingObject) when it is empty (a lookup that found nothing).
inline pugi::xml_node Need(pugi::xml_node n) {
    if (!n) {
        throw Error("the element is missing", ErrorKind::MissingObject);
    }
    return n;
}

}  // namespace zerbin
