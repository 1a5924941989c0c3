// diff: what changed from one saved project to another, block by block, in the user's words.
#include <algorithm>
#include <string>
#include <unordered_map>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/ProjectModel.h"

namespace zerbin::cli {
namespace {

constexpr const char* kNone = "(none)";

std::string Shown(const std::string* value) {
    return value ? "'" + EscapedLine(*value) + "'" : std::string(kNone);
}

const std::string* Lookup(const std::unordered_map<std::string, std::string>& settings,
                          std::string_view name) {
    const auto found = settings.find(std::string(name));
    return found == settings.end() ? nullptr : &found->second;
}

// The changes of one block that both projects hold, one line each.
void DiffBlock(const std::string& id, const Settings& before, const Settings& after,
               std::string& out) {
    const std::unordered_map<std::string, std::string> was(before.begin(), before.end());
    const std::unordered_map<std::string, std::string> is(after.begin(), after.end());
    const std::string label = EscapedLine(id);
    const auto differs = [&](std::string_view name) {
        const std::string* a = Lookup(was, name);
        const std::string* b = Lookup(is, name);
        return (a == nullptr) != (b == nullptr) || (a != nullptr && *a != *b);
    };
    if (differs(kTypeSetting)) {
        out += label + ": retyped " + Shown(Lookup(was, kTypeSetting)) + " → " +
               Shown(Lookup(is, kTypeSetting)) + '\n';
    }
    if (differs(kNameSetting)) {
        out += label + ": renamed " + Shown(Lookup(was, kNameSetting)) + " → " +
               Shown(Lookup(is, kNameSetting)) + '\n';
    }
    if (differs(kXSetting) || differs(kYSetting)) {
        out += label + ": moved (" + Shown(Lookup(was, kXSetting)) + ", " +
               Shown(Lookup(was, kYSetting)) + ") → (" + Shown(Lookup(is, kXSetting)) + ", " +
               Shown(Lookup(is, kYSetting)) + ")\n";
    }
    const auto line = [&](const std::string& name, const std::string* a, const std::string* b) {
        if (name == kTypeSetting || name == kNameSetting || name == kXSetting ||
            name == kYSetting) {
            return;
        }
        if (name.rfind(kWirePrefix, 0) == 0) {
            const std::string input = name.substr(kWirePrefix.size());
            out += label + ": wire to " + input + ": " + Shown(a) + " → " + Shown(b) + '\n';
        } else {
            out += label + ' ' + name + ": " + Shown(a) + " → " + Shown(b) + '\n';
        }
    };
    for (const auto& [name, value] : before) {
        const std::string* b = Lookup(is, name);
        if (b == nullptr || *b != value) {
            line(name, &value, b);
        }
    }
    for (const auto& [name, value] : after) {
        if (Lookup(was, name) == nullptr) {
            line(name, nullptr, &value);
        }
    }
}

}  // namespace

namespace {

int Compare(const CommandContext& context) {
    const Project a(context.invocation.arguments[0]);
    const Project b(context.invocation.arguments[1]);
    std::unordered_map<std::string, pugi::xml_node> inB;
    for (const ProjectBlock& block : b.Blocks()) {
        inB.emplace(block.id, block.element);
    }
    std::unordered_map<std::string, pugi::xml_node> inA;
    std::string out;
    for (const ProjectBlock& block : a.Blocks()) {
        inA.emplace(block.id, block.element);
        const auto other = inB.find(block.id);
        if (other == inB.end()) {
            out += "- " + EscapedLine(block.id) + " (" + block.element.name() + ")\n";
        } else {
            DiffBlock(block.id, ReadSettings(block.element), ReadSettings(other->second), out);
        }
    }
    for (const ProjectBlock& block : b.Blocks()) {
        if (inA.count(block.id) == 0) {
            out += "+ " + EscapedLine(block.id) + " (" + block.element.name() + ")\n";
        }
    }
    context.out << out;
    return out.empty() ? kExitOk : kExitFailure;
}

}  // namespace

int RunDiff(const CommandContext& context) {
    try {
        return Compare(context);
    } catch (const UsageError&) {
        throw;
    } catch (const UnreadableError&) {
        throw;
    } catch (const std::exception&) {
        // 1 means "different", as for diff: trouble of any other kind is 2.
        return std::max(ReportCurrentFailure(context.err, {}), kExitUsage);
    }
}

}  // namespace zerbin::cli
