// Creation of a block's members from the three sections of its definition, and the layout
// that gives every attribute and input its offset in the configuration data block.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "app_object/CompiledBlockType.h"
#include "app_object/ImageSkeleton.h"
#include "base/CheckedMath.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "base/XmlPathIndex.h"
#include "connections/CDBInputs.h"
#include "connections/CDBOutputs.h"
#include "datatypes/SnvtDictionary.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/Error.h"
#include "parameters/CDBAttributes.h"
#include "platform/DefinitionStore.h"
#include "platform/Events.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

int32_t SizeInCdb(CDBAttribute& attribute) {
    if (attribute.IAttribute_IsKeepFloatStandard()) {
        return 4;
    }
    return Need(attribute.IAttribute_SNVTType()).ISNVType_Length();
}

int32_t SizeInCdb(CDBInput& input) {
    return input.IInput_Extended() ? 3 : 2;
}

std::string SectionMessage(const std::string& section, const std::string& name) {
    return "Error: Problems in the " + section + " section of the XML file of " + name + " ";
}

// Walks the child nodes of one section of the definition, serving events on each pass and
// passing by comments; add(child) makes the member. Returns the number of nodes that should
// have become members. The document stays held for the walk: a failed load is held nowhere
// else.
template <class AddMember>
int32_t WalkSection(const std::shared_ptr<const pugi::xml_document>& document, const char* path,
                    AddMember&& add) {
    pugi::xml_node section;
    SkipStep([&] { section = xml::FindFirstIndexed(Need(document).root(), path); });
    int32_t expected = 0;
    for (pugi::xml_node child : section.children()) {
        ServePendingEvents();
        if (xml::IsComment(child)) {
            continue;
        }
        ++expected;
        // A member that can't be made (a name used twice, a bad element) is dropped; the
        // count check below tells the user.
        SkipStep([&] { add(child); });
    }
    return expected;
}

}  // namespace

void CDBAppObject::IAppObject_Create() {
    CompiledTypeKey key;
    if (!CompiledKey(key)) {
        CreateFromDefinition();
        return;
    }
    if (const auto compiled = FindCompiledType(key);
        compiled && !(compiled->hasTypeSelector && parent_)) {
        CreateFromCompiled(*compiled);
        compiled_ = compiled;
        return;
    }
    ScopedMessageCapture capture;
    CreateFromDefinition();
    // A message that asks the user something may steer the creation: such a type is made from
    // its definition every time, as is one whose selector consulted a container.
    for (const Message& message : capture.Messages()) {
        if (message.buttons != MessageButtons::Ok) {
            return;
        }
    }
    std::shared_ptr<CompiledBlockType> compiled = Compile(capture.Take());
    if (compiled->hasTypeSelector && parent_) {
        return;
    }
    compiled->ownerDevice = ownerDeviceXml_;
    compiled->definition = definitionCache_->Store()->FindDocument(uniqueIdString_);
    AddCompiledType(std::move(key), std::move(compiled));
}

bool CDBAppObject::CompiledKey(CompiledTypeKey& key) const {
    if (seldom_->interceptor || attributes_ || inputs_ || outputs_ || cdbDimension_ != 0 ||
        inputWidth_ != 0 || baseWidth_ != 0) {
        return false;
    }
    // A type whose definition did not load is read, and fails, anew every time.
    const auto definition = definitionCache_->Store()->FindDocument(uniqueIdString_);
    if (!definition) {
        return false;
    }
    key.type = uniqueIdString_;
    key.name = header_->name;
    key.definition = definition.get();
    key.ownerDevice = ownerDeviceXml_.get();
    key.dictionary = SnvtIndexGeneration();
    key.decimalSeparator = DecimalSeparator();
    key.unitSystem = static_cast<int>(CurrentUnitSystem());
    key.manageShortFloat = manageShortFloat_;
    return true;
}

