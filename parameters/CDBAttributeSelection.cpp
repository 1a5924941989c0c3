// Type and unit selection: the check that keeps a type selector from breaking the block's
// connections, and the derivation of unit-dependent attributes from a chosen unit.
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "base/XmlPathIndex.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/CDBUnits.h"
#include "datatypes/SnvtDictionary.h"
#include "datatypes/TypeClass.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/ICanvasElement.h"
#include "interfaces/IMemberOwner.h"
#include "parameters/CDBAttribute.h"
#include "parameters/CDBAttributes.h"
#include "parameters/UnitDerivationMemo.h"
#include "platform/Messages.h"

namespace zerbin {

namespace {

std::string UnitPath(const std::string& attributeName, const std::string& list,
                     const std::string& unitName) {
    return "AppObject/Attributes/" + attributeName + "/" + list + "/" + unitName;
}

}  // namespace

// ---- Connection check ----------------------------------------------------------------------

// Passes unless a connection from one of the block's outputs, in the macro that holds the
// block, ends at an input that does not list the new type. A check that cannot run passes.
bool CDBAttribute::ConnectionCheckPasses(const std::string& text) {
    std::shared_ptr<IMacro> container;
    SkipStep([&] {
        const auto host = Need(parent_).IAppObject_Parent();
        if (!host) {
            return;
        }
        const auto top = Need(std::dynamic_pointer_cast<IHostContainer>(host)).TopObject();
        const auto root = Need(std::dynamic_pointer_cast<ITopObject>(top)).RootMacro();
        container = FindContainer(root, parent_->IAppObject_ExtendedKey());
    });
    if (!container) {
        return true;
    }

    std::shared_ptr<IOutputs> outputs;
    SkipStep([&] { outputs = parent_->IAppObject_Outputs(); });
    if (!outputs) {
        return true;
    }
    for (const auto& output : outputs->IOutputs_NewEnum()) {
        std::optional<std::vector<std::shared_ptr<IConnection>>> connections;
        SkipStep([&] { connections = container->Connections(); });
        std::string outputKey;
        if (!connections || !SkipStep([&] { outputKey = Need(output).IOutput_GlobalKey(); })) {
            continue;
        }
        for (const auto& connection : *connections) {
            bool refused = false;
            SkipStep([&] {
                const auto source =
                    std::dynamic_pointer_cast<ISubItemConnable>(Need(connection).Source());
                if (Need(source).ISubItemConnable_GlobalKey() != outputKey) {
                    return;
                }
                const auto input = std::dynamic_pointer_cast<IInput>(connection->Target());
                refused = !Need(Need(input).Iinput_SNVTCompatibles()).ICompatibleSNVTs_Exists(text);
            });
            if (refused) {
                return false;
            }
        }
    }
    return true;
}

// Depth first in member order; a macro member is searched, never compared with the key.
std::shared_ptr<IMacro> CDBAttribute::FindContainer(const std::shared_ptr<IMacro>& container,
                                                    const std::string& key) {
    for (const auto& member : Need(container).Members()) {
        std::shared_ptr<IMacro> found;
        bool matched = false;
        SkipStep([&] {
            if (const auto macro = std::dynamic_pointer_cast<IMacro>(member)) {
                found = FindContainer(macro, key);
            } else {
                matched =
                    Need(std::dynamic_pointer_cast<IAppObject>(member)).IAppObject_ExtendedKey() ==
                    key;
            }
        });
        if (found) {
            return found;
        }
        if (matched) {
            return container;
        }
    }
    return nullptr;
}

// ---- Units ---------------------------------------------------------------------------------

std::shared_ptr<CDBUnit> CDBAttribute::SelectedUnit() const {
    return UnitFor(value_);
}

std::shared_ptr<CDBUnit> CDBAttribute::UnitFor(const std::string& value) const {
    std::shared_ptr<CDBUnit> selected;
    if (def_->units) {
        for (const auto& unit : def_->units->NewEnum()) {
            if (unit && unit->UnitTypeID == value) {
                selected = unit;
            }
        }
    }
    return selected;
}

int32_t CDBAttribute::LengthWithUnit(const CDBUnit& unit) const {
    if (def_->isKeepFloatStandard) {
        return 4;
    }
    const std::string id = def_->differential && !unit.DifferentialTypeID.empty()
                               ? unit.DifferentialTypeID
                               : unit.UnitTypeID;
    const uint64_t generation = SnvtIndexGeneration();
    UnitDerivationMemo& memo = *Derivations();
    if (const auto* known = memo.FindLength(id, generation, shortFloatManaged_)) {
        return known->bytes;
    }
    if (!FindSnvtEntry(id)) {
        return 0;  // an unknown type gets a record of length 0, which fits anywhere
    }
    ScopedMessageCapture shown;
    CDBSNVTType record;
    record.ResolveByID(id);
    const int32_t bytes =
        ClassOf(record) == TypeClass::Float && shortFloatManaged_ ? 2 : record.ISNVType_Length();
    // Kept for the type's other blocks only when the look-up told the user nothing.
    if (shown.Messages().empty()) {
        memo.AddLength({id, generation, shortFloatManaged_, bytes});
    }
    return bytes;
}

// The layout is made once: a unit whose type would make a dependent longer than the room it
// was given would write over its neighbours in the image, so such a unit is refused.
bool CDBAttribute::UnitFitsDependents(const CDBUnit& unit) {
    std::shared_ptr<IAttributes> attributes;
    SkipStep([&] { attributes = Need(parent_).IAppObject_Attributes(); });
    if (!attributes) {
        return true;
    }
    const auto fits = [&](const CDBAttribute& dependent) {
        if (!dependent.IsUnitDependent() || dependent.placeLength_ <= 0 ||
            dependent.LengthWithUnit(unit) <= dependent.placeLength_) {
            return true;
        }
        ShowMessage("Unit selected (ID: " + unit.UnitTypeID + ") does not fit the place of " +
                        dependent.def_->name + " in the CDB.\r\nThe unit is not changed.",
                    "Warning: Incompatible unit", MessageIcon::Information);
        return false;
    };
    // Only read: the block's members as they stand, none of them made the block's own.
    if (const auto own = std::dynamic_pointer_cast<CDBAttributes>(attributes)) {
        for (const auto& dependent : own->AsTheyStand()) {
            if (!fits(*dependent)) {
                return false;
            }
        }
        return true;
    }
    for (const auto& member : attributes->IAttributes_NewEnum()) {
        const auto dependent = std::dynamic_pointer_cast<CDBAttribute>(member);
        if (dependent && !fits(*dependent)) {
            return false;
        }
    }
    return true;
}

void CDBAttribute::RederiveDependents(const std::shared_ptr<CDBUnit>& unit, bool absorb) {
    std::shared_ptr<IAttributes> attributes;
    RunStep(absorb, [&] { attributes = Need(parent_).IAppObject_Attributes(); });
    if (!attributes) {
        return;
    }
    // The block makes its own only the dependents, which the change writes: a change of unit
    // in a project's load leaves the other members the type's.
    std::vector<std::shared_ptr<CDBAttribute>> dependents;
    if (const auto own = std::dynamic_pointer_cast<CDBAttributes>(attributes)) {
        // Looked up again at each step: reaching a member may give the block a list of its own.
        for (std::size_t i = 0; i < own->AsTheyStand().size(); ++i) {
            if (own->AsTheyStand()[i]->IsUnitDependent()) {
                dependents.push_back(own->At(i));
            }
        }
    } else {
        for (const auto& member : attributes->IAttributes_NewEnum()) {
            auto dependent = std::dynamic_pointer_cast<CDBAttribute>(member);
            if (dependent && dependent->IsUnitDependent()) {
                dependents.push_back(std::move(dependent));
            }
        }
    }
    for (const auto& dependent : dependents) {
        RunStep(absorb, [&] { dependent->ApplySelectedUnit(unit); });
        if (interceptor_) {
            RunStep(absorb, [&] {
                std::shared_ptr<IAttribute> reference = dependent;
                interceptor_->DependentAttributeChanged(reference);
            });
        }
    }
}

void CDBAttribute::ApplySelectedUnit(const std::shared_ptr<CDBUnit>& unit) {
    DeriveFromUnit(unit, unit ? unit->UnitTypeID : std::string(), true);
}

void CDBAttribute::ApplyFirstUnit(CDBAttribute& selector) {
    // The unit the selector stands at, so that the dependents have the types its byte in the
    // image names, and a project load that writes the selector again finds nothing to change;
    // the first unit only when no unit has the selector's value.
    std::shared_ptr<CDBUnit> unit = selector.SelectedUnit();
    if (!unit) {
        SkipStep([&] { unit = Need(selector.SelectableUnits()).Item("1"); });
    }
    DeriveFromUnit(unit, selector.IAttribute_DefaultValue(), false);
}

std::shared_ptr<UnitDerivationMemo> CDBAttribute::Derivations() const {
    if (!def_->unitDerivations) {
        def_->unitDerivations = std::make_shared<UnitDerivationMemo>();
    }
    return def_->unitDerivations;
}

std::optional<UnitDerivationKey> CDBAttribute::DerivationKey(
    const CDBUnit& unit, const std::shared_ptr<const pugi::xml_document>& definition) {
    std::shared_ptr<IUnitConverter> converter;
    SkipStep([&] { converter = UnitsManager(); });
    const auto* plain = dynamic_cast<const UnitConverter*>(converter.get());
    if (!definition || plain == nullptr || typeid(*plain) != typeid(UnitConverter)) {
        return std::nullopt;
    }
    return UnitDerivationKey{definition,
                             unit.UnitName,
                             unit.UnitTypeID,
                             unit.DifferentialTypeID,
                             SnvtIndexGeneration(),
                             DecimalSeparator(),
                             plain->EffectiveSystem(),
                             plain->Table(),
                             shortFloatManaged_};
}

// The steps shared by the first derivation at creation and a later change of unit: a later
// change starts from a new type record and tells the listeners.
void CDBAttribute::DeriveFromUnit(const std::shared_ptr<CDBUnit>& unit,
                                  const std::string& converterTypeId, bool change) {
    std::shared_ptr<const pugi::xml_document> definition;
    SkipStep([&] { definition = Owner().ObjectXML(); });
    pugi::xml_node document;
    if (definition) {
        document = *definition;
    }

    // A change of unit starts from a new record, so its outcome depends only on the key; the
    // first derivation at creation keeps what the record had, and is not kept.
    std::optional<UnitDerivationKey> key;
    if (change && unit && unit->UnitTypeID == converterTypeId) {
        key = DerivationKey(*unit, definition);
    }
    // Taken before anything is written: a write may give this attribute a definition of its
    // own, and the outcome belongs with the one its type's blocks share.
    const std::shared_ptr<UnitDerivationMemo> memo = key ? Derivations() : nullptr;
    if (memo) {
        if (const UnitDerivation* known = memo->Find(*key)) {
            snvtType_ = known->record;
            sharedType_ = true;
            OwnLimits().defaultValue = known->defaultValue;
            value_ = def_->defaultValue;
            if (known->min) {
                OwnLimits().min = *known->min;
            }
            if (known->max) {
                OwnLimits().max = *known->max;
            }
            RaiseAttributeChanged(true);
            return;
        }
    }
    // Only an outcome that showed nothing and had no step fail is kept: a message must be
    // shown again by every block that meets it.
    ScopedMessageCapture shown;
    bool clean = true;
    const auto step = [&](auto&& work) { clean = SkipStep(work) && clean; };

    if (change) {
        snvtType_ = std::make_shared<CDBSNVTType>();
        sharedType_ = false;
    } else {
        OwnType();
    }

    step([&] {
        const auto node = xml::FindFirstIndexed(
            document, UnitPath(def_->name, "DefaultValues", Need(unit).UnitName));
        OwnLimits().defaultValue =
            node ? NormalizeDecimal(xml::FirstChildText(node))
                 : NormalizeDecimal(Need(UnitsManager()).DefaultFor(converterTypeId));
    });
    value_ = def_->defaultValue;

    step([&] {
        const CDBUnit& chosen = Need(unit);
        snvtType_->ResolveByID(def_->differential && !chosen.DifferentialTypeID.empty()
                                   ? chosen.DifferentialTypeID
                                   : chosen.UnitTypeID);
    });

    std::optional<std::string> derivedMin;
    std::optional<std::string> derivedMax;
    auto deriveLimit = [&](const char* list, bool lower) {
        std::string limit;
        step([&] {
            const auto node =
                xml::FindFirstIndexed(document, UnitPath(def_->name, list, Need(unit).UnitName));
            if (node) {
                limit = NormalizeDecimal(xml::FirstChildText(node));
            } else {
                // The converter gives limits in the user's units; the record holds them in the
                // dictionary's, as it holds the value.
                IUnitConverter& converter = Need(UnitsManager());
                const std::string shown = lower ? converter.MinimumFor(converterTypeId)
                                                : converter.MaximumFor(converterTypeId);
                limit = shown.empty()
                            ? shown
                            : NormalizeDecimal(converter.FromDisplayValue(converterTypeId, shown));
            }
        });
        if (limit.empty()) {
            return;  // the record keeps the dictionary's limit, the attribute its former text
        }
        if (lower) {
            snvtType_->SetMin(limit);
            OwnLimits().min = limit;
            derivedMin = limit;
        } else {
            snvtType_->SetMax(limit);
            OwnLimits().max = limit;
            derivedMax = limit;
        }
    };
    deriveLimit("MinValues", true);
    deriveLimit("MaxValues", false);

    if (change) {
        // The layout gave this attribute the short length once; a new Float type must not
        // claim more and overlap the next place.
        if (shortFloatManaged_) {
            ApplyShortFloat();
        }
        if (memo && clean && shown.Messages().empty()) {
            memo->Add(UnitDerivation{std::move(*key), snvtType_, def_->defaultValue, derivedMin,
                                     derivedMax});
            sharedType_ = true;  // the memo holds the record now
        }
        RaiseAttributeChanged(true);
    }
}

}  // namespace zerbin
