// The block's subtree in project XML, written and read back, and the leaner subtree that the
// simulator and other tools take.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "connections/CDBOutputs.h"
#include "interfaces/Error.h"
#include "parameters/CDBAttributes.h"
#include "platform/Events.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

bool OnlyWhiteSpace(const std::string& text) {
    return !text.empty() && text.find_first_not_of(" \t\n\r") == std::string::npos;
}

// An element that always holds a text node, also for a value that happens to read
// "NoTextField", which AppendElement would swallow. A text of white space alone goes into a
// CDATA section: as plain text an XML reader drops it. A carriage return stays plain text,
// where it is written as a character reference and so is no white space to the reader.
pugi::xml_node AppendTextElement(pugi::xml_node parent, const std::string& name,
                                 const std::string& text) {
    pugi::xml_node element = xml::AppendChildElement(parent, name);
    if (OnlyWhiteSpace(text) && text.find('\r') == std::string::npos) {
        element.append_child(pugi::node_cdata).set_value(text.c_str());
    } else {
        xml::AppendText(element, text);
    }
    return element;
}

// A canvas position from project XML, written on a machine with either separator.
void LoadPosition(pugi::xml_node element, double& position) {
    // An empty element leaves the block where it is.
    const std::optional<std::string_view> given = xml::FirstChildTextView(element);
    if (!given) {
        return;
    }
    const std::string text = NormalizeDecimal(std::string(*given));
    // With "." the reading is lenient: a text with no number places the block at 0.
    const double read = DecimalSeparator() == "." ? LeadingNumber(text) : LocaleDouble(text);
    // A number beyond the range of a Double is an overflow, as for any other number rule:
    // the position keeps its value instead of turning into an infinity that no save can write.
    if (!std::isfinite(read)) {
        throw OverflowError();
    }
    position = read;
}

}  // namespace

void CDBAppObject::SaveSubtree(pugi::xml_node parentNode, pugi::xml_document& doc,
                               bool forProject) {
    pugi::xml_node block = AppendElement(doc, parentNode, uniqueIdString_, kNoTextField);
    AppendTextElement(block, "UserName", userName_);
    if (forProject) {
        AppendTextElement(block, "X_Position", FormatDoubleExact(xPosition_));
        AppendTextElement(block, "Y_Position", FormatDoubleExact(yPosition_));
        AppendTextElement(block, "CDB", lastStream_);
    } else {
        AppendTextElement(block, "Key", extendedKey_);
    }

    pugi::xml_node attributes = AppendElement(doc, block, "Attributes", kNoTextField);
    if (attributes_) {
        const auto& members = attributes_->Members();
        for (std::size_t i = 0; i < members.size(); ++i) {
            ServePendingEvents();
            std::string value = members[i]->IAttribute_Value();
            if (forProject) {
                for (const RefusedValue& refused : seldom_->refused) {
                    if (refused.index == i && refused.left == value) {
                        value = refused.saved;
                    }
                }
            }
            AppendTextElement(attributes, members[i]->IAttribute_Name(), value);
        }
    }
    if (forProject) {
        for (pugi::xml_node kept : KeptSection(kKeptAttributes).children()) {
            attributes.append_copy(kept);
        }
    }

    if (outputs_) {
        pugi::xml_node outputs;
        for (const auto& output : outputs_->Members()) {
            const bool displayable = output->IDisplayItem_IsDisplayable();
            if (!displayable) {
                continue;
            }
            if (!outputs) {
                outputs = AppendElement(doc, block, "Outputs", kNoTextField);
            }
            AppendAttributeElement(doc, outputs, output->IOutput_Name(), "IsDisplayable",
                                   BoolDigit(displayable));
        }
    }
    if (forProject) {
        pugi::xml_node outputs = block.child("Outputs");
        for (pugi::xml_node kept : KeptSection(kKeptOutputs).children()) {
            if (!outputs) {
                outputs = AppendElement(doc, block, "Outputs", kNoTextField);
            }
            outputs.append_copy(kept);
        }
        for (pugi::xml_node kept : KeptSection(kKeptBlock).children()) {
            block.append_copy(kept);
        }
    }
}

void CDBAppObject::IAppObject_XmlSave(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) {
    SaveSubtree(ParentNode, XMLDoc, true);
}

void CDBAppObject::IAppObject_XMLSaveSim(pugi::xml_node ParentNode, pugi::xml_document& XMLDoc) {
    SaveSubtree(ParentNode, XMLDoc, false);
}

void CDBAppObject::IAppObject_XMLSaveForInteroperability(pugi::xml_node ParentNode,
                                                         pugi::xml_document& XMLDoc) {
    SaveSubtree(ParentNode, XMLDoc, false);
}