std::shared_ptr<CompiledBlockType> CDBAppObject::Compile(std::vector<Message> messages) const {
    auto compiled = std::make_shared<CompiledBlockType>();
    if (attributes_) {
        // Records of its own: the block it is taken from goes on and may change them.
        compiled->attributes = attributes_->CopyFor(nullptr, false);
        for (const auto& attribute : attributes_->Members()) {
            compiled->hasTypeSelector = compiled->hasTypeSelector || attribute->IAttribute_IsType();
            compiled->hasUnitSelector = compiled->hasUnitSelector || attribute->IsUnitSelector();
        }
    }
    if (inputs_) {
        compiled->inputs = inputs_->CopyFor(nullptr, false);
    }
    if (outputs_) {
        compiled->outputs = outputs_->CopyFor(nullptr, false);
    }
    compiled->messages = std::move(messages);
    compiled->cdbDimension = cdbDimension_;
    compiled->inputWidth = inputWidth_;
    compiled->baseWidth = baseWidth_;
    return compiled;
}

void CDBAppObject::CreateFromCompiled(const CompiledBlockType& compiled) {
    const std::shared_ptr<IAppObject> self = shared_from_this();
    // Made aside and put in place together: running out of memory half-way leaves the block
    // without members, as a failed creation from the definition would.
    std::shared_ptr<CDBInputs> inputs =
        compiled.inputs ? compiled.inputs->SharedFor(self) : nullptr;
    std::shared_ptr<CDBOutputs> outputs =
        compiled.outputs ? compiled.outputs->SharedFor(self) : nullptr;
    std::shared_ptr<CDBAttributes> attributes =
        compiled.attributes ? compiled.attributes->SharedFor(self) : nullptr;
    inputs_ = std::move(inputs);
    outputs_ = std::move(outputs);
    attributes_ = std::move(attributes);
    ServePendingEvents();
    // No editor is made here: each attribute makes its own when first asked for one, for the
    // class its type has then, so that a windowed host's blocks share their members as a
    // headless host's do.
    for (const Message& message : compiled.messages) {
        ShowMessage(message.text, message.title, message.icon, message.buttons);
    }
    cdbDimension_ = compiled.cdbDimension;
    if (inputs_) {
        inputWidth_ = compiled.inputWidth;
    }
    if (inputs_ && outputs_) {
        baseWidth_ = compiled.baseWidth;
    }
}

void CDBAppObject::CreateFromDefinition() {
    const int32_t expectedInputs =
        WalkSection(ObjectXML(), "AppObject/InReferences", [&](pugi::xml_node child) {
            const std::string name = xml::BaseName(child);
            if (!inputs_) {
                inputs_ = std::make_shared<CDBInputs>();
            }
            inputs_->AddFromDefinition(name, child, shared_from_this());
        });
    // Each step below that goes through a collection is dropped when the collection does not
    // exist. The absence is tested up front rather than thrown and caught: many blocks have no
    // inputs or no outputs, and a throw costs more than placing such a block otherwise does.
    if (inputs_) {
        SkipStep([&] {
            if (inputs_->IInputs_Count() != expectedInputs) {
                ShowMessage(SectionMessage("InReferences", header_->name));
            }
        });
    }

    const int32_t expectedOutputs =
        WalkSection(ObjectXML(), "AppObject/OutReferences", [&](pugi::xml_node child) {
            const std::string name = xml::BaseName(child);
            if (!outputs_) {
                outputs_ = std::make_shared<CDBOutputs>();
            }
            outputs_->AddFromDefinition(name, child, shared_from_this());
        });
    if (outputs_) {
        SkipStep([&] {
            if (outputs_->IOutputs_Count() != expectedOutputs) {
                ShowMessage(SectionMessage("OutReferences", header_->name));
            }
        });
    }

    std::shared_ptr<CDBAttribute> selector;
    const int32_t expectedAttributes =
        WalkSection(ObjectXML(), "AppObject/Attributes", [&](pugi::xml_node child) {
            const std::string name = xml::BaseName(child);
            if (!attributes_) {
                attributes_ = std::make_shared<CDBAttributes>();
            }
            std::shared_ptr<CDBAttribute> added = attributes_->AddFromDefinition(
                name, child, shared_from_this(), seldom_->interceptor);
            // The last selector in document order governs all unit-dependent attributes.
            if (Need(added).IsUnitSelector()) {
                selector = added;
            }
        });

    if (selector && attributes_) {
        for (const auto& attribute : attributes_->Members()) {
            ServePendingEvents();
            if (attribute && attribute->IsUnitDependent()) {
                SkipStep([&] { attribute->ApplyFirstUnit(*selector); });
                // Until its unit is known such an attribute has no type and so no editor.
                SkipStep([&] { attribute->CreateEditor(); });
            }
        }
    }

    if (manageShortFloat_ && attributes_) {
        for (const auto& attribute : attributes_->Members()) {
            SkipStep([&] { Need(attribute).ApplyShortFloat(); });
        }
    }

    if (attributes_) {
        SkipStep([&] {
            if (attributes_->IAttributes_Count() != expectedAttributes) {
                ShowMessage(SectionMessage("Attribute", header_->name));
            }
        });
    }

    // A failure inside the layout ends it silently with the positions reached so far.
    SkipStep([&] { ComputeCDBLayout(); });

    if (inputs_) {
        SkipStep([&] { inputWidth_ = inputs_->MaxNameLength(); });
    }
    if (inputs_ && outputs_) {
        SkipStep(
            [&] { baseWidth_ = CheckedAdd(inputs_->MaxNameLength(), outputs_->MaxNameLength()); });
    }
}

