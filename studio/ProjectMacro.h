// The studio's side of the macro view: the parent of every block of a project. The project is
// one flat macro, the root of itself; a block's type selector reads its members and direct
// connections from here before it changes the type of a connected output.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "interfaces/IHostServices.h"

namespace zerbin::studio {

class StudioProject;

class ProjectMacro : public IMacroHost,
                     public IHostContainer,
                     public ITopObject,
                     public IMacro,
                     public std::enable_shared_from_this<ProjectMacro> {
public:
    explicit ProjectMacro(const StudioProject& project) : project_(&project) {}
    // The project is going: every read from now on finds nothing.
    void Detach() { project_ = nullptr; }

    std::shared_ptr<IMacro> Macro() override { return shared_from_this(); }
    std::shared_ptr<IObject> TopObject() override { return shared_from_this(); }
    std::shared_ptr<IMacro> RootMacro() override { return shared_from_this(); }

    // A flat project exposes nothing on a macro boundary.
    std::vector<std::shared_ptr<IMacroAttributeGroup>> AttributeGroups() override { return {}; }
    std::vector<std::shared_ptr<IMacroInputGroup>> InputGroups() override { return {}; }
    std::vector<std::shared_ptr<IMacroOutputGroup>> OutputGroups() override { return {}; }
    std::vector<std::shared_ptr<IObject>> Members() override;
    std::optional<std::vector<std::shared_ptr<IConnection>>> Connections() override;

private:
    const StudioProject* project_;
};

}  // namespace zerbin::studio
