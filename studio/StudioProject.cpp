#include "studio/StudioProject.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <sstream>

#include <QPointer>

#include "interfaces/ICanvasElement.h"
#include "interfaces/ITypeChange.h"
#include "studio/BlockFactory.h"
#include "studio/NestedCount.h"
#include "studio/ProjectMacro.h"
#include "studio/StudioMessages.h"

namespace zerbin::studio {
namespace {

constexpr const char* kRoot = "Project";
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

bool ParseShort(const char* text, int16_t& value) {
    const std::string_view view(text);
    const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), value);
    return error == std::errc{} && end == view.data() + view.size() && !view.empty();
}

}  // namespace

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
    const ProjectSettings previous = settings_;
    settings_ = settings;
    BlockFactory::UseUnitSystem(settings.usUnits);
    if (reload) {
        pugi::xml_document document;
        Save(document);
        try {
            Load(document);
        } catch (...) {
            // The project as it stood comes back, under the settings it had.
            settings_ = previous;
            BlockFactory::UseUnitSystem(previous.usUnits);
            document.document_element().attribute("ShortFloat") = previous.shortFloat ? "1" : "0";
            document.document_element().attribute("UnitSystem") = previous.usUnits ? "US" : "SI";
            Load(document);
            throw;
        }
    } else {
        for (const std::string& key : order_) {
            emit blockChanged(key);
        }
    }
}

void StudioProject::Progress(std::size_t done, std::size_t total) {
    // Told when the percent moves, a twentieth of a second after the last telling, and at the
    // end: often enough for a bar that moves. Each telling repaints the bar, which once a
    // percent would cost a large step a good part of its time.
    if (total == 0 || done == 0 || done * 100 / total == (done - 1) * 100 / total) {
        return;
    }
    constexpr qint64 kProgressMs = 50;
    if (done != total && progressClock_.isValid() && progressClock_.elapsed() < kProgressMs) {
        return;
    }
    progressClock_.start();
    emit progress(static_cast<int>(done * 100 / total));
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
    } while (Find(key) != nullptr || kept_.HasKey(key));
    return key;
}

bool StudioProject::NameTaken(const std::string& name) const {
    if (kept_.HasName(name)) {
        return true;
    }
    return std::any_of(blocks_.begin(), blocks_.end(), [&](const auto& entry) {
        return entry.second->object->IAppObject_UserName() == name;
    });
}

std::string StudioProject::FreeName(const std::string& wanted) const {
    std::string name = wanted;
    for (int more = 2; NameTaken(name); ++more) {
        name = wanted + "." + std::to_string(more);
    }
    return name;
}

void StudioProject::KeepBlock(pugi::xml_node element) {
    kept_.Keep(element);
    int16_t exportIndex = 0;
    if (ParseShort(element.attribute("ExportIndex").as_string(), exportIndex)) {
        exportIndexes_.insert(exportIndex);
    }
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

std::shared_ptr<IAppObject> StudioProject::MakeBlock(const std::string& type) const {
    // The order a host must keep: dictionary, type, what the members load with, creation.
    std::shared_ptr<IAppObject> block = factory_.CreateBlock();
    block->IAppObject_XmlSNVTDoc(dictionary_);
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    block->IAppObject_OwnerDeviceXML(ownerDevice_);
    block->IAppObject_ManageShortFloat(settings_.shortFloat);
    block->IAppObject_Create();
    return block;
}

std::string StudioProject::CreateBlock(const std::string& type, const std::string& key,
                                       int16_t exportIndex) {
    // Then keys, parent and listener.
    Context(type + " " + key);
    std::shared_ptr<IAppObject> block = MakeBlock(type);
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
    if (key.empty() || Find(key) != nullptr || kept_.HasKey(key)) {
        key = NextKey();
    }
    CreateBlock(type, key, NextExportIndex());
    const std::shared_ptr<IAppObject>& block = Find(key)->object;
    block->IAppObject_XPosition(pos.x());
    block->IAppObject_YPosition(pos.y());
    // A new block is named after its type and its number, as an engineer would name it; a
    // name some block has already gets the next number.
    block->IAppObject_UserName(FreeName(block->IAppObject_Name() + " " + key.substr(5)));
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
    // A project being read finds the wires from kept blocks once all its blocks are known; a
    // block brought back by an undo takes back its own.
    if (loading_ == 0) {
        for (pugi::xml_node connection : element.children(kConnectionElement)) {
            const std::string source = connection.attribute("Source").as_string();
            if (kept_.HasKey(source)) {
                kept_.KeepWire(Wire{source, connection.attribute("Output").as_string(), key,
                                    connection.attribute("Input").as_string()});
            }
        }
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
        if (element.child(kConnectionElement)) {
            pugi::xml_node copy = scratch_.append_copy(element);
            while (pugi::xml_node connection = copy.child(kConnectionElement)) {
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
    kept_.DropWiresTo(key);
    block->IAppObject_Destroy();
    emit blockRemoved(key);
}

std::vector<int> StudioProject::PlacesOf(const std::vector<std::string>& keys) const {
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
    return positions;
}

std::vector<int> StudioProject::RemoveBlocks(const std::vector<std::string>& keys) {
    const std::vector<int> positions = PlacesOf(keys);
    // The blocks gone leave the order in one pass at the end, also when one of them fails to
    // go: one at a time would move the rest for each.
    std::size_t gone = 0;
    struct Tidy {
        StudioProject& project;
        const std::vector<int>& positions;
        const std::size_t& gone;
        ~Tidy() {
            for (std::size_t i = 0; i < gone; ++i) {
                if (positions[i] >= 0) {
                    project.order_[static_cast<std::size_t>(positions[i])].clear();
                }
            }
            std::vector<std::string>& order = project.order_;
            order.erase(std::remove(order.begin(), order.end(), std::string()), order.end());
        }
    } tidy{*this, positions, gone};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (positions[i] >= 0) {
            DestroyBlock(keys[i]);
        }
        gone = i + 1;
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
    for (const Wire& wire : kept_.WiresTo(key)) {
        AppendConnection(element, wire);
    }
    return element;
}

void StudioProject::AppendConnection(pugi::xml_node element, const Wire& wire) {
    pugi::xml_node connection = element.append_child(kConnectionElement);
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
    kept_.Clear();
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
    kept_.AppendTo(root);
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
            Context(element.child_value("UserName"));
            ShowMessage("The library has no block type '" + std::string(element.name()) +
                            "'; the block '" + element.child_value("UserName") +
                            "' is kept in the project as it is, drawn in grey.",
                        kTitle, MessageIcon::Exclamation);
        } else {
            restored.emplace_back(key, element);
        }
    }
    for (std::size_t i = 0; i < restored.size(); ++i) {
        const auto& [key, element] = restored[i];
        Progress(restored.size() + i + 1, 2 * restored.size());
        for (pugi::xml_node connection : element.children(kConnectionElement)) {
            const Wire wire{connection.attribute("Source").as_string(),
                            connection.attribute("Output").as_string(), key,
                            connection.attribute("Input").as_string()};
            if (Find(wire.source) == nullptr) {
                // Its source is a kept block: the wire is written back as it was read.
                kept_.KeepWire(wire);
                continue;
            }
            Connect(wire);
        }
    }
    emit loaded();
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
