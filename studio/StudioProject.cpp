#include "studio/StudioProject.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <sstream>

#include <QPointer>

#include "interfaces/ICanvasElement.h"
#include "interfaces/ITypeChange.h"
#include "studio/BlockFactory.h"
#include "studio/ProjectMacro.h"
#include "studio/StudioMessages.h"

namespace zerbin::studio {
namespace {

constexpr const char* kRoot = "Project";
constexpr const char* kConnection = "Connection";
constexpr const char* kTitle = "Zerbin Studio";

// Tells the project what its blocks raise. Held by the blocks; the project may go first.
class BlockListener : public NullAppObjectListener {
public:
    explicit BlockListener(StudioProject* project) : project_(project) {}
    void IcbkAppObject_AttributeChanged(const std::string& GlobalKey) override {
        if (project_) {
            project_->OnAttributeChanged(GlobalKey);
        }
    }
    void IcbkAppObject_RefInTypeChanged(const std::string& GlobalKey) override {
        if (project_) {
            project_->OnTypeChanged(GlobalKey);
        }
    }
    void IcbkAppObject_RefOutTypeChanged(const std::string& GlobalKey) override {
        if (project_) {
            project_->OnTypeChanged(GlobalKey);
        }
    }

private:
    QPointer<StudioProject> project_;
};

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

// Counts one level of a nested activity for as long as it lives, also when an exception ends
// it: a count left raised would silence the project's notifications for good.
class Nested {
public:
    explicit Nested(int& count) : count_(count) { ++count_; }
    ~Nested() { --count_; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

private:
    int& count_;
};

bool ParseShort(const char* text, int16_t& value) {
    const std::string_view view(text);
    const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), value);
    return error == std::errc{} && end == view.data() + view.size() && !view.empty();
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

struct StudioProject::Entry {
    std::string key;
    std::shared_ptr<IAppObject> object;
};

StudioProject::StudioProject(BlockFactory& factory,
                             std::shared_ptr<const pugi::xml_document> dictionary,
                             std::shared_ptr<const pugi::xml_document> ownerDevice, QObject* parent)
    : QObject(parent),
      factory_(factory),
      dictionary_(std::move(dictionary)),
      ownerDevice_(std::move(ownerDevice)),
      macro_(std::make_shared<ProjectMacro>(*this)) {
    // The unit system is the process's; a new project starts in SI whatever came before.
    BlockFactory::UseUnitSystem(settings_.usUnits);
}

StudioProject::~StudioProject() {
    const QSignalBlocker quiet(this);
    Clear();
    macro_->Detach();
}

void StudioProject::ApplySettings(const ProjectSettings& settings) {
    const bool reload = settings.shortFloat != settings_.shortFloat;
    settings_ = settings;
    BlockFactory::UseUnitSystem(settings.usUnits);
    if (reload) {
        pugi::xml_document document;
        Save(document);
        Load(document);
    } else {
        for (const std::string& key : order_) {
            emit blockChanged(key);
        }
    }
}

void StudioProject::Progress(std::size_t done, std::size_t total) {
    // Told once a percent: often enough for a bar that moves, seldom enough to cost nothing.
    if (total > 0 && done > 0 && done * 100 / total != (done - 1) * 100 / total) {
        emit progress(static_cast<int>(done * 100 / total));
    }
}

// ---- Blocks -----------------------------------------------------------------------------------

void StudioProject::Context(const std::string& block) const {
    if (context_) {
        context_(block);
    }
}

StudioProject::Entry* StudioProject::Find(const std::string& key) const {
    const auto found = blocks_.find(key);
    return found == blocks_.end() ? nullptr : found->second.get();
}

std::string StudioProject::NextKey() {
    std::string key;
    do {
        key = "Block" + std::to_string(nextKey_++);
    } while (Find(key) != nullptr || keptKeys_.count(key) != 0);
    return key;
}

bool StudioProject::NameTaken(const std::string& name) const {
    if (keptNames_.count(name) != 0) {
        return true;
    }
    return std::any_of(blocks_.begin(), blocks_.end(), [&](const auto& entry) {
        return entry.second->object->IAppObject_UserName() == name;
    });
}

void StudioProject::KeepBlock(pugi::xml_node element) {
    kept_.append_copy(element);
    if (const pugi::xml_attribute key = element.attribute("Key")) {
        keptKeys_.insert(key.as_string());
    }
    int16_t exportIndex = 0;
    if (ParseShort(element.attribute("ExportIndex").as_string(), exportIndex)) {
        exportIndexes_.insert(exportIndex);
    }
    keptNames_.insert(element.child_value("UserName"));
}

int16_t StudioProject::NextExportIndex() {
    constexpr int kLast = std::numeric_limits<int16_t>::max();
    // The lowest index no block has; the hint never passes a free one.
    while (freeExportIndex_ <= kLast &&
           exportIndexes_.count(static_cast<int16_t>(freeExportIndex_)) != 0) {
        ++freeExportIndex_;
    }
    if (freeExportIndex_ <= kLast) {
        return static_cast<int16_t>(freeExportIndex_);
    }
    // An index has 16 bits and a project may hold more blocks than that: once every index is
    // taken the blocks share them in turn rather than wait for one to come free.
    return static_cast<int16_t>(exportIndexes_.size() % (kLast + 1));
}

std::string StudioProject::CreateBlock(const std::string& type, const std::string& key,
                                       int16_t exportIndex) {
    // The order a host must keep: dictionary, type, what the members load with, creation,
    // then keys, parent and listener.
    Context(type + " " + key);
    std::shared_ptr<IAppObject> block = factory_.CreateBlock();
    block->IAppObject_XmlSNVTDoc(dictionary_);
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    block->IAppObject_OwnerDeviceXML(ownerDevice_);
    block->IAppObject_ManageShortFloat(settings_.shortFloat);
    block->IAppObject_Create();
    block->IAppObject_GlobalKey(key);
    block->IAppObject_ExtendedKey(key);
    block->IAppObject_Parent(macro_);
    block->IAppObject_CallBack(std::make_shared<BlockListener>(this));
    block->IAppObject_ExportIndex(exportIndex);
    exportIndexes_.insert(exportIndex);
    auto entry = std::make_unique<Entry>();
    entry->key = key;
    entry->object = std::move(block);
    blocks_[key] = std::move(entry);
    order_.push_back(key);
    return key;
}

std::string StudioProject::AddBlock(const std::string& type, QPointF pos, std::string key) {
    if (!factory_.HasType(type)) {
        ShowMessage("The library has no block type '" + type + "'.", kTitle,
                    MessageIcon::Exclamation);
        return {};
    }
    if (key.empty() || Find(key) != nullptr || keptKeys_.count(key) != 0) {
        key = NextKey();
    }
    CreateBlock(type, key, NextExportIndex());
    const std::shared_ptr<IAppObject>& block = Find(key)->object;
    block->IAppObject_XPosition(pos.x());
    block->IAppObject_YPosition(pos.y());
    // A new block is named after its type and its number, as an engineer would name it; a
    // name some block has already gets the next number.
    std::string name = block->IAppObject_Name() + " " + key.substr(5);
    for (int more = 2; NameTaken(name); ++more) {
        name = block->IAppObject_Name() + " " + key.substr(5) + "." + std::to_string(more);
    }
    block->IAppObject_UserName(name);
    emit blockAdded(key);
    return key;
}

std::string StudioProject::RestoreBlock(pugi::xml_node element, int position) {
    const std::string type = element.name();
    std::string key = element.attribute("Key").as_string();
    if (!factory_.HasType(type)) {
        return {};
    }
    if (key.empty() || Find(key) != nullptr) {
        key = NextKey();
    }
    int16_t exportIndex = 0;
    if (!ParseShort(element.attribute("ExportIndex").as_string(), exportIndex)) {
        exportIndex = NextExportIndex();
    }
    {
        const Nested loading(loading_);
        CreateBlock(type, key, exportIndex);
        const std::shared_ptr<IAppObject>& block = Find(key)->object;
        Context(element.child_value("UserName"));
        if (const pugi::xml_attribute color = element.attribute("Color")) {
            block->IAppObject_Color(color.as_int());
        }
        // The wires are the studio's: a block that kept them would write them back twice.
        if (element.child(kConnection)) {
            pugi::xml_node copy = scratch_.append_copy(element);
            while (pugi::xml_node connection = copy.child(kConnection)) {
                copy.remove_child(connection);
            }
            struct Drop {
                pugi::xml_document& scratch;
                pugi::xml_node copy;
                ~Drop() { scratch.remove_child(copy); }
            } drop{scratch_, copy};
            block->IAppObject_XmlLoad(copy);
        } else {
            block->IAppObject_XmlLoad(element);
        }
    }
    if (position >= 0 && position < static_cast<int>(order_.size()) - 1) {
        order_.pop_back();
        order_.insert(order_.begin() + position, key);
    }
    emit blockAdded(key);
    return key;
}

void StudioProject::RemoveBlock(const std::string& key) {
    if (Find(key) != nullptr) {
        order_.erase(std::find(order_.begin(), order_.end(), key));
        DestroyBlock(key);
    }
}

void StudioProject::DestroyBlock(const std::string& key) {
    Entry* entry = Find(key);
    const std::vector<Wire> wires = WiresOf(key);
    for (const Wire& wire : wires) {
        DropWire(wire, true);
    }
    const std::shared_ptr<IAppObject> block = entry->object;
    const int16_t exportIndex = block->IAppObject_ExportIndex();
    exportIndexes_.erase(exportIndexes_.find(exportIndex));
    freeExportIndex_ = std::min(freeExportIndex_, std::max<int>(exportIndex, 0));
    blocks_.erase(key);
    block->IAppObject_Destroy();
    emit blockRemoved(key);
}

std::vector<int> StudioProject::RemoveBlocks(const std::vector<std::string>& keys) {
    std::unordered_map<std::string, int> place;
    place.reserve(order_.size());
    for (std::size_t i = 0; i < order_.size(); ++i) {
        place.emplace(order_[i], static_cast<int>(i));
    }
    std::vector<int> positions;
    positions.reserve(keys.size());
    for (const std::string& key : keys) {
        const auto found = place.find(key);
        positions.push_back(found == place.end() ? -1 : found->second);
    }
    // Taken out of the order in one pass: one at a time would move the rest for each.
    for (const int position : positions) {
        if (position >= 0) {
            order_[static_cast<std::size_t>(position)].clear();
        }
    }
    order_.erase(std::remove(order_.begin(), order_.end(), std::string()), order_.end());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (positions[i] >= 0) {
            DestroyBlock(keys[i]);
        }
        Progress(i + 1, keys.size());
    }
    return positions;
}

void StudioProject::RestoreBlocks(const std::vector<pugi::xml_node>& elements,
                                  const std::vector<int>& positions) {
    std::vector<std::pair<int, std::string>> placed;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        std::string key = RestoreBlock(elements[i], -1);
        if (!key.empty()) {
            order_.pop_back();
            placed.emplace_back(positions[i], std::move(key));
        }
        Progress(i + 1, elements.size());
    }
    // Merged into the order in one pass, each at the place it had.
    std::stable_sort(placed.begin(), placed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> order;
    order.reserve(order_.size() + placed.size());
    std::size_t rest = 0;
    for (auto& [position, key] : placed) {
        while (static_cast<int>(order.size()) < position && rest < order_.size()) {
            order.push_back(std::move(order_[rest++]));
        }
        order.push_back(std::move(key));
    }
    while (rest < order_.size()) {
        order.push_back(std::move(order_[rest++]));
    }
    order_.swap(order);
}

std::shared_ptr<IAppObject> StudioProject::Block(const std::string& key) const {
    const Entry* entry = Find(key);
    return entry ? entry->object : nullptr;
}

std::string StudioProject::KeyOf(const IAppObject* block) const {
    for (const auto& [key, entry] : blocks_) {
        if (entry->object.get() == block) {
            return key;
        }
    }
    return {};
}

void StudioProject::MoveBlock(const std::string& key, QPointF pos) {
    if (const Entry* entry = Find(key)) {
        entry->object->IAppObject_XPosition(pos.x());
        entry->object->IAppObject_YPosition(pos.y());
        emit blockChanged(key);
    }
}

void StudioProject::RenameBlock(const std::string& key, const std::string& name) {
    if (const Entry* entry = Find(key)) {
        entry->object->IAppObject_UserName(name);
        emit blockChanged(key);
    }
}

pugi::xml_node StudioProject::BlockElement(const std::string& key, pugi::xml_document& document,
                                           pugi::xml_node parent) const {
    const Entry* entry = Find(key);
    if (entry == nullptr) {
        return {};
    }
    IAppObject& block = *entry->object;
    // The project keeps the last image built; build it as the block stands.
    block.IAppObject_Stream();
    block.IAppObject_XmlSave(parent, document);
    pugi::xml_node element = parent.last_child();
    // The studio's own data stands beside the block's: attributes of the block element and
    // elements that the block's load passes by.
    element.append_attribute("Key") = key.c_str();
    element.append_attribute("ExportIndex") = block.IAppObject_ExportIndex();
    const int32_t color = block.IAppObject_Color();
    if (color != 0) {
        element.append_attribute("Color") = std::to_string(color).c_str();
    }
    // What the block's type was, so that a later load can tell it changed under the project.
    if (const auto typed = std::dynamic_pointer_cast<ITypeChange>(entry->object)) {
        const std::string stamp = typed->ITypeChange_Stamp();
        if (!stamp.empty()) {
            element.append_attribute(kTypeStampAttribute) = stamp.c_str();
        }
    }
    for (const Wire& wire : WiresOf(key)) {
        if (wire.target == key) {
            AppendConnection(element, wire);
        }
    }
    if (const auto kept = keptWires_.find(key); kept != keptWires_.end()) {
        for (const Wire& wire : kept->second) {
            AppendConnection(element, wire);
        }
    }
    return element;
}

void StudioProject::AppendConnection(pugi::xml_node element, const Wire& wire) {
    pugi::xml_node connection = element.append_child(kConnection);
    connection.append_attribute("Input") = wire.input.c_str();
    connection.append_attribute("Source") = wire.source.c_str();
    connection.append_attribute("Output") = wire.output.c_str();
}

// ---- Values -----------------------------------------------------------------------------------

ValueSnapshot StudioProject::Values(const std::string& key) const {
    ValueSnapshot values;
    const std::shared_ptr<IAppObject> block = Block(key);
    const std::shared_ptr<IAttributes> attributes =
        block ? block->IAppObject_Attributes() : nullptr;
    if (attributes) {
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            values.emplace_back(attribute->IAttribute_Name(), attribute->IAttribute_Value());
        }
    }
    return values;
}

