// merge: a three-way merge of saved projects by block and setting, written into ours, as git
// runs a merge driver (%O %A %B).
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/ProjectBlockEdit.h"
#include "cli/ProjectModel.h"
#include "parameters/ValueRules.h"

namespace zerbin::cli {
namespace {

using SettingMap = std::unordered_map<std::string, std::string>;

std::optional<std::string> Get(const SettingMap* settings, const std::string& name) {
    if (settings == nullptr) {
        return std::nullopt;
    }
    const auto found = settings->find(name);
    return found == settings->end() ? std::nullopt : std::optional<std::string>(found->second);
}

std::string Shown(const std::optional<std::string>& value) {
    return value ? EscapedLine(*value) : std::string("(none)");
}

class Merge {
public:
    Merge(const CommandContext& context, Project& ours) : context_(context), ours_(ours) {}

    // Takes theirs' changes to a block both sides kept; base is null for a block both added.
    void Block(const std::string& id, pugi::xml_node element, const Settings* base,
               const Settings& theirs) {
        const Settings oursList = ReadSettings(element);
        const SettingMap o(oursList.begin(), oursList.end());
        const SettingMap t(theirs.begin(), theirs.end());
        std::optional<SettingMap> b;
        if (base != nullptr) {
            b.emplace(base->begin(), base->end());
        }
        std::vector<std::string> names;
        std::unordered_set<std::string> seen;
        for (const Settings* list : {&oursList, &theirs, base}) {
            if (list != nullptr) {
                for (const auto& setting : *list) {
                    if (seen.insert(setting.first).second) {
                        names.push_back(setting.first);
                    }
                }
            }
        }
        std::vector<std::string> taken;
        for (const std::string& name : names) {
            const std::optional<std::string> was = Get(b ? &*b : nullptr, name);
            const std::optional<std::string> mine = Get(&o, name);
            const std::optional<std::string> other = Get(&t, name);
            if (other == was || mine == other) {
                continue;
            }
            if (mine == was) {
                WriteSetting(element, name, other);
                taken.push_back(name);
            } else {
                Conflict(EscapedLine(id) + " " + name + ": ours " + Shown(mine) + ", theirs " +
                         Shown(other));
            }
        }
        if (!taken.empty()) {
            Refresh(id, element, o, taken);
        }
    }

    void Conflict(const std::string& line) {
        context_.err << line << '\n';
        conflicts_ = true;
    }

    bool Conflicts() const { return conflicts_; }

private:
    // The values taken from theirs must hold together with ours (a unit or type selector
    // changed on our side): each is judged as the editors would, a refused one goes back to
    // ours and is a conflict. Then the image is made anew.
    void Refresh(const std::string& id, pugi::xml_node element, const SettingMap& ours,
                 const std::vector<std::string>& taken) {
        const HostSettings host = ProjectHost(context_.host, ours_.ShortFloat());
        if (!HasBlockType(host.library, element.name())) {
            return;
        }
        bool reverted = false;
        {
            ProjectBlockEdit edit(host, element, id);
            for (const std::string& name : taken) {
                const std::shared_ptr<IAttribute> attribute =
                    name[0] == '@' ? nullptr : edit.Attribute(name);
                const std::optional<std::string> value = Get(&ours, name);
                const pugi::xml_node saved = ParameterElement(element, name);
                if (!attribute || !saved) {
                    continue;
                }
                const ValueVerdict verdict = CheckValue(*attribute, saved.text().get());
                if (!verdict.Taken()) {
                    Conflict(EscapedLine(id) + " " + name + ": ours " + Shown(value) + ", theirs " +
                             EscapedLine(saved.text().get()) + " (" + verdict.objection + ")");
                    WriteSetting(element, name, value);
                    reverted = true;
                }
            }
            if (!reverted) {
                edit.Store(edit.Values());
            }
        }
        if (reverted) {
            ProjectBlockEdit edit(host, element, id);
            edit.Store(edit.Values());
        }
    }

    const CommandContext& context_;
    Project& ours_;
    bool conflicts_ = false;
};

}  // namespace

int RunMerge(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    const Project base(args[0]);
    Project ours(args[1]);
    const Project theirs(args[2]);

    std::unordered_map<std::string, Settings> baseSettings;
    for (const ProjectBlock& block : base.Blocks()) {
        baseSettings.emplace(block.id, ReadSettings(block.element));
    }
    std::unordered_map<std::string, pugi::xml_node> oursById;
    for (const ProjectBlock& block : ours.Blocks()) {
        oursById.emplace(block.id, block.element);
    }
    std::unordered_set<std::string> inTheirs;
    Merge merge(context, ours);
    std::vector<pugi::xml_node> added;
    for (const ProjectBlock& block : theirs.Blocks()) {
        inTheirs.insert(block.id);
        const auto was = baseSettings.find(block.id);
        const auto mine = oursById.find(block.id);
        const Settings settings = ReadSettings(block.element);
        if (mine != oursById.end() && was == baseSettings.end()) {
            // Both sides placed a block under the same free key: two blocks, not one.
            if (ReadSettings(mine->second) != settings) {
                added.push_back(block.element);
            }
        } else if (mine != oursById.end()) {
            merge.Block(block.id, mine->second, &was->second, settings);
        } else if (was == baseSettings.end()) {
            added.push_back(block.element);
        } else if (settings != was->second) {
            merge.Conflict(EscapedLine(block.id) + ": deleted in ours, changed in theirs");
        }
    }
    for (const ProjectBlock& block : ours.Blocks()) {
        const auto was = baseSettings.find(block.id);
        if (inTheirs.count(block.id) != 0 || was == baseSettings.end()) {
            continue;
        }
        if (ReadSettings(block.element) == was->second) {
            ours.Root().remove_child(block.element);
        } else {
            merge.Conflict(EscapedLine(block.id) + ": deleted in theirs, changed in ours");
        }
    }
    ours.Reindex();
    for (const pugi::xml_node element : added) {
        ours.Adopt(element);
    }
    ours.Write();
    return merge.Conflicts() ? kExitFailure : kExitOk;
}

}  // namespace zerbin::cli
