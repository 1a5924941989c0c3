// The ordered, keyed collection of the fields of a Struct attribute.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/KeyedCollection.h"
#include "datatypes/CDBField.h"
#include "interfaces/IField.h"

namespace zerbin {

class CDBFields : public IFields {
public:
    int32_t IFields_Count() override;
    std::shared_ptr<IField> IFields_Item(const std::string& Key) override;
    std::vector<std::shared_ptr<IField>> IFields_NewEnum() override;
    int32_t IFields_Length() override;

    // Internal. Creates one field for each child of "SNVTS/SNVT_" + typeId + "/Fields" in the
    // dictionary, with running offsets. Throws when the entry has no fields element or when a
    // field name repeats (the fields loaded so far stay).
    void LoadFields(const std::string& typeId, int32_t nodeType);
    // The concrete fields, in order.
    const std::vector<std::shared_ptr<CDBField>>& Fields() const;
    std::shared_ptr<CDBField> Item(const std::string& key) const;
    // Internal. Every field copied (CDBField::CopyFor) under parent, keys and order kept.
    std::shared_ptr<CDBFields> CopyFor(const std::shared_ptr<IUnitsProvider>& parent) const;

private:
    KeyedCollection<CDBField> items_;
};

}  // namespace zerbin
