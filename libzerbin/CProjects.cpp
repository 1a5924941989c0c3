// Projects of the C interface: read through the project file service's strict reader, their
// blocks made as `zerbin load` makes them, written back atomically.
#include <memory>
#include <string>
#include <vector>

#include "libzerbin/Block.h"
#include "libzerbin/CallGuard.h"
#include "platform/Files.h"
#include "platform/ProjectFile.h"

struct ZerbinProject {
    std::string root = "Project";
    std::vector<std::unique_ptr<ZerbinBlock>> blocks;
};

using namespace zerbin::capi;

ZERBIN_API int ZerbinProjectNew(ZerbinProject** project) {
    return Guarded(true, [&] {
        Require(project, "project");
        *project = new ZerbinProject;
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinProjectLoad(const char* file, ZerbinProject** project) {
    return Guarded(true, [&] {
        Require(project, "project");
        *project = nullptr;
        Require(file, "file");
        std::shared_ptr<const pugi::xml_document> document;
        try {
            document = zerbin::ProjectFile(file).Read();
        } catch (const zerbin::ProjectFileError& error) {
            throw Failure(ZERBIN_E_FILE, error.what());
        }
        auto loaded = std::make_unique<ZerbinProject>();
        loaded->root = document->document_element().name();
        int index = 0;
        for (pugi::xml_node element : document->document_element().children()) {
            if (element.type() != pugi::node_element) {
                continue;
            }
            const std::string where = "element " + std::to_string(++index) + " '" + element.name() +
                                      "' of project '" + file + "': ";
            try {
                auto block = MakeBlock(element.name(), "Block" + std::to_string(index));
                block->block->IAppObject_XmlLoad(element);
                loaded->blocks.push_back(std::move(block));
            } catch (const Failure& failure) {
                throw Failure(failure.Code(), where + failure.what());
            }
        }
        *project = loaded.release();
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinProjectSave(const ZerbinProject* project, const char* file) {
    return Guarded(false, [&] {
        Require(project, "project");
        Require(file, "file");
        pugi::xml_document document;
        pugi::xml_node root = document.append_child(project->root.c_str());
        for (const auto& block : project->blocks) {
            block->block->IAppObject_XmlSave(root, document);
            // What the block's type was, so that a later load can tell it changed since.
            const std::string stamp = block->block->ITypeChange_Stamp();
            if (!stamp.empty()) {
                root.last_child().append_attribute(zerbin::kTypeStampAttribute) = stamp.c_str();
            }
        }
        try {
            zerbin::ProjectFile(file).Write(document);
        } catch (const zerbin::ProjectFileError& error) {
            throw Failure(ZERBIN_E_FILE, error.what());
        }
        return ZERBIN_OK;
    });
}

ZERBIN_API void ZerbinProjectFree(ZerbinProject* project) {
    Guarded(false, [&] {
        delete project;
        return ZERBIN_OK;
    });
}

ZERBIN_API size_t ZerbinProjectCount(const ZerbinProject* project) {
    return project != nullptr && zerbin::capi::ThreadAllowed(false) ? project->blocks.size() : 0;
}

ZERBIN_API ZerbinBlock* ZerbinProjectBlock(const ZerbinProject* project, size_t index) {
    if (project == nullptr || index >= project->blocks.size() || !ThreadAllowed(false)) {
        return nullptr;
    }
    return project->blocks[index].get();
}

ZERBIN_API int ZerbinProjectAdd(ZerbinProject* project, ZerbinBlock* block) {
    return Guarded(false, [&] {
        Require(project, "project");
        Require(block, "block");
        project->blocks.emplace_back(block);
        return ZERBIN_OK;
    });
}
