// Loading an attribute from its element in the definition file. Every step may fail on its
// own, in a file written by hand, and the next one still runs: what the user learns of a bad
// definition are the warnings, never an error.
#include <cstdint>
#include <string>
#include <string_view>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "base/XmlPathIndex.h"
#include "datatypes/CDBFields.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/CDBUnits.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"
#include "interfaces/IMemberOwner.h"
#include "parameters/CDBAttribute.h"
#include "platform/Messages.h"

namespace zerbin {

namespace {

constexpr int32_t kFieldNodeType = 10;

std::string AttributePath(const std::string& attributeName, const std::string& tail) {
    return "AppObject/Attributes/" + attributeName + "/" + tail;
}

// The text of the first node the path selects; throws when it selects nothing or the node
// has no text.
std::string TextAt(pugi::xml_node document, const std::string& path) {
    return xml::FirstChildText(Need(xml::FindFirstIndexed(document, path)));
}

// Sets a bound from the text at path, as TextAt reads it, when there is one. Many numbers
// have no Min or no Max, and that is no error: the absence is tested, not thrown and caught on
// the path every such block takes. A bound that is absent stays unset.
template <class SetBound>
void LoadBound(pugi::xml_node document, const std::string& path, SetBound&& set) {
    const pugi::xml_node node = xml::FindFirstIndexed(document, path);
    const pugi::xml_node text = node ? node.first_child() : pugi::xml_node();
    if (!text || text.type() == pugi::node_element) {
        return;
    }
    SkipStep([&] { set(NormalizeDecimal(text.value())); });
}

// A choice of UNITS, TYPES or the device list counts only up to its first ":".
std::string ChoiceValue(const std::string& normalized) {
    return normalized.substr(0, normalized.find(':'));
}

// Hands each choice of a UNITS or TYPES element to onChoice with its name and value, and
// returns the enumeration description of them all, "value,name;" for each.
template <class OnChoice>
std::string ReadChoices(pugi::xml_node list, OnChoice onChoice) {
    std::string description;
    // Deliberately kept from one choice to the next: a choice without text repeats the value
    // of the one before it.
    std::string value;
    for (pugi::xml_node choice : list.children()) {
        if (xml::IsComment(choice)) {
            continue;
        }
        const std::string name = xml::BaseName(choice);
        SkipStep([&] { value = NormalizeDecimal(xml::FirstChildText(choice)); });
        value = ChoiceValue(value);
        onChoice(choice, name, value);
        description += value + "," + name + ";";
    }
    return description;
}

}  // namespace

void CDBAttribute::ShowLoadWarning(const std::string& lead, const std::string& tail) {
    // The owner's name is part of the text; without an owner the warning cannot be told.
    SkipStep([&] {
        const std::string objectName = Need(parent_).IAppObject_Name();
        ShowMessage(lead + " not defined into the XML file of the object " + objectName + tail,
                    "Warning", MessageIcon::Critical);
    });
}

void CDBAttribute::LoadDefinition(pugi::xml_node node) {
    Own().isUnit = false;

    for (pugi::xml_attribute key : node.attributes()) {
        SkipStep([&] { LoadKey(key); });
    }

    if (interceptor_) {
        SkipStep([&] {
            auto self = Self();
            interceptor_->InterceptUnitDependent(self, Own().isUnitDependent);
        });
        SkipStep([&] {
            auto self = Self();
            interceptor_->InterceptDifferential(self, Own().differential);
        });
    }

    for (pugi::xml_node child : node.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        SkipStep([&] { LoadElement(child); });
    }

    if (def_->isUnit) {
        return;
    }
    if (def_->isDeviceDependent) {
        SkipStep([&] { LoadDeviceDependent(def_->deviceKey); });
        return;
    }
    if (def_->isUnitDependent) {
        return;  // the type waits for the unit selector (ApplyFirstUnit)
    }
    if (!def_->isType) {
        SkipStep([&] { snvtType_->ResolveByID(def_->snvtTypeId); });
    }

    // Held for the branches below: the node handles point into it.
    std::shared_ptr<const pugi::xml_document> definition;
    SkipStep([&] { definition = Owner().ObjectXML(); });
    pugi::xml_node document;
    if (definition) {
        document = *definition;
    }

    // A type selector's record came from its choices, not from the dictionary: its class word
    // is not asked, so neither branch below applies to it.
    TypeClass typeClass = TypeClass::Other;
    if (!def_->isType) {
        typeClass = ClassOf(*snvtType_);
    }
    if (typeClass == TypeClass::Struct) {
        LoadStruct(document);
    } else if (IsNumericClass(typeClass)) {
        LoadNumeric(document);
    }
}

void CDBAttribute::LoadKey(pugi::xml_attribute key) {
    const std::string_view keyName = xml::BaseNameView(key);
    const std::string text = key.value();
    if (EqualsNoCase(keyName, "KEEPFLOATSTANDARD")) {
        Own().isKeepFloatStandard = true;  // presence alone: "0" asks for it as well
    } else if (EqualsNoCase(keyName, "DIVIDEBY")) {
        Own().divideBy = ToInt32(LeadingNumber(text));
    } else if (EqualsNoCase(keyName, "DEVICEDEPENDENT")) {
        Own().isDeviceDependent = true;
        Own().deviceKey = text;
    } else if (EqualsNoCase(keyName, "UNITDEPENDENT")) {
        Own().isUnitDependent = LeadingNumber(text) != 0;
    } else if (EqualsNoCase(keyName, "DIFFERENTIAL")) {
        Own().differential = LeadingNumber(text) != 0;
    } else if (EqualsNoCase(keyName, "TOOLONLY")) {
        Own().toolOnly = LeadingNumber(text) != 0;
    }
}

void CDBAttribute::LoadElement(pugi::xml_node child) {
    const std::string_view element = xml::BaseNameView(child);
    // A missing text reads as the empty one, which is what the warnings below are about.
    std::string text;
    auto readText = [&] { SkipStep([&] { text = xml::FirstChildText(child); }); };

    if (EqualsNoCase(element, "DESCRIPTION")) {
        SkipStep([&] { Own().description = xml::FirstChildText(child); });
    } else if (EqualsNoCase(element, "CDBORDERINPOSITION")) {
        readText();
        SkipStep([&] { Own().orderInPosition = ToInt32(LeadingNumber(text)); });
        if (text.empty()) {
            ShowLoadWarning(def_->name + ": CDBOrderingPosition", ".");
        }
    } else if (EqualsNoCase(element, "VISIBLE")) {
        readText();
        visible_ = LeadingNumber(text) != 0;
    } else if (EqualsNoCase(element, "SNVTTYPE")) {
        readText();
        Own().snvtTypeId = text;
        if (text.empty()) {
            ShowLoadWarning(def_->name + ": SNVTType", ".");
        }
    } else if (EqualsNoCase(element, "DEFAULTVALUE")) {
        readText();
        if (text.empty()) {
            text = "0";
            ShowLoadWarning(def_->name + ": Default value", "; 0 assumed.");
        }
        Own().defaultValue = text;
        if (def_->isType) {
            // TYPES came first and retyped the inputs and outputs to its first choice: the
            // full write makes them follow the default, as a project load would.
            IAttribute_Value(text);
        } else {
            value_ = text;
        }
    } else if (EqualsNoCase(element, "UNITS")) {
        LoadUnits(child);
    } else if (EqualsNoCase(element, "TYPES")) {
        LoadTypes(child);
    }
}

void CDBAttribute::LoadUnits(pugi::xml_node units) {
    Own().isUnit = true;
    snvtType_->SetGenType("Enum");
    snvtType_->SetLength(1);
    if (!def_->units) {
        Own().units = std::make_shared<CDBUnits>();
    }
    const std::string description = ReadChoices(
        units, [&](pugi::xml_node choice, const std::string& unitName, const std::string& value) {
            if (def_->defaultValue.empty()) {
                Own().defaultValue = value;
                value_ = def_->defaultValue;
            }
            // A second unit of the same name is refused by the list; its pair is still offered.
            SkipStep([&] {
                Own().units->AddUnit(value, unitName, choice.attribute("Differential").value());
            });
        });
    snvtType_->SetEnumDesc(description);
}

void CDBAttribute::LoadTypes(pugi::xml_node types) {
    Own().isType = true;
    snvtType_->SetGenType("Enum");
    snvtType_->SetLength(1);
    const std::string description =
        ReadChoices(types, [&](pugi::xml_node, const std::string&, const std::string& value) {
            if (def_->defaultValue.empty()) {
                Own().defaultValue = value;
                // The full write, so that the inputs and outputs take the first type at once.
                IAttribute_Value(def_->defaultValue);
            }
        });
    snvtType_->SetEnumDesc(description);
}

// No handling of its own: the first failure ends it, and its caller goes on.
void CDBAttribute::LoadDeviceDependent(const std::string& key) {
    snvtType_->SetGenType("Enum");
    snvtType_->SetLength(1);
    if (interceptor_) {
        auto self = Self();
        if (interceptor_->InterceptDeviceList(self)) {
            return;
        }
    }
    const auto deviceDocument = Need(parent_).IAppObject_OwnerDeviceXML();
    const pugi::xml_node list = Need(xml::FindFirst(Need(deviceDocument), "Device/" + key));
    std::string description;
    for (pugi::xml_node entry : list.children()) {
        if (xml::IsComment(entry)) {
            continue;
        }
        const std::string entryName = xml::BaseName(entry);
        const std::string value = ChoiceValue(NormalizeDecimal(xml::FirstChildText(entry)));
        if (def_->defaultValue.empty()) {
            Own().defaultValue = value;
            value_ = value;
        }
        description += value + "," + entryName + ";";
    }
    snvtType_->SetEnumDesc(Trim(description));
}

void CDBAttribute::LoadNumeric(pugi::xml_node document) {
    // DefaultValue carries the separator in force; Value keeps the text as read, since every
    // read normalises it again.
    SkipStep([&] {
        Own().defaultValue =
            NormalizeDecimal(TextAt(document, AttributePath(def_->name, "DefaultValue")));
    });
    LoadBound(document, AttributePath(def_->name, "Min"),
              [&](const std::string& text) { snvtType_->SetMin(text); });
    SkipStep([&] { Own().min = snvtType_->ISNVType_Min(); });
    LoadBound(document, AttributePath(def_->name, "Max"),
              [&](const std::string& text) { snvtType_->SetMax(text); });
    SkipStep([&] { Own().max = snvtType_->ISNVType_Max(); });
}

void CDBAttribute::LoadStruct(pugi::xml_node document) {
    SkipStep([&] { fields_ = std::make_shared<CDBFields>(); });
    SkipStep([&] { Need(fields_).LoadFields(snvtType_->ISNVType_ID(), kFieldNodeType); });
    value_.clear();
    Own().defaultValue.clear();
    int32_t total = 0;

    if (fields_) {
        const std::shared_ptr<IUnitsProvider> self = shared_from_this();
        for (const auto& field : fields_->Fields()) {
            SkipStep([&] {
                const int64_t sum = int64_t{total} + field->Record().StoredLength();
                if (sum > INT32_MAX || sum < INT32_MIN) {
                    throw OverflowError();
                }
                total = static_cast<int32_t>(sum);
            });
            SkipStep([&] { field->SetParent(self); });

            std::string fieldName;
            SkipStep([&] { fieldName = field->IField_Name(); });
            const std::string fieldPath = AttributePath(def_->name, fieldName + "/");
            std::string text;
            SkipStep([&] { text = TextAt(document, fieldPath + "DefaultValue"); });
            if (text.empty()) {
                text = "0";
                ShowLoadWarning(def_->name + "." + fieldName + ": Default value", "; 0 assumed.");
            }
            SkipStep([&] {
                const bool textual = ClassOf(field->Record()) == TypeClass::Textual;
                field->DefaultValue(textual ? text : NormalizeDecimal(text));
            });
            SkipStep([&] { Own().defaultValue += field->IField_DefaultValue() + " "; });
            LoadBound(document, fieldPath + "Min",
                      [&](const std::string& text) { field->SetFieldMin(text); });
            LoadBound(document, fieldPath + "Max",
                      [&](const std::string& text) { field->SetFieldMax(text); });
        }
    }

    Own().defaultValue = Trim(def_->defaultValue);
    value_ = def_->defaultValue;
    snvtType_->SetLength(total);
}

}  // namespace zerbin
