// Where the value editors and the parameter list come from. The core asks this port by editor
// name; a windowed host installs a factory, a headless one leaves none and blocks simply have
// no editor and no window.
#pragma once

#include <memory>
#include <string>

#include "interfaces/IEditors.h"

namespace zerbin {

// nullptr when no factory is installed or it makes no editor of that name.
std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName);
// Whether a factory is installed: a headless host has none, and its blocks make no editors.
bool HasEditorFactory();
// Does nothing when no factory is installed.
void ShowParameterList(std::shared_ptr<IAppObject> appObject, std::shared_ptr<IObject> owner);
// nullptr removes the factory.
void SetEditorFactory(std::shared_ptr<IEditorFactory> factory);

}  // namespace zerbin
