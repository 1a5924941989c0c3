// The windows of the component as the core sees them: a modal value editor for one class of
// value, and the factory that makes them. Headless builds have no factory and no windows.
#pragma once

#include <memory>
#include <string>

#include "interfaces/IObject.h"

namespace zerbin {

struct IValueEditor : virtual IObject {
    // The point to edit: an IAttribute or an IField.
    virtual void DataPoint(std::shared_ptr<IObject> point) = 0;
    // Returns when the editor closes.
    virtual void ShowModal() = 0;
};

struct IEditorFactory : virtual IObject {
    // editorName is one of "frmCPModif1" to "frmCPModif5"; nullptr when none can be made.
    virtual std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) = 0;
};

}  // namespace zerbin
