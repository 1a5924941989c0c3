// The windows of the component as the core sees them: a modal value editor for one class of
// value, the factory that makes them, and the parameter list of a block. Headless builds have
// no factory and no windows.
#pragma once

#include <memory>
#include <string>

#include "interfaces/IObject.h"

namespace zerbin {

struct IAppObject;

struct IValueEditor : virtual IObject {
    // The point to edit: an IAttribute or an IField.
    virtual void DataPoint(std::shared_ptr<IObject> point) = 0;
    // Returns when the editor closes.
    virtual void ShowModal() = 0;
};

// The host's window as the host hands it to IAppObject_Show: under Qt a QWidget*.
struct IHostWindow : virtual IObject {
    virtual void* HostWindow() = 0;
};

struct IEditorFactory : virtual IObject {
    // editorName is one of "frmCPModif1" to "frmCPModif5"; nullptr when none can be made.
    virtual std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) = 0;
    // Shows the parameter list of the block: the open one whose tag is the block's global key
    // again, else a new non-modal one owned by owner (an IHostWindow, or nothing). A factory
    // without windows does nothing.
    virtual void ShowParameterList(std::shared_ptr<IAppObject> /*appObject*/,
                                   std::shared_ptr<IObject> /*owner*/) {}
};

}  // namespace zerbin
