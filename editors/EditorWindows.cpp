#include "editors/EditorWindows.h"

#include "datatypes/TypeClass.h"
#include "editors/frmCPModif1.h"
#include "editors/frmCPModif2.h"
#include "editors/frmCPModif3.h"
#include "editors/frmCPModif4.h"
#include "editors/frmCPModif5.h"

namespace zerbin {

std::string EditorNameForClass(const std::string& typeClass) {
    const TypeClass parsed = ParseTypeClass(typeClass);
    if (IsNumericClass(parsed)) {
        return "frmCPModif1";
    }
    switch (parsed) {
        case TypeClass::Textual:
            return "frmCPModif2";
        case TypeClass::Enum:
            return "frmCPModif3";
        case TypeClass::Struct:
            return "frmCPModif4";
        case TypeClass::Bitfield:
            return "frmCPModif5";
        default:
            return {};
    }
}

std::unique_ptr<ValueEditorDialog> MakeValueEditorNamed(const std::string& editorName,
                                                        QWidget* parent) {
    if (editorName == "frmCPModif1") {
        return std::make_unique<frmCPModif1>(parent);
    }
    if (editorName == "frmCPModif2") {
        return std::make_unique<frmCPModif2>(parent);
    }
    if (editorName == "frmCPModif3") {
        return std::make_unique<frmCPModif3>(parent);
    }
    if (editorName == "frmCPModif4") {
        return std::make_unique<frmCPModif4>(parent);
    }
    if (editorName == "frmCPModif5") {
        return std::make_unique<frmCPModif5>(parent);
    }
    return nullptr;
}

std::unique_ptr<ValueEditorDialog> MakeValueEditor(const std::string& typeClass, QWidget* parent) {
    return MakeValueEditorNamed(EditorNameForClass(typeClass), parent);
}

}  // namespace zerbin
