// Which window edits which class of value, and the parameter list windows of the process.
#pragma once

#include <memory>
#include <string>

class QWidget;

namespace zerbin {

class ValueEditorDialog;
struct IAppObject;
struct IObject;

// "frmCPModif1" to "frmCPModif5" for the seven class words; empty for any other word.
std::string EditorNameForClass(const std::string& typeClass);

// A new value editor by its name; nullptr for a name that is none of the five.
std::unique_ptr<ValueEditorDialog> MakeValueEditorNamed(const std::string& editorName,
                                                        QWidget* parent);
// A new value editor for a class of value; nullptr for a word that is none of the seven.
std::unique_ptr<ValueEditorDialog> MakeValueEditor(const std::string& typeClass, QWidget* parent);

}  // namespace zerbin
