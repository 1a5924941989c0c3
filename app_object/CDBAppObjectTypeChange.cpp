// A block whose type changed since its project was saved: the stamp it records, what its load
// found, and its update to the library's type.
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "parameters/CDBAttributes.h"
#include "parameters/ValueRules.h"
#include "platform/DefinitionStore.h"

namespace zerbin {
namespace {

std::string TextOf(pugi::xml_node element) {
    return std::string(xml::FirstChildTextView(element).value_or(std::string_view()));
}

}  // namespace

std::string CDBAppObject::TypeStamp() {
    if (typeChange_ && !typeChange_->savedStamp.empty()) {
        return typeChange_->savedStamp;
    }
    // The stored definition only: a type that is not loaded has no stamp, and asking for it
    // must not tell the user again that it cannot be loaded.
    return CurrentTypeStamp(uniqueIdString_,
                            definitionCache_->Store()->FindDocument(uniqueIdString_));
}

const TypeChange* CDBAppObject::ChangedType() const {
    return typeChange_.get();
}

std::string CDBAppObject::ITypeChange_Stamp() {
    return TypeStamp();
}

bool CDBAppObject::ITypeChange_IsChanged() {
    return typeChange_ != nullptr;
}

std::vector<std::string> CDBAppObject::ITypeChange_Changes() {
    std::vector<std::string> lines;
    if (!typeChange_) {
        return lines;
    }
    const TypeChange& change = *typeChange_;
    lines.push_back("type changed: saved as " +
                    (change.savedStamp.empty() ? std::string("(no stamp)") : change.savedStamp) +
                    ", now " + change.currentStamp);
    for (const TypeChange::Value& value : change.unmapped) {
        lines.push_back(value.name + " '" + value.value + "' kept: " + value.reason);
    }
    for (const std::string& output : change.outputsGone) {
        lines.push_back("output " + output + " kept: " + kNoSuchOutput);
    }
    for (const std::string& name : change.added) {
        std::string value;
        SkipStep([&] { value = Need(attributes_->IAttributes_Item(name)).IAttribute_Value(); });
        lines.push_back(name + " new: '" + value + "'");
    }
    return lines;
}

std::vector<std::string> CDBAppObject::ITypeChange_Update() {
    std::vector<std::string> lines;
    for (const TypeChange::Value& value : UpdateToLibraryType()) {
        lines.push_back(value.reason == kNoSuchOutput
                            ? "output " + value.name + ": " + value.reason
                            : value.name + " '" + value.value + "': " + value.reason);
    }
    return lines;
}

void CDBAppObject::NoteSavedTypeStamp(pugi::xml_node element) {
    const std::string_view saved = element.attribute(kTypeStampAttribute).value();
    if (saved.empty()) {
        return;
    }
    const std::string current = TypeStamp();
    if (!current.empty() && current != saved) {
        typeChange_ = std::make_unique<TypeChange>();
        typeChange_->savedStamp = saved;
        typeChange_->currentStamp = current;
    }
}

bool CDBAppObject::TakesSavedValue(std::size_t index, pugi::xml_node element,
                                   const std::string& text) {
    std::string objection;
    SkipStep([&] { objection = CheckValue(*attributes_->At(index), text).objection; });
    if (objection.empty()) {
        return true;
    }
    seldom_.Write().refused.push_back(RefusedValue{index, text, {}});
    typeChange_->unmapped.push_back({element.name(), text, objection});
    return false;
}

void CDBAppObject::FinishTypeChange(bool attributesLoaded) {
    const pugi::xml_node keptAttributes = KeptSection(kKeptAttributes);
    const pugi::xml_node keptOutputs = KeptSection(kKeptOutputs);
    if (!typeChange_) {
        // Without a stamp the change shows only where the project names what the type lacks.
        if (!keptAttributes.first_child() && !keptOutputs.first_child()) {
            return;
        }
        typeChange_ = std::make_unique<TypeChange>();
        typeChange_->currentStamp = TypeStamp();
        for (pugi::xml_node kept : keptAttributes.children()) {
            typeChange_->unmapped.push_back({kept.name(), TextOf(kept), kNoSuchParameter});
        }
    } else if (!attributesLoaded && attributes_) {
        for (const auto& attribute : attributes_->AsTheyStand()) {
            typeChange_->added.push_back(attribute->IAttribute_Name());
        }
    }
    for (pugi::xml_node kept : keptOutputs.children()) {
        typeChange_->outputsGone.push_back(kept.name());
    }
    if (!seldom_->refused.empty()) {
        for (RefusedValue& refused : seldom_.Write().refused) {
            SkipStep([&] {
                refused.left = attributes_->AsTheyStand()[refused.index]->IAttribute_Value();
            });
        }
    }
}

std::vector<TypeChange::Value> CDBAppObject::UpdateToLibraryType() {
    std::vector<TypeChange::Value> dropped;
    if (!typeChange_) {
        return dropped;
    }
    // Each value is judged as the type stands after the ones before it were written: a
    // selector taken changes what the next may take, as in the editors.
    for (TypeChange::Value value : typeChange_->unmapped) {
        std::shared_ptr<IAttribute> attribute;
        if (attributes_) {
            SkipStep([&] { attribute = attributes_->IAttributes_Item(value.name); });
        }
        if (attribute) {
            try {
                const ValueVerdict verdict = CheckValue(*attribute, value.value);
                if (verdict.Taken()) {
                    attribute->IAttribute_Value(verdict.value);
                    continue;
                }
                value.reason = verdict.objection;
            } catch (const std::bad_alloc&) {
                throw;
            } catch (const std::exception& error) {
                value.reason = error.what();
            }
        }
        dropped.push_back(std::move(value));
    }
    for (const std::string& output : typeChange_->outputsGone) {
        dropped.push_back({output, std::string(), kNoSuchOutput});
    }
    for (pugi::xml_node section : {KeptSection(kKeptAttributes), KeptSection(kKeptOutputs)}) {
        while (pugi::xml_node child = section.first_child()) {
            section.remove_child(child);
        }
    }
    if (!seldom_->refused.empty()) {
        seldom_.Write().refused.clear();
    }
    typeChange_.reset();
    return dropped;
}

}  // namespace zerbin
