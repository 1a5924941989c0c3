// merge: a three-way merge of saved projects by block and setting, written into ours, as git
// runs a merge driver (%O %A %B).
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
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

// A block's settings looked up by name without copying them: sorted views into the list,
// the first of a name that stands twice (as a map made from the list would keep it) first.
class SettingIndex {
public:
    explicit SettingIndex(const Settings& settings) {
        entries_.reserve(settings.size());
        for (std::size_t i = 0; i < settings.size(); ++i) {
            entries_.push_back(Entry{settings[i].first, &settings[i].second, i});
        }
        std::stable_sort(entries_.begin(), entries_.end(),
                         [](const Entry& a, const Entry& b) { return a.name < b.name; });
    }

    // The value, or nullptr when the block has no such setting.
    const std::string* Get(std::string_view name) const {
        const Entry* entry = Find(name);
        return entry == nullptr ? nullptr : entry->value;
    }
    bool Has(std::string_view name) const { return Find(name) != nullptr; }
    // Whether the setting at place in the list is the first of its name there.
    bool IsFirst(std::string_view name, std::size_t place) const {
        const Entry* entry = Find(name);
        return entry != nullptr && entry->place == place;
    }

private:
    struct Entry {
        std::string_view name;
        const std::string* value;
        std::size_t place;
    };
    const Entry* Find(std::string_view name) const {
        const auto found = std::lower_bound(
            entries_.begin(), entries_.end(), name,
            [](const Entry& entry, std::string_view key) { return entry.name < key; });
        return found != entries_.end() && found->name == name ? &*found : nullptr;
    }
    std::vector<Entry> entries_;
};

const std::string* Get(const SettingIndex* settings, std::string_view name) {
    return settings == nullptr ? nullptr : settings->Get(name);
}

bool Same(const std::string* a, const std::string* b) {
    return a == b || (a != nullptr && b != nullptr && *a == *b);
}

std::optional<std::string> Optional(const std::string* value) {
    return value == nullptr ? std::nullopt : std::optional<std::string>(*value);
}

std::string Shown(const std::string* value) {
    return value != nullptr ? EscapedLine(*value) : std::string("(none)");
}

class Merge {
public:
    Merge(const CommandContext& context, Project& ours) : context_(context), ours_(ours) {}

    // Takes theirs' changes to a block both sides kept; base is null for a block both added.
    void Block(const std::string& id, pugi::xml_node element, const Settings* base,
               const Settings& theirs) {
        const Settings oursList = ReadSettings(element);
        const SettingIndex o(oursList);
        const SettingIndex t(theirs);
        std::optional<SettingIndex> b;
        if (base != nullptr) {
            b.emplace(*base);
        }
        // Every name once, in the order ours, theirs and base first give it.
        std::vector<std::string_view> names;
        const std::pair<const Settings*, const SettingIndex*> lists[] = {
            {&oursList, &o}, {&theirs, &t}, {base, b ? &*b : nullptr}};
        for (std::size_t k = 0; k < 3; ++k) {
            const auto& [list, index] = lists[k];
            if (list == nullptr) {
                continue;
            }
            for (std::size_t i = 0; i < list->size(); ++i) {
                const std::string_view name = (*list)[i].first;
                bool earlier = false;
                for (std::size_t before = 0; before < k && !earlier; ++before) {
                    earlier = lists[before].second != nullptr && lists[before].second->Has(name);
                }
                if (!earlier && index->IsFirst(name, i)) {
                    names.push_back(name);
                }
            }
        }
        std::vector<std::string> taken;
        for (const std::string_view name : names) {
            const std::string* was = Get(b ? &*b : nullptr, name);
            const std::string* mine = Get(&o, name);
            const std::string* other = Get(&t, name);
            if (Same(other, was) || Same(mine, other)) {
                continue;
            }
            if (Same(mine, was)) {
                WriteSetting(element, std::string(name), Optional(other));
                taken.emplace_back(name);
            } else {
                Conflict(EscapedLine(id) + " " + std::string(name) + ": ours " + Shown(mine) +
                         ", theirs " + Shown(other));
            }
        }
        if (!taken.empty()) {
            Refresh(id, element, o, taken);
        }
    }

    // Conflicts are told in the order of the blocks they concern (theirs' order, then ours'
    // blocks that theirs deleted), whichever step finds them.
    void At(std::size_t place) { place_ = place; }
    void Conflict(const std::string& line) { conflicts_.emplace_back(place_, line); }

