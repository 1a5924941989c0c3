#include "editors/EditorWindows.h"

#include "datatypes/TypeClass.h"
#include "editors/frmCPModif1.h"
#include "editors/frmCPModif2.h"
#include "editors/frmCPModif3.h"
#include "editors/frmCPModif4.h"
#include "editors/frmCPModif5.h"

namespace zerbin {

std::string EditorNameForClass(const std::string& typeClass) {
    return ValueEditorName(ParseTypeClass(typeClass));
}

bool IsValueEditorName(const std::string& editorName) {
    return editorName == "frmCPModif1" || editorName == "frmCPModif2" ||
           editorName == "frmCPModif3" || editorName == "frmCPModif4" ||
           editorName == "frmCPModif5";
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
