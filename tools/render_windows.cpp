// Renders the parameter list and each value editor, offscreen, with attributes of the shipped
// block library loaded, to PNG files for the README:
//   render_windows <repository>/data <output folder>
// For each editor the first shipped attribute of its class is shown.
#include <QApplication>
#include <QPixmap>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/Xml.h"
#include "editors/EditorWindows.h"
#include "editors/QtAdapters.h"
#include "editors/ValueEditorDialog.h"
#include "editors/frmMain.h"
#include "interfaces/IAttribute.h"
#include "platform/Files.h"

namespace {

using zerbin::CDBAppObject;
using zerbin::IAttribute;

std::shared_ptr<CDBAppObject> MakeBlock(const std::string& type,
                                        const std::shared_ptr<const pugi::xml_document>& dictionary,
                                        int number) {
    auto block = std::make_shared<CDBAppObject>();
    block->IAppObject_XmlSNVTDoc(dictionary);
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    block->IAppObject_Create();
    block->IAppObject_GlobalKey("B" + std::to_string(number));
    return block;
}

bool Save(QWidget& window, const std::filesystem::path& file) {
    window.show();
    QApplication::processEvents();
    if (!window.grab().save(QString::fromStdString(file.string()))) {
        std::fprintf(stderr, "render_windows: error: cannot write '%s'\n", file.c_str());
        return false;
    }
    std::printf("%s\n", file.c_str());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: render_windows <data folder> <output folder>\n");
        return 2;
    }
    const std::filesystem::path data = argv[1];
    const std::filesystem::path out = argv[2];
    zerbin::InstallQtAdapters();
    zerbin::SetComponentFolder(data / "library" / "component");
    zerbin::xml::ParseError error;
    const std::shared_ptr<const pugi::xml_document> dictionary =
        zerbin::xml::LoadFile(data / "snvts.xml", &error);
    if (!dictionary) {
        std::fprintf(stderr, "render_windows: error: cannot read dictionary: %s\n",
                     error.reason.c_str());
        return 1;
    }

    std::vector<std::shared_ptr<CDBAppObject>> blocks;
    std::map<std::string, std::shared_ptr<IAttribute>> byEditor;
    std::vector<std::filesystem::path> types;
    for (const auto& entry : std::filesystem::directory_iterator(data / "library")) {
        if (entry.is_directory() && entry.path().filename() != "DataSheets") {
            types.push_back(entry.path().filename());
        }
    }
    std::sort(types.begin(), types.end());
    for (const auto& type : types) {
        blocks.push_back(MakeBlock(type.string(), dictionary, static_cast<int>(blocks.size())));
        const auto attributes = blocks.back()->IAppObject_Attributes();
        if (!attributes) {
            continue;
        }
        for (const auto& attribute : attributes->IAttributes_NewEnum()) {
            const std::string name =
                zerbin::EditorNameForClass(attribute->IAttribute_SNVTType()->ISNVType_GenType());
            if (!name.empty() && !byEditor.contains(name)) {
                byEditor[name] = attribute;
            }
        }
    }

    bool ok = true;
    for (const auto& [name, attribute] : byEditor) {
        const auto editor = zerbin::MakeValueEditorNamed(name, nullptr);
        editor->DataPoint(attribute);
        ok = Save(*editor, out / (name + ".png")) && ok;
        editor->reject();
    }
    for (const char* name :
         {"frmCPModif1", "frmCPModif2", "frmCPModif3", "frmCPModif4", "frmCPModif5"}) {
        if (!byEditor.contains(name)) {
            std::fprintf(stderr, "render_windows: warning: no shipped attribute for %s\n", name);
        }
    }

    // The parameter list of the block with the most attributes.
    std::shared_ptr<CDBAppObject> richest;
    int32_t most = -1;
    for (const auto& block : blocks) {
        const auto attributes = block->IAppObject_Attributes();
        if (attributes && attributes->IAttributes_Count() > most) {
            most = attributes->IAttributes_Count();
            richest = block;
        }
    }
    if (richest) {
        zerbin::frmMain* list = zerbin::frmMain::Show(richest, nullptr);
        ok = Save(*list, out / "frmMain.png") && ok;
        list->close();
    }
    byEditor.clear();
    for (const auto& block : blocks) {
        block->IAppObject_Destroy();
    }
    return ok ? 0 : 1;
}
