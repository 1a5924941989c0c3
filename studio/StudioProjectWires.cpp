// The project's wires: what may be wired, connecting and cutting, and what the blocks tell the
// project when a member changes under its wires.
#include <algorithm>

#include "interfaces/ICanvasElement.h"
#include "studio/NestedCount.h"
#include "studio/StudioMessages.h"
#include "studio/StudioProject.h"

namespace zerbin::studio {
namespace {

constexpr const char* kTitle = "Zerbin Studio";

std::shared_ptr<IInput> InputOf(const std::shared_ptr<IAppObject>& block, const std::string& name) {
    const std::shared_ptr<IInputs> inputs = block ? block->IAppObject_Inputs() : nullptr;
    return inputs ? inputs->IInputs_Item(name) : nullptr;
}

std::shared_ptr<IOutput> OutputOf(const std::shared_ptr<IAppObject>& block,
                                  const std::string& name) {
    const std::shared_ptr<IOutputs> outputs = block ? block->IAppObject_Outputs() : nullptr;
    return outputs ? outputs->IOutputs_Item(name) : nullptr;
}

std::string OutputType(const std::shared_ptr<IOutput>& output) {
    const std::shared_ptr<ICompatibleSNVT> type = output->IOutput_SNVTCompatible();
    return type ? type->ICompatibleSNVT_ID() : std::string();
}

bool Fits(const std::shared_ptr<IOutput>& output, const std::shared_ptr<IInput>& input) {
    const std::string type = OutputType(output);
    const std::shared_ptr<ICompatibleSNVTs> accepted = input->Iinput_SNVTCompatibles();
    return !type.empty() && accepted && accepted->ICompatibleSNVTs_Exists(type);
}

std::string BlockLabel(const std::shared_ptr<IAppObject>& block) {
    const std::string name = block->IAppObject_UserName();
    return name.empty() ? block->IAppObject_UniqueIDString() : name;
}

// The key's first part is the block's key: "Block3\RIN\In1" belongs to Block3.
std::pair<std::string, std::string> SplitMemberKey(const std::string& globalKey) {
    const std::size_t first = globalKey.find('\\');
    const std::size_t last = globalKey.rfind('\\');
    if (first == std::string::npos) {
        return {globalKey, {}};
    }
    return {globalKey.substr(0, first), globalKey.substr(last + 1)};
}

}  // namespace

std::size_t WireHash::operator()(const Wire& wire) const noexcept {
    const std::hash<std::string> hash;
    std::size_t seed = hash(wire.source);
    for (const std::string* part : {&wire.output, &wire.target, &wire.input}) {
        seed ^= hash(*part) + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2);
    }
    return seed;
}

bool StudioProject::TypesFit(const Wire& wire) const {
    const std::shared_ptr<IOutput> output = OutputOf(Block(wire.source), wire.output);
    const std::shared_ptr<IInput> input = InputOf(Block(wire.target), wire.input);
    return output && input && Fits(output, input);
}

StudioProject::Ends StudioProject::EndsOf(const Wire& wire) const {
    Ends ends{Block(wire.source), Block(wire.target), nullptr, nullptr};
    ends.output = OutputOf(ends.source, wire.output);
    ends.input = InputOf(ends.target, wire.input);
    return ends;
}

std::string StudioProject::TypeNames(const std::string& ids) const {
    // A user knows a type by its name in the dictionary; a number it lacks stays a number.
    std::string names;
    std::size_t from = 0;
    while (from <= ids.size()) {
        const std::size_t comma = std::min(ids.find(',', from), ids.size());
        const std::string id = ids.substr(from, comma - from);
        const char* name =
            dictionary_
                ? dictionary_->document_element().child(("SNVT_" + id).c_str()).child_value("NAME")
                : "";
        names += (names.empty() ? "" : ", ") + (*name != '\0' ? std::string(name) : id);
        from = comma + 1;
    }
    return names;
}

std::string StudioProject::WhyNotConnect(const Wire& wire) const {
    return WhyNot(wire, EndsOf(wire));
}

std::string StudioProject::WhyNot(const Wire& wire, const Ends& ends) const {
    const auto& [source, target, output, input] = ends;
    if (!output || !input) {
        return "The wire's ends are not in the project.";
    }
    // Named only for a refusal: a project read from a file makes tens of thousands of wires.
    const auto where = [&] {
        return "output " + wire.output + " of " + BlockLabel(source) + " to input " + wire.input +
               " of " + BlockLabel(target);
    };
    for (const Wire& other : WiresOf(wire.target)) {
        if (other.target == wire.target && other.input == wire.input) {
            return "Cannot connect " + where() + ": the input is already connected.";
        }
    }
    if (!Fits(output, input)) {
        const std::string type = OutputType(output);
        const std::shared_ptr<ICompatibleSNVTs> accepted = input->Iinput_SNVTCompatibles();
        const std::string list = accepted ? accepted->ICompatibleSNVTs_ToString() : std::string();
        return "Cannot connect " + where() + ": the output's type " +
               (type.empty() ? std::string("(none)") : TypeNames(type)) +
               " is not one the input accepts (" + TypeNames(list) + ").";
    }
    return {};
}