void CDBAppObject::IAppObject_XmlLoad(pugi::xml_node ParentNode) {
    if (seldom_->keptEntries || !seldom_->refused.empty()) {
        Seldom& seldom = seldom_.Write();
        seldom.keptEntries.reset();
        seldom.refused.clear();
    }
    typeChange_.reset();
    SkipStep([&] { NoteSavedTypeStamp(ParentNode); });
    bool attributesLoaded = false;
    for (pugi::xml_node child : ParentNode.children()) {
        ServePendingEvents();
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view key = xml::BaseNameView(child);
        // An empty element is ordinary input (a tool that leaves the image to the loader
        // writes <CDB></CDB>): it keeps what the block has, without a failing step.
        if (EqualsNoCase(key, "CDB")) {
            if (const auto text = xml::FirstChildTextView(child)) {
                lastStream_ = *text;
            }
        } else if (EqualsNoCase(key, "USERNAME")) {
            const auto text = xml::FirstChildTextView(child);
            userName_ = text ? *text : std::string_view();
            RecomputeWidth();
        } else if (EqualsNoCase(key, "X_POSITION")) {
            SkipStep([&] { LoadPosition(child, xPosition_); });
        } else if (EqualsNoCase(key, "Y_POSITION")) {
            SkipStep([&] { LoadPosition(child, yPosition_); });
        } else if (EqualsNoCase(key, "ATTRIBUTES")) {
            attributesLoaded = true;
            LoadAttributeValues(child);
        } else if (EqualsNoCase(key, "OUTPUTS")) {
            LoadDisplayableOutputs(child);
        } else if (child.type() == pugi::node_element) {
            Keep(kKeptBlock, child);
        }
    }
    FinishTypeChange(attributesLoaded);
    TellOfKeptEntries();
}

namespace {

// The index of the attribute an element of a saved block names, without reaching it; -1 when
// none does.
std::ptrdiff_t AttributeIndex(const std::shared_ptr<CDBAttributes>& attributes,
                              pugi::xml_node element, std::size_t likely) {
    if (!attributes || element.type() != pugi::node_element) {
        return -1;
    }
    std::ptrdiff_t found = -1;
    SkipStep([&] { found = attributes->IndexOf(xml::BaseNameView(element), likely); });
    return found;
}

bool IsSelector(const CDBAttribute& attribute) {
    return attribute.IsUnitSelector() || attribute.IsTypeSelector();
}

}  // namespace

void CDBAppObject::LoadAttributeValues(pugi::xml_node element) {
    // Selectors first, whatever their names: writing one re-derives or retypes others, whose
    // saved values the second pass then writes over the derived ones. Each selector takes
    // its first element; a second one is not read at all.
    // Each element is matched to its attribute once, for both passes.
    std::vector<std::pair<pugi::xml_node, std::ptrdiff_t>> named;
    named.reserve(attributes_ ? static_cast<std::size_t>(attributes_->IAttributes_Count()) : 0);
    for (pugi::xml_node child : element.children()) {
        if (!xml::IsComment(child)) {
            const std::ptrdiff_t before = named.empty() ? -1 : named.back().second;
            named.emplace_back(
                child, AttributeIndex(attributes_, child, static_cast<std::size_t>(before + 1)));
        }
    }
    const auto standing = [&](std::ptrdiff_t index) -> const CDBAttribute& {
        return *attributes_->AsTheyStand()[static_cast<std::size_t>(index)];
    };
    std::vector<std::ptrdiff_t> restored;
    // Named, not bound: a lambda may not capture a structured binding in every compiler.
    for (const auto& entry : named) {
        const pugi::xml_node child = entry.first;
        const std::ptrdiff_t index = entry.second;
        ServePendingEvents();
        if (index < 0 || !IsSelector(standing(index)) ||
            std::find(restored.begin(), restored.end(), index) != restored.end()) {
            continue;
        }
        restored.push_back(index);
        // No text is the empty value the selector was saved with, as for any attribute.
        const std::string text(xml::FirstChildTextView(child).value_or(std::string_view()));
        if (typeChange_ && !TakesSavedValue(static_cast<std::size_t>(index), child, text)) {
            continue;
        }
        RestoreSelector(static_cast<std::size_t>(index), text);
    }
    for (const auto& entry : named) {
        const pugi::xml_node child = entry.first;
        const std::ptrdiff_t index = entry.second;
        ServePendingEvents();
        if (index < 0) {
            // A value the type no longer defines goes back into the project as it came.
            if (child.type() == pugi::node_element) {
                Keep(kKeptAttributes, child);
                if (typeChange_) {
                    typeChange_->unmapped.push_back(
                        {child.name(),
                         std::string(xml::FirstChildTextView(child).value_or(std::string_view())),
                         kNoSuchParameter});
                }
            }
            continue;
        }
        if (IsSelector(standing(index))) {
            continue;
        }
        const std::optional<std::string_view> text = xml::FirstChildTextView(child);
        const auto at = static_cast<std::size_t>(index);
        // A member the block has not reached keeps the type's and the value beside it: most of
        // a project's values are such.
        if (!typeChange_ && attributes_->RestoreUnreached(at, text)) {
            continue;
        }
        if (text && attributes_->IsTheTypes(at) && standing(index).RestoringLeavesAsIs(*text)) {
            continue;
        }
        if (text && typeChange_ && !TakesSavedValue(at, child, std::string(*text))) {
            continue;
        }
        const std::shared_ptr<CDBAttribute> loaded = attributes_->At(at);
        // An element without text leaves the value empty, not at its default.
        SkipStep([&] { loaded->ClearLoadedValue(); });
        if (text) {
            SkipStep([&] { loaded->RestoreSavedValue(std::string(*text)); });
        }
    }
    if (typeChange_ && attributes_) {
        std::vector<bool> saved(attributes_->AsTheyStand().size(), false);
        for (const auto& entry : named) {
            if (entry.second >= 0) {
                saved[static_cast<std::size_t>(entry.second)] = true;
            }
        }
        for (std::size_t i = 0; i < saved.size(); ++i) {
            if (!saved[i]) {
                typeChange_->added.push_back(attributes_->AsTheyStand()[i]->IAttribute_Name());
            }
        }
    }
}

