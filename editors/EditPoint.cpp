#include "editors/EditPoint.h"

#include "base/SkipMode.h"
#include "datatypes/CDBField.h"

namespace zerbin {

EditPoint::EditPoint(std::shared_ptr<IObject> object)
    : object_(std::move(object)),
      attribute_(std::dynamic_pointer_cast<IAttribute>(object_)),
      field_(std::dynamic_pointer_cast<IField>(object_)) {}

std::string EditPoint::Name() const {
    return attribute_ ? attribute_->IAttribute_Name() : Need(field_).IField_Name();
}

std::string EditPoint::Value() const {
    return attribute_ ? attribute_->IAttribute_Value() : Need(field_).IField_Value();
}

void EditPoint::Value(const std::string& text) const {
    if (attribute_) {
        attribute_->IAttribute_Value(text);
    } else {
        Need(field_).IField_Value(text);
    }
}

std::shared_ptr<ISNVType> EditPoint::SNVTType() const {
    return attribute_ ? attribute_->IAttribute_SNVTType() : Need(field_).IField_SNVTType();
}

std::shared_ptr<IFields> EditPoint::Fields() const {
    return attribute_ ? attribute_->IAttribute_Fields() : Need(field_).IField_Fields();
}

std::string EditPoint::TypeId() const {
    return Need(SNVTType()).ISNVType_ID();
}

std::optional<std::pair<std::string, std::string>> EditPoint::StoredLimits() const {
    if (attribute_) {
        return std::pair{attribute_->IAttribute_Min(), attribute_->IAttribute_Max()};
    }
    if (const auto field = std::dynamic_pointer_cast<CDBField>(field_)) {
        return std::pair{field->FieldMin(), field->FieldMax()};
    }
    return std::nullopt;
}

}  // namespace zerbin
