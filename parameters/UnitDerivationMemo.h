// What deriving a unit-dependent attribute from a chosen unit gave, kept per attribute of a
// block type: every block of the type that chooses the same unit derives the same record,
// default and limits, and a project of many such blocks would otherwise look them up in the
// definition, the dictionary and the converter once per block.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "datatypes/CDBSNVTType.h"
#include "datatypes/UnitConverter.h"

namespace zerbin {

struct UnitDerivationKey {
    // Held, not only compared: a document freed and another made at its address must not match.
    std::shared_ptr<const pugi::xml_document> definition;
    std::string unitName;
    std::string unitTypeId;
    std::string differentialTypeId;
    uint64_t dictionaryGeneration = 0;
    std::string decimalSeparator;
    UnitSystem system = UnitSystem::SI;
    const UnitConversionTable* table = nullptr;
    bool shortFloat = false;

    bool operator==(const UnitDerivationKey&) const = default;
};

struct UnitDerivation {
    UnitDerivationKey key;
    // Shared read-only with every attribute that takes it; each copies it before a change.
    std::shared_ptr<CDBSNVTType> record;
    std::string defaultValue;
    // Empty where the derivation found no limit and left the attribute's own.
    std::optional<std::string> min;
    std::optional<std::string> max;
};

class UnitDerivationMemo {
public:
    const UnitDerivation* Find(const UnitDerivationKey& key) const {
        for (const UnitDerivation& entry : entries_) {
            if (entry.key == key) {
                return &entry;
            }
        }
        return nullptr;
    }
    // A selector offers a handful of units; the cap only bounds a host that keeps changing
    // the dictionary or the separator.
    void Add(UnitDerivation entry) {
        if (entries_.size() < kMaxEntries) {
            entries_.push_back(std::move(entry));
        }
    }

    // The bytes a dependent would take with a unit's type, as the check before a change of
    // unit asks for every dependent.
    struct Length {
        std::string typeId;
        uint64_t dictionaryGeneration = 0;
        bool shortFloat = false;
        int32_t bytes = 0;
    };
    const Length* FindLength(const std::string& typeId, uint64_t generation,
                             bool shortFloat) const {
        for (const Length& entry : lengths_) {
            if (entry.typeId == typeId && entry.dictionaryGeneration == generation &&
                entry.shortFloat == shortFloat) {
                return &entry;
            }
        }
        return nullptr;
    }
    void AddLength(Length entry) {
        if (lengths_.size() < kMaxEntries) {
            lengths_.push_back(std::move(entry));
        }
    }

private:
    static constexpr std::size_t kMaxEntries = 64;
    std::vector<UnitDerivation> entries_;
    std::vector<Length> lengths_;
};

}  // namespace zerbin