void CDBAppObject::LoadDisplayableOutputs(pugi::xml_node element) {
    for (pugi::xml_node child : element.children()) {
        if (xml::IsComment(child) || child.type() != pugi::node_element) {
            continue;
        }
        std::ptrdiff_t index = -1;
        if (outputs_) {
            SkipStep([&] { index = outputs_->IndexOf(xml::BaseNameView(child)); });
        }
        if (index < 0) {
            Keep(kKeptOutputs, child);
            continue;
        }
        SkipStep([&] {
            for (pugi::xml_attribute flag : child.attributes()) {
                // Presence alone counts: the writer only ever writes "1".
                if (EqualsNoCase(xml::BaseNameView(flag), "ISDISPLAYABLE")) {
                    outputs_->ShowOutput(static_cast<std::size_t>(index));
                }
            }
        });
    }
}

// ---- Entries kept for a later save ---------------------------------------------------------

void CDBAppObject::Keep(const char* section, pugi::xml_node element) {
    std::shared_ptr<pugi::xml_document>& kept = seldom_.Write().keptEntries;
    if (!kept) {
        kept = std::make_shared<pugi::xml_document>();
        for (const char* name : {kKeptBlock, kKeptAttributes, kKeptOutputs}) {
            kept->append_child(name);
        }
    }
    kept->child(section).append_copy(element);
}

pugi::xml_node CDBAppObject::KeptSection(const char* section) const {
    return seldom_->keptEntries ? seldom_->keptEntries->child(section) : pugi::xml_node();
}

std::vector<std::string> CDBAppObject::KeptProjectEntries() const {
    std::vector<std::string> names;
    for (const RefusedValue& refused : seldom_->refused) {
        names.push_back(std::string(kKeptAttributes) + "/" +
                        attributes_->AsTheyStand()[refused.index]->IAttribute_Name());
    }
    if (!seldom_->keptEntries) {
        return names;  // nearly every block: its project held nothing unknown
    }
    for (const char* section : {kKeptBlock, kKeptAttributes, kKeptOutputs}) {
        const std::string prefix =
            std::string_view(section) == kKeptBlock ? std::string() : std::string(section) + "/";
        for (pugi::xml_node kept : KeptSection(section).children()) {
            names.push_back(prefix + kept.name());
        }
    }
    return names;
}

void CDBAppObject::TellOfKeptEntries() {
    const std::vector<std::string> kept = KeptProjectEntries();
    if (kept.empty()) {
        return;
    }
    // Once per type and process: a project with many blocks of a changed type is one fault.
    struct Told {
        std::set<std::string> types;
    };
    if (!ProcessState::Get<Told>().types.insert(UpperCase(uniqueIdString_)).second) {
        return;
    }
    std::string names;
    for (const std::string& name : kept) {
        names += (names.empty() ? "" : ", ") + name;
    }
    if (typeChange_ && !typeChange_->savedStamp.empty()) {
        ShowMessage(uniqueIdString_ + ": the block type has changed since the project was " +
                    "saved; what it no longer takes is kept and saved back unchanged (" + names +
                    ").");
        return;
    }
    ShowMessage(uniqueIdString_ + ": the project holds entries that this block type does not " +
                "define (" + names + "); they are kept and saved back unchanged.");
}

}  // namespace zerbin
