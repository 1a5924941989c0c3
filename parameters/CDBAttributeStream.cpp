// The bytes of an attribute in the image of the configuration data block, in both byte
// orders, and the short float length.
#include <algorithm>
#include <cstdint>
#include <string>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "datatypes/CDBFields.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"
#include "parameters/CDBAttribute.h"

namespace zerbin {

namespace {

// Digits of a place of that many bytes, kept inside int32 for a length that no real type has.
int32_t DigitsOf(int64_t bytes) {
    return static_cast<int32_t>(std::clamp<int64_t>(2 * bytes, INT32_MIN, INT32_MAX));
}

int32_t TypeFactor(const std::string& typeId) {
    CDBSNVTType record;
    record.ResolveByID(typeId);
    return record.ISNVType_Factor();
}

}  // namespace

std::string CDBAttribute::WriteStream(std::string image) {
    return WriteImage(std::move(image), false);
}

std::string CDBAttribute::WriteIntelStream(std::string image) {
    return WriteImage(std::move(image), true);
}

// Works on copies: neither Value nor the type record changes.
std::string CDBAttribute::WriteImage(std::string image, bool intel) {
    if (!fields_ && !def_->isUnit && !def_->isType) {
        return WriteValueImage(std::move(image), value_, intel);
    }
    if (def_->toolOnly) {
        return image;
    }
    const int32_t place = DigitsOf(position_);
    // Never past the room the layout gave: the bytes behind it belong to another member.
    if (placeLength_ > 0 && LengthInCdb() > placeLength_) {
        throw Error("The attribute " + def_->name + " is longer than its place in the CDB",
                    ErrorKind::TooLong);
    }

    if (fields_) {
        for (const auto& field : fields_->Fields()) {
            image = intel ? field->WriteIntelStream(std::move(image), position_)
                          : field->WriteStream(std::move(image), position_);
        }
        return image;
    }

    // The selected type's FACTOR, not the enum code; one byte has no order.
    OverwriteDigits(image, place, HexByteOf(TypeFactor(value_)),
                    DigitsOf(snvtType_->ISNVType_Length()));
    return image;
}

std::string CDBAttribute::WriteValueImage(std::string image, const std::string& value,
                                          bool intel) const {
    if (def_->toolOnly) {
        return image;
    }
    // Never past the room the layout gave: the bytes behind it belong to another member.
    if (placeLength_ > 0 && LengthInCdb() > placeLength_) {
        throw Error("The attribute " + def_->name + " is longer than its place in the CDB",
                    ErrorKind::TooLong);
    }
    const int32_t place = DigitsOf(position_);
    if (def_->isKeepFloatStandard && !intel) {
        std::string copy = value;
        OverwriteDigits(image, place, EncodeStream(copy, TypeClass::Float, 4, 1, 0, 0), 8);
        return image;
    }

    const TypeClass typeClass = ClassOf(*snvtType_);
    const int32_t length = snvtType_->ISNVType_Length();
    const int16_t a = NarrowToInt16(snvtType_->ISNVType_ACoef());
    const int16_t b = NarrowToInt16(snvtType_->ISNVType_BCoef());
    const int16_t c = NarrowToInt16(snvtType_->ISNVType_CCoef());
    const std::string digits = EncodeDigits(value, typeClass, length, a, b, c, intel);
    OverwriteDigits(image, place, digits, DigitsOf(length));
    return image;
}

DigitRange CDBAttribute::ImageRange(bool intel) const {
    if (def_->toolOnly) {
        return {};
    }
    if (fields_) {
        DigitRange hull;
        for (const auto& field : fields_->Fields()) {
            const DigitRange range = field->ImageRange(position_);
            hull = hull.first == hull.last ? range
                                           : DigitRange{std::min(hull.first, range.first),
                                                        std::max(hull.last, range.last)};
        }
        return hull;
    }
    const int64_t first = DigitsOf(position_);
    const bool standardFloat =
        !def_->isUnit && !def_->isType && def_->isKeepFloatStandard && !intel;
    return {first, first + (standardFloat ? 8 : DigitsOf(Need(snvtType_).ISNVType_Length()))};
}

ImageChange CDBAttribute::ImageChangeFrom(const CDBAttribute& prototype) const {
    if (position_ != prototype.position_ || placeLength_ != prototype.placeLength_ ||
        def_->toolOnly != prototype.def_->toolOnly ||
        def_->isKeepFloatStandard != prototype.def_->isKeepFloatStandard ||
        def_->isUnit != prototype.def_->isUnit || def_->isType != prototype.def_->isType ||
        !fields_ != !prototype.fields_ || !snvtType_ || !prototype.snvtType_) {
        return ImageChange::Other;
    }
    if (def_->toolOnly) {
        return ImageChange::Same;
    }
    const bool sameRecord = SameEncoding(*snvtType_, *prototype.snvtType_);
    if (fields_) {
        // A structure is written field by field, each at a place of its own: only one that
        // is exactly as the prototype's is taken from the type's image.
        const auto& fields = fields_->Fields();
        const auto& others = prototype.fields_->Fields();
        bool same = sameRecord && fields.size() == others.size();
        for (std::size_t i = 0; same && i < fields.size(); ++i) {
            same = fields[i]->SameImageAs(*others[i]);
        }
        return same ? ImageChange::Same : ImageChange::Other;
    }
    if (sameRecord && value_ == prototype.value_) {
        return ImageChange::Same;
    }
    return snvtType_->ISNVType_Length() == prototype.snvtType_->ISNVType_Length()
               ? ImageChange::SamePlace
               : ImageChange::Other;
}

void CDBAttribute::ApplyShortFloat() {
    shortFloatManaged_ = true;
    SkipStep([&] {
        if (ClassOf(*snvtType_) == TypeClass::Float && !def_->isKeepFloatStandard) {
            OwnType().SetLength(2);
        }
    });
}

}  // namespace zerbin
