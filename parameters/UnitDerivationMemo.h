// What deriving a unit-dependent attribute from a chosen unit gave, kept per attribute of a
// block type: every block of the type that chooses the same unit derives the same record,
// default and limits, and a project of many such blocks would otherwise look them up in the
// definition, the dictionary and the converter once per block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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
        return FindIn(entries_, [&](const UnitDerivation& entry) { return entry.key == key; });
    }
    void Add(UnitDerivation entry) { AddTo(entries_, std::move(entry)); }

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
        return FindIn(lengths_, [&](const Length& entry) {
            return entry.typeId == typeId && entry.dictionaryGeneration == generation &&
                   entry.shortFloat == shortFloat;
        });
    }
    void AddLength(Length entry) { AddTo(lengths_, std::move(entry)); }

private:
    // A selector offers a handful of units; the cap only bounds a host that keeps changing
    // the dictionary or the separator.
    static constexpr std::size_t kMaxEntries = 64;

    template <class Entry, class Matches>
    static const Entry* FindIn(const std::vector<Entry>& entries, Matches&& matches) {
        for (const Entry& entry : entries) {
            if (matches(entry)) {
                return &entry;
            }
        }
        return nullptr;
    }
    template <class Entry>
    static void AddTo(std::vector<Entry>& entries, Entry entry) {
        if (entries.size() < kMaxEntries) {
            entries.push_back(std::move(entry));
        }
    }

    std::vector<UnitDerivation> entries_;
    std::vector<Length> lengths_;
};

}  // namespace zerbin