    // Tells the conflicts; true when there was one.
    bool TellConflicts() {
        std::stable_sort(conflicts_.begin(), conflicts_.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (const auto& conflict : conflicts_) {
            context_.err << conflict.second << '\n';
        }
        return !conflicts_.empty();
    }

private:
    // The values taken from theirs must hold together with ours (a unit or type selector
    // changed on our side): each is judged as the editors would, a refused one goes back to
    // ours and is a conflict. Then the image is made anew.
    void Refresh(const std::string& id, pugi::xml_node element, const SettingIndex& ours,
                 const std::vector<std::string>& taken) {
        const HostSettings host = ProjectHost(context_.host, ours_.ShortFloat());
        // Asked once a type: the library does not change during the merge.
        const auto known = knownTypes_.try_emplace(element.name(), false);
        if (known.second) {
            known.first->second = HasBlockType(host.library, element.name());
        }
        if (!known.first->second) {
            return;
        }
        bool reverted = false;
        const bool rewired = std::any_of(taken.begin(), taken.end(), [](const std::string& name) {
            return name.rfind(kWirePrefix, 0) == 0;
        });
        {
            ProjectBlockEdit edit(host, element, id);
            for (const std::string& name : taken) {
                const std::shared_ptr<IAttribute> attribute =
                    name[0] == '@' ? nullptr : edit.Attribute(name);
                const std::string* value = ours.Get(name);
                const pugi::xml_node saved = ParameterElement(element, name);
                if (!attribute || !saved) {
                    continue;
                }
                const ValueVerdict verdict = CheckValue(*attribute, saved.text().get());
                if (!verdict.Taken()) {
                    Conflict(EscapedLine(id) + " " + name + ": ours " + Shown(value) + ", theirs " +
                             EscapedLine(saved.text().get()) + " (" + verdict.objection + ")");
                    WriteSetting(element, name, Optional(value));
                    reverted = true;
                }
            }
            if (!reverted) {
                if (rewired) {
                    edit.Rewire(ours_);
                }
                edit.StoreImage();
            }
        }
        if (reverted) {
            ProjectBlockEdit edit(host, element, id);
            if (rewired) {
                edit.Rewire(ours_);
            }
            edit.StoreImage();
        }
    }

    const CommandContext& context_;
    Project& ours_;
    std::unordered_map<std::string, bool> knownTypes_;
    std::size_t place_ = 0;
    std::vector<std::pair<std::size_t, std::string>> conflicts_;
};

}  // namespace

int RunMerge(const CommandContext& context) {
    const std::vector<std::string>& args = context.invocation.arguments;
    const Project base(args[0]);
    Project ours(args[1]);
    // Changed in memory only: its wires follow the blocks it added that come in renamed.
    Project theirs(args[2]);

    // Most blocks are as base has them on one side at least: their elements compare equal
    // without being read as settings, which is what a merge of thousands of blocks costs.
    std::unordered_map<std::string, pugi::xml_node> baseById;
    for (const ProjectBlock& block : base.Blocks()) {
        baseById.emplace(block.id, block.element);
    }
    std::unordered_map<std::string, pugi::xml_node> oursById;
    for (const ProjectBlock& block : ours.Blocks()) {
        oursById.emplace(block.id, block.element);
    }
    std::unordered_set<std::string> inTheirs;
    Merge merge(context, ours);
    std::vector<pugi::xml_node> added;
    // Blocks both sides kept, merged once the blocks theirs added have their keys here.
    struct Kept {
        std::size_t place;
        std::string id;
        pugi::xml_node mine;
        pugi::xml_node was;
        pugi::xml_node theirs;
    };
    std::vector<Kept> kept;
    for (std::size_t i = 0; i < theirs.Blocks().size(); ++i) {
        const ProjectBlock& block = theirs.Blocks()[i];
        merge.At(i);
        inTheirs.insert(block.id);
        const auto was = baseById.find(block.id);
        const auto mine = oursById.find(block.id);
        if (mine != oursById.end() && was == baseById.end()) {
            // Both sides placed a block under the same free key: two blocks, not one.
            if (!SameSettings(mine->second, block.element)) {
                added.push_back(block.element);
            }
        } else if (mine != oursById.end()) {
            kept.push_back(Kept{i, block.id, mine->second, was->second, block.element});
        } else if (was == baseById.end()) {
            added.push_back(block.element);
        } else if (!SameSettings(block.element, was->second)) {
            merge.Conflict(EscapedLine(block.id) + ": deleted in ours, changed in theirs");
        }
    }
    merge.At(theirs.Blocks().size());
    for (const ProjectBlock& block : ours.Blocks()) {
        const auto was = baseById.find(block.id);
        if (inTheirs.count(block.id) != 0 || was == baseById.end()) {
            continue;
        }
        if (SameSettings(block.element, was->second)) {
            ours.Root().remove_child(block.element);
        } else {
            merge.Conflict(EscapedLine(block.id) + ": deleted in theirs, changed in ours");
        }
    }
    ours.Reindex();
    // A block theirs added under a key ours has given to another block comes in under a new
    // one, and theirs' wires from it follow it there, before any of them is merged.
    std::vector<pugi::xml_node> copies;
    std::unordered_map<std::string, std::string> renames;
    for (const pugi::xml_node element : added) {
        const auto [copy, key] = ours.Adopt(element);
        if (const std::string was = KeyOf(element); !was.empty() && was != key) {
            renames.emplace(was, key);
        }
        copies.push_back(copy);
    }
    if (!renames.empty()) {
        for (const ProjectBlock& block : theirs.Blocks()) {
            RenameWireSources(block.element, renames);
        }
        for (const pugi::xml_node copy : copies) {
            RenameWireSources(copy, renames);
        }
    }
    for (const Kept& block : kept) {
        merge.At(block.place);
        if (!SameTree(block.was, block.theirs)) {
            const Settings baseSettings = ReadSettings(block.was);
            const Settings theirsSettings = ReadSettings(block.theirs);
            if (theirsSettings != baseSettings) {
                merge.Block(block.id, block.mine, &baseSettings, theirsSettings);
            }
        }
    }
    // The references of the added blocks' wires follow their sources as ours numbers them.
    const HostSettings host = ProjectHost(context.host, ours.ShortFloat());
    for (const pugi::xml_node copy : copies) {
        if (copy.child("Connection") && HasBlockType(host.library, copy.name())) {
            ProjectBlockEdit edit(host, copy, KeyOf(copy));
            edit.Rewire(ours);
            edit.StoreImage();
        }
    }
    ours.Write();
    return merge.TellConflicts() ? kExitFailure : kExitOk;
}

}  // namespace zerbin::cli
