#include "datatypes/CDBFields.h"

#include <pugixml.hpp>

#include "base/CheckedMath.h"
#include "base/SkipMode.h"
#include "base/Xml.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/SnvtDictionary.h"
#include "interfaces/Error.h"

namespace zerbin {

std::shared_ptr<CDBFields> CDBFields::CopyFor(const std::shared_ptr<IUnitsProvider>& parent) const {
    auto copy = std::make_shared<CDBFields>();
    copy->items_ = items_.Copied(
        [&](const std::shared_ptr<CDBField>& field) { return field->CopyFor(parent); });
    return copy;
}

int32_t CDBFields::IFields_Count() {
    return items_.Count();
}

std::shared_ptr<IField> CDBFields::IFields_Item(const std::string& Key) {
    return items_.Item(Key);
}

std::vector<std::shared_ptr<IField>> CDBFields::IFields_NewEnum() {
    return {items_.Items().begin(), items_.Items().end()};
}

int32_t CDBFields::IFields_Length() {
    // The structure's length is the sum that its attribute works out and stores.
    return 0;
}

void CDBFields::LoadFields(const std::string& typeId, int32_t nodeType) {
    const pugi::xml_node fields = Need(FindSnvtChild(typeId, "Fields"));
    int32_t offset = 0;
    for (const pugi::xml_node child : fields.children()) {
        if (xml::IsComment(child)) {
            continue;
        }
        const std::string name = xml::BaseName(child);
        const std::string fieldTypeId = xml::FirstChildText(child);
        auto field = std::make_shared<CDBField>();
        field->SetNodeType(nodeType);
        field->SetName(name);
        field->LoadType(fieldTypeId);
        items_.Add(name, field);
        field->SetIndex(items_.Count());
        field->SetOffset(offset);
        const int32_t length = field->Record().StoredLength();
        offset = CheckedAdd(offset, length);
    }
}

const std::vector<std::shared_ptr<CDBField>>& CDBFields::Fields() const {
    return items_.Items();
}

std::shared_ptr<CDBField> CDBFields::Item(const std::string& key) const {
    return items_.Item(key);
}

}  // namespace zerbin