void StudioProject::ApplyValues(const std::string& key, const ValueSnapshot& values) {
    const std::shared_ptr<IAppObject> block = Block(key);
    const std::shared_ptr<IAttributes> attributes =
        block ? block->IAppObject_Attributes() : nullptr;
    if (!attributes) {
        return;
    }
    {
        const Nested writing(writing_);
        // The unit selector re-derives its dependents, so it goes first and they follow.
        for (const bool units : {true, false}) {
            for (const auto& [name, value] : values) {
                const std::shared_ptr<IAttribute> attribute = attributes->IAttributes_Item(name);
                const bool isUnits = attribute && attribute->IAttribute_IsUnit();
                if (attribute && isUnits == units && attribute->IAttribute_Value() != value) {
                    attribute->IAttribute_Value(value);
                }
            }
        }
    }
    emit blockChanged(key);
}

bool StudioProject::WriteValue(const std::string& key, const std::string& name,
                               const std::string& value) {
    const std::shared_ptr<IAppObject> block = Block(key);
    const std::shared_ptr<IAttributes> attributes =
        block ? block->IAppObject_Attributes() : nullptr;
    const std::shared_ptr<IAttribute> attribute =
        attributes ? attributes->IAttributes_Item(name) : nullptr;
    if (!attribute) {
        return false;
    }
    const std::string before = attribute->IAttribute_Value();
    Context(block->IAppObject_UserName());
    {
        const Nested writing(writing_);
        attribute->IAttribute_Value(value);
    }
    emit blockChanged(key);
    return attribute->IAttribute_Value() != before;
}

