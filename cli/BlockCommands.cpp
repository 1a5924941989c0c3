// image, save, export and load: the commands that give a block values and write it out.
#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <pugixml.hpp>

#include "base/Xml.h"
#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "interfaces/Error.h"
#include "platform/ProjectFile.h"

namespace zerbin::cli {
namespace {

constexpr const char* kProjectRoot = "Project";
constexpr const char* kDefaultKey = "Block1";

// A block of the command's type with the command's keys and values, in the host's order.
class CommandBlock {
public:
    explicit CommandBlock(const CommandContext& context, bool withReferences = true)
        : invocation_(context.invocation),
          block_(context.host, Type(context), Keys(context.invocation)) {
        if (invocation_.x) {
            block_->IAppObject_XPosition(*invocation_.x);
        }
        if (invocation_.y) {
            block_->IAppObject_YPosition(*invocation_.y);
        }
        objections_ =
            block_.Apply(invocation_.sets, withReferences ? invocation_.refs : NoAssignments());
        if (invocation_.exportIndex) {
            block_->IAppObject_ExportIndex(*invocation_.exportIndex);
        }
    }

    CDBAppObject* operator->() const { return block_.operator->(); }

    // Reports each value the editors would have refused; the exit status the command ends
    // with, so that a script hears of them.
    int Report(std::ostream& err) const {
        for (const std::string& objection : objections_) {
            err << kErrorPrefix << objection << '\n';
        }
        return objections_.empty() ? kExitOk : kExitFailure;
    }

private:
    static const std::string& Type(const CommandContext& context) {
        const std::string& type = context.invocation.arguments.front();
        RequireBlockType(context.host.library, type);
        return type;
    }

    static BlockKeys Keys(const Invocation& invocation) {
        return BlockKeys{invocation.userName.value_or(kDefaultKey), invocation.key,
                         invocation.userName};
    }

    static const std::vector<Assignment>& NoAssignments() {
        static const std::vector<Assignment> none;
        return none;
    }

    const Invocation& invocation_;
    HostedBlock block_;
    std::vector<std::string> objections_;
};

// Every image holds at least its header, so an empty one is a failure: a layout beyond the
// image's 255 bytes or a value that cannot be encoded.
std::string Image(CDBAppObject& block, bool intel) {
    std::string image = intel ? block.IAppObject_IntelStream() : block.IAppObject_Stream();
    if (image.empty()) {
        throw Error("the image of block type '" + block.IAppObject_UniqueIDString() +
                    "' cannot be made");
    }
    return image;
}

void PrintDocument(const pugi::xml_document& document, std::ostream& out) {
    xml::Save(document, out);
}

}  // namespace

int RunImage(const CommandContext& context) {
    CommandBlock block(context);
    context.out << Image(*block.operator->(), context.invocation.intel) << '\n';
    return block.Report(context.err);
}

int RunSave(const CommandContext& context) {
    CommandBlock block(context);
    // The project keeps the last image built, so build one as the host does before saving.
    Image(*block.operator->(), false);
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(kProjectRoot);
    block->IAppObject_XmlSave(root, document);
    PrintDocument(document, context.out);
    return block.Report(context.err);
}

int RunExport(const CommandContext& context) {
    CommandBlock block(context, false);
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(kProjectRoot);
    if (context.invocation.exportForm == ExportForm::Simulator) {
        block->IAppObject_XMLSaveSim(root, document);
    } else {
        block->IAppObject_XMLSaveForInteroperability(root, document);
    }
    PrintDocument(document, context.out);
    return block.Report(context.err);
}

int RunLoad(const CommandContext& context) {
    const std::string& file = context.invocation.arguments.front();
    // A block at a time: the project's whole tree would be the load's largest cost in memory.
    std::optional<xml::ElementStream> project;
    try {
        project.emplace(ProjectFile(file).ReadElements());
    } catch (const ProjectFileError& error) {
        throw UnreadableError(error.what());
    }
    int status = kExitOk;
    int index = 0;
    // One buffer for every block's line: its room, once grown, is used again.
    std::string line;
    std::unordered_map<std::string, bool> typeInLibrary;
    while (const pugi::xml_node element = project->Next()) {
        ++index;
        const std::string type = element.name();
        // A type the library lacks is told once; its blocks get no line, as they have no image.
        const auto [known, first] = typeInLibrary.try_emplace(type, false);
        if (first) {
            known->second = HasBlockType(context.host.library, type);
            if (!known->second) {
                context.err << kErrorPrefix << "element " << index << " '" << type
                            << "' of project '" << file << "': no block type '" << type
                            << "' in library '" << context.host.library.string() << "'\n";
            }
        }
        if (!known->second) {
            status = std::max(status, kExitFailure);
            continue;
        }
        try {
            HostedBlock block(context.host, type,
                              BlockKeys{"Block" + std::to_string(index), {}, {}});
            block->IAppObject_XmlLoad(element);
            // The image first: a block whose image fails writes no part of its line.
            const std::string image = Image(*block, context.invocation.intel);
            const std::string userName = block->IAppObject_UserName();
            line.clear();
            AppendEscapedLine(line, userName);
            line.append(1, '\t').append(type).append(1, '\t').append(image).append(1, '\n');
            context.out << line;
            // Entries its type does not define (a missing or changed type) are kept for a save.
            std::string kept;
            for (const std::string& entry : block->KeptProjectEntries()) {
                kept += (kept.empty() ? "" : ", ") + entry;
            }
            if (!kept.empty()) {
                context.err << "zerbin: note: block " << index << " (" << type
                            << ") keeps what its type does not define: " << kept << '\n';
            }
        } catch (const std::exception&) {
            // One block that fails is named and passed by: the rest of the project still loads.
            const std::string where =
                "element " + std::to_string(index) + " '" + type + "' of project '" + file + "': ";
            status = std::max(status, ReportCurrentFailure(context.err, where));
        }
    }
    return status;
}

}  // namespace zerbin::cli
