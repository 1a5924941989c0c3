// The project's files: a project, a dictionary or device document read, and every project
// and export written, all through the component's project file service, so that the studio
// reads what the command reads and never leaves a file half written.
#include <exception>

#include "studio/BlockFactory.h"
#include "studio/StudioProject.h"

namespace zerbin::studio {
namespace {

constexpr const char* kRoot = "Project";

}  // namespace

std::shared_ptr<const pugi::xml_document> StudioProject::ReadFile(const std::filesystem::path& file,
                                                                  std::string* why) {
    std::string reason;
    std::shared_ptr<const pugi::xml_document> document =
        BlockFactory::ProjectFiles()->IProjectFiles_Read(file.string(), reason);
    if (document && std::string(document->document_element().name()) != kRoot) {
        reason = "cannot read project '" + file.string() + "': the root element is not \"Project\"";
        document.reset();
    }
    if (!document && why != nullptr) {
        *why = reason;
    }
    return document;
}

namespace {

// Fills a document and writes it through the project file service: all of it or, when false
// comes back with the reason in *why, nothing. A value XML cannot carry is refused while the
// document is filled, before the file is touched.
template <typename Fill>
bool WriteDocument(const std::filesystem::path& file, const std::string& what, Fill&& fill,
                   std::string* why) {
    pugi::xml_document document;
    std::string reason;
    try {
        fill(document);
    } catch (const std::exception& refused) {
        reason = "cannot write " + what + " '" + file.string() + "': " + refused.what();
    }
    const bool written = reason.empty() && BlockFactory::ProjectFiles()->IProjectFiles_Write(
                                               file.string(), document, reason);
    if (!written && why != nullptr) {
        *why = reason;
    }
    return written;
}

}  // namespace

bool StudioProject::WriteFile(const std::filesystem::path& file, std::string* why) const {
    return WriteDocument(
        file, "project", [this](pugi::xml_document& document) { Save(document); }, why);
}

bool StudioProject::ExportImages(const std::filesystem::path& file, std::string* why) const {
    std::string reason;
    const bool written = BlockFactory::ProjectFiles()->IProjectFiles_WriteText(
        file.string(), "export", ImagesText(), reason);
    if (!written && why != nullptr) {
        *why = reason;
    }
    return written;
}

bool StudioProject::ExportForm(const std::filesystem::path& file, bool simulator,
                               std::string* why) const {
    return WriteDocument(
        file, "export",
        [this, simulator](pugi::xml_document& document) {
            pugi::xml_node root = document.append_child(kRoot);
            for (const std::string& key : BlockKeys()) {
                IAppObject& block = *Block(key);
                if (simulator) {
                    block.IAppObject_XMLSaveSim(root, document);
                } else {
                    block.IAppObject_XMLSaveForInteroperability(root, document);
                }
            }
        },
        why);
}

std::shared_ptr<const pugi::xml_document> StudioProject::ReadDocument(
    const std::filesystem::path& file, const std::string& what, std::string* why) {
    std::string reason;
    std::shared_ptr<const pugi::xml_document> document =
        BlockFactory::ProjectFiles()->IProjectFiles_ReadAs(file.string(), what, reason);
    if (!document && why != nullptr) {
        *why = reason;
    }
    return document;
}

}  // namespace zerbin::studio