// ---- Wires ------------------------------------------------------------------------------------

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
               (type.empty() ? std::string("(none)") : type) + " is not one the input accepts (" +
               list + ").";
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

// ---- Files ------------------------------------------------------------------------------------

void StudioProject::Clear() {
    // Everything goes: the ends of the wires need not be told, the blocks are destroyed.
    wires_.clear();
    wireAt_.clear();
    wiresAt_.clear();
    for (const std::string& key : order_) {
        blocks_[key]->object->IAppObject_Destroy();
    }
    blocks_.clear();
    order_.clear();
    exportIndexes_.clear();
    freeExportIndex_ = 0;
    kept_.reset();
    keptWires_.clear();
    keptKeys_.clear();
    keptNames_.clear();
    nextKey_ = 1;
    emit cleared();
}

void StudioProject::Save(pugi::xml_document& document) const {
    pugi::xml_node root = document.append_child(kRoot);
    root.append_attribute("UnitSystem") = settings_.usUnits ? "US" : "SI";
    root.append_attribute("ShortFloat") = settings_.shortFloat ? "1" : "0";
    for (const std::string& key : order_) {
        BlockElement(key, document, root);
    }
    for (pugi::xml_node kept : kept_.children()) {
        root.append_copy(kept);
    }
}

std::string StudioProject::Text() const {
    pugi::xml_document document;
    Save(document);
    std::ostringstream out;
    document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return out.str();
}