void CDBAppObject::ComputeCDBLayout() {
    if (EqualsNoCase(uniqueIdString_, "Q_EMPTY")) {
        return;  // this type has no CDB at all, not even the header
    }

    // One pass gathers the members that take a place, one sort puts them in the order the
    // numbers are walked (attributes before inputs within a number, each in collection
    // order), one pass lays them: N log N in the number of members, where walking every
    // member for every number was N squared.
    struct Placed {
        int32_t number;
        CDBAttribute* attribute;
        CDBInput* input;
    };
    std::vector<Placed> members;
    int32_t highest = 1;
    if (attributes_) {
        for (const auto& attribute : attributes_->Members()) {
            ServePendingEvents();
            if (!Need(attribute).IAttribute_ToolOnly()) {
                const int32_t number = attribute->CDBOrderInPosition();
                highest = std::max(highest, number);
                if (number >= 1) {
                    members.push_back(Placed{number, attribute.get(), nullptr});
                }
            }
        }
    }
    if (inputs_) {
        for (const auto& input : inputs_->Members()) {
            ServePendingEvents();
            const int32_t number = Need(input).CDBOrderInPosition();
            highest = std::max(highest, number);
            if (number >= 1) {
                members.push_back(Placed{number, nullptr, input.get()});
            }
        }
    }
    std::stable_sort(members.begin(), members.end(),
                     [](const Placed& a, const Placed& b) { return a.number < b.number; });

    int32_t offset = kImageHeaderBytes;
    // 64 bits, so that an ordering number at the top of the 32-bit range can end the walk.
    int64_t number = 1;
    for (std::size_t next = 0; number <= highest; ++number) {
        bool attributeFound = false;
        bool inputFound = false;
        for (; next < members.size() && members[next].number == number; ++next) {
            ServePendingEvents();
            const Placed& member = members[next];
            if (member.attribute != nullptr) {
                member.attribute->CDBPosition(offset);
                offset = CheckedAdd(offset, SizeInCdb(*member.attribute));
                attributeFound = true;
            } else {
                member.input->CDBPosition(offset);
                offset = CheckedAdd(offset, SizeInCdb(*member.input));
                inputFound = true;
            }
        }
        if (!attributeFound && !inputFound) {
            if (attributes_ || inputs_) {
                ShowMessage(uniqueIdString_ +
                            ": Missing CDBOrderinPosition in XML File: " + std::to_string(number));
            }
            break;
        }
        if (attributeFound && inputFound) {
            // Only an attribute and an input sharing a number are a fault; several of one kind
            // are laid one after the other.
            ShowMessage(uniqueIdString_ +
                        ": Duplicates CDBOrderinPosition in XML File: " + std::to_string(number));
            break;
        }
    }
    cdbDimension_ = offset;
}

}  // namespace zerbin
