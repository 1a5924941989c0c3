// The block's subtree in project XML, written and read back, and the leaner subtree that the
// simulator and other tools take.
#include <cmath>
#include <string>
#include <string_view>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "base/SkipMode.h"
#include "connections/CDBOutputs.h"
#include "interfaces/Error.h"
#include "parameters/CDBAttributes.h"
#include "platform/Events.h"
#include "base/Xml.h"

namespace zerbin {
namespace {

// An element that always holds a text node, also for a value that happens to read
// "NoTextField", which AppendElement would swallow.
pugi::xml_node AppendTextElement(pugi::xml_node parent, const std::string& name,
                                 const std::string& text) {
    pugi::xml_node element = xml::AppendChildElement(parent, name);
    xml::AppendText(element, text);
    return element;
}

// A canvas position from project XML, written on a machine with either separator.
void LoadPosition(pugi::xml_node element, double& position) {
    const std::string text = NormalizeDecimal(xml::FirstChildText(element));
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
        AppendTextElement(block, "X_Position", FormatDouble(xPosition_));
        AppendTextElement(block, "Y_Position", FormatDouble(yPosition_));
        AppendTextElement(block, "CDB", lastStream_);
    } else {
        AppendTextElement(block, "Key", extendedKey_);
    }

    pugi::xml_node attributes = AppendElement(doc, block, "Attributes", kNoTextField);
    if (attributes_) {
        for (const auto& attribute : attributes_->Members()) {
            ServePendingEvents();
            AppendTextElement(attributes, attribute->IAttribute_Name(),
                              attribute->IAttribute_Value());
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
    for (pugi::xml_node child : ParentNode.children()) {
        ServePendingEvents();
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string_view key = xml::BaseNameView(child);
        if (EqualsNoCase(key, "CDB")) {
            SkipStep([&] { lastStream_ = xml::FirstChildText(child); });
        } else if (EqualsNoCase(key, "USERNAME")) {
            userName_.clear();
            SkipStep([&] { userName_ = xml::FirstChildText(child); });
            RecomputeWidth();
        } else if (EqualsNoCase(key, "X_POSITION")) {
            SkipStep([&] { LoadPosition(child, xPosition_); });
        } else if (EqualsNoCase(key, "Y_POSITION")) {
            SkipStep([&] { LoadPosition(child, yPosition_); });
        } else if (EqualsNoCase(key, "ATTRIBUTES")) {
            LoadAttributeValues(child);
        } else if (EqualsNoCase(key, "OUTPUTS")) {
            LoadDisplayableOutputs(child);
        }
    }
}

void CDBAppObject::LoadAttributeValues(pugi::xml_node element) {
    // The unit selector first: writing it re-derives the unit-dependent attributes, whose
    // saved values the second pass then writes over the derived ones.
    for (pugi::xml_node child : element.children()) {
        ServePendingEvents();
        if (xml::IsComment(child) || !EqualsNoCase(xml::BaseNameView(child), "UNITS")) {
            continue;
        }
        SkipStep([&] {
            if (auto attribute = Need(attributes_).IAttributes_Item(xml::BaseName(child))) {
                Need(std::dynamic_pointer_cast<CDBAttribute>(attribute))
                    .RestoreSavedValue(xml::FirstChildText(child));
            }
        });
        break;
    }
    for (pugi::xml_node child : element.children()) {
        ServePendingEvents();
        if (xml::IsComment(child) || EqualsNoCase(xml::BaseNameView(child), "UNITS")) {
            continue;
        }
        std::shared_ptr<IAttribute> attribute;
        SkipStep([&] { attribute = Need(attributes_).IAttributes_Item(xml::BaseName(child)); });
        if (!attribute) {
            continue;
        }
        // An element without text leaves the value empty, not at its default.
        const auto loaded = std::dynamic_pointer_cast<CDBAttribute>(attribute);
        SkipStep([&] { Need(loaded).ClearLoadedValue(); });
        SkipStep([&] { Need(loaded).RestoreSavedValue(xml::FirstChildText(child)); });
    }
}

void CDBAppObject::LoadDisplayableOutputs(pugi::xml_node element) {
    for (pugi::xml_node child : element.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        SkipStep([&] {
            std::shared_ptr<IOutput> output = Need(outputs_).IOutputs_Item(xml::BaseName(child));
            for (pugi::xml_attribute flag : child.attributes()) {
                // Presence alone counts: the writer only ever writes "1".
                if (EqualsNoCase(xml::BaseNameView(flag), "ISDISPLAYABLE")) {
                    Need(output).IOutput_IsDisplayable(true);
                }
            }
        });
    }
}

}  // namespace zerbin