bool StudioProject::Connect(const Wire& wire) {
    const Ends ends = EndsOf(wire);
    const std::string why = WhyNot(wire, ends);
    if (!why.empty()) {
        ShowMessage(why, kTitle, MessageIcon::Exclamation);
        return false;
    }
    const std::shared_ptr<IOutput>& output = ends.output;
    const std::shared_ptr<IInput>& input = ends.input;
    const auto item = std::dynamic_pointer_cast<IDisplayItem>(output);
    std::string reference = item ? item->IDisplayItem_Reference() : std::string("0000");
    // An extended input takes three bytes; an output's code fills two of them.
    if (input->IInput_Extended()) {
        reference += "00";
    }
    wireAt_.emplace(wire, wires_.size());
    wires_.push_back(wire);
    wiresAt_[wire.source].push_back(wire);
    if (wire.target != wire.source) {
        wiresAt_[wire.target].push_back(wire);
    }
    {
        const Nested writing(writing_);
        input->IInput_Value(reference);
        if (const auto end = std::dynamic_pointer_cast<ISubItemConnable>(input)) {
            end->ISubItemConnable_IsConnected(true);
            end->ISubItemConnable_ConnectedType(output->IOutput_SNVTType());
        }
        if (const auto end = std::dynamic_pointer_cast<ISubItemConnable>(output)) {
            end->ISubItemConnable_IsConnected(true);
        }
    }
    emit wireAdded(wire);
    if (loading_ == 0) {
        emit blockChanged(wire.target);
    }
    return true;
}

void StudioProject::Disconnect(const Wire& wire) {
    DropWire(wire, true);
}

void StudioProject::DropWire(const Wire& wire, bool clearReference) {
    const auto found = wireAt_.find(wire);
    if (found == wireAt_.end()) {
        return;
    }
    // The last wire takes the place of the one that goes: the file's order of wires is each
    // block's (wiresAt_), which keeps the order they were made in.
    const std::size_t at = found->second;
    wireAt_.erase(found);
    if (at + 1 != wires_.size()) {
        wires_[at] = std::move(wires_.back());
        wireAt_[wires_[at]] = at;
    }
    wires_.pop_back();
    for (const std::string& end : {wire.source, wire.target}) {
        std::vector<Wire>& at = wiresAt_[end];
        at.erase(std::remove(at.begin(), at.end(), wire), at.end());
        if (at.empty()) {
            wiresAt_.erase(end);
        }
    }
    const std::shared_ptr<IOutput> output = OutputOf(Block(wire.source), wire.output);
    const std::shared_ptr<IInput> input = InputOf(Block(wire.target), wire.input);
    {
        const Nested writing(writing_);
        if (input && clearReference) {
            input->IInput_Value(input->IInput_Extended() ? "000000" : "0000");
        }
        if (const auto end = std::dynamic_pointer_cast<ISubItemConnable>(input)) {
            end->ISubItemConnable_IsConnected(false);
        }
        if (const auto end = std::dynamic_pointer_cast<ISubItemConnable>(output)) {
            end->ISubItemConnable_IsConnected(false);
        }
    }
    emit wireRemoved(wire);
    emit blockChanged(wire.target);
}

const std::vector<Wire>& StudioProject::WiresOf(const std::string& key) const {
    static const std::vector<Wire> none;
    const auto found = wiresAt_.find(key);
    return found == wiresAt_.end() ? none : found->second;
}

void StudioProject::OnAttributeChanged(const std::string& globalKey) {
    const std::string key = SplitMemberKey(globalKey).first;
    if (loading_ > 0) {
        return;
    }
    // Told before anything changes on the studio's side, so that a listener can still see
    // the state from before the write.
    if (writing_ == 0) {
        emit valuesChangedOutside(key);
    }
    emit blockChanged(key);
}

void StudioProject::OnTypeChanged(const std::string& globalKey) {
    const auto [key, member] = SplitMemberKey(globalKey);
    if (writing_ == 0 && loading_ == 0) {
        emit valuesChangedOutside(key);
    }
    // The member's type is already the new one: the wires at it that no longer fit go.
    const std::vector<Wire> wires = WiresOf(key);
    for (const Wire& wire : wires) {
        const bool atMember = (wire.target == key && wire.input == member) ||
                              (wire.source == key && wire.output == member);
        if (atMember && !TypesFit(wire)) {
            DropWire(wire, true);
            ShowMessage("The wire from output " + wire.output + " to input " + wire.input +
                            " was removed: its types no longer match.",
                        kTitle, MessageIcon::Information);
        }
    }
    emit blockChanged(key);
}

}  // namespace zerbin::studio