void StudioProject::Load(const pugi::xml_document& document) {
    Clear();
    const pugi::xml_node root = document.document_element();
    settings_.usUnits = std::string(root.attribute("UnitSystem").as_string()) == "US";
    settings_.shortFloat = std::string(root.attribute("ShortFloat").as_string()) == "1";
    BlockFactory::UseUnitSystem(settings_.usUnits);
    const Nested loading(loading_);
    std::vector<std::pair<std::string, pugi::xml_node>> restored;
    const auto elements =
        static_cast<std::size_t>(std::distance(root.children().begin(), root.children().end()));
    // Grown one block at a time, the tables would be built again at every doubling.
    blocks_.reserve(elements);
    order_.reserve(elements);
    std::size_t done = 0;
    for (pugi::xml_node element : root.children()) {
        Progress(++done, 2 * elements);
        if (element.type() != pugi::node_element) {
            continue;
        }
        const std::string key = RestoreBlock(element, -1);
        if (key.empty()) {
            KeepBlock(element);
            ShowMessage("The library has no block type '" + std::string(element.name()) +
                            "'; the block '" + element.child_value("UserName") +
                            "' is kept in the project as it is, but not shown.",
                        kTitle, MessageIcon::Exclamation);
        } else {
            restored.emplace_back(key, element);
        }
    }
    for (std::size_t i = 0; i < restored.size(); ++i) {
        const auto& [key, element] = restored[i];
        Progress(restored.size() + i + 1, 2 * restored.size());
        for (pugi::xml_node connection : element.children(kConnection)) {
            const Wire wire{connection.attribute("Source").as_string(),
                            connection.attribute("Output").as_string(), key,
                            connection.attribute("Input").as_string()};
            if (Find(wire.source) == nullptr) {
                // Its source is a kept block: the wire is written back as it was read.
                keptWires_[key].push_back(wire);
                continue;
            }
            Connect(wire);
        }
    }
    emit loaded();
}

int StudioProject::MissingBlocks() const {
    return static_cast<int>(std::distance(kept_.children().begin(), kept_.children().end()));
}

std::string StudioProject::ImagesText() const {
    std::string text;
    for (const std::string& key : order_) {
        IAppObject& block = *Find(key)->object;
        text += key + '\t' + block.IAppObject_UserName() + '\t' +
                block.IAppObject_UniqueIDString() + '\t' + block.IAppObject_Stream() + '\t' +
                block.IAppObject_IntelStream() + '\n';
    }
    return text;
}

}  // namespace zerbin::studio
