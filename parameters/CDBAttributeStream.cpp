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
    if (toolOnly_) {
        return image;
    }
    const int32_t place = DigitsOf(position_);
    // Never past the room the layout gave: the bytes behind it belong to another member.
    if (placeLength_ > 0 && LengthInCdb() > placeLength_) {
        throw Error("The attribute " + name_ + " is longer than its place in the CDB", 9);
    }

    if (fields_) {
        for (const auto& field : fields_->Fields()) {
            image = intel ? field->WriteIntelStream(std::move(image), position_)
                          : field->WriteStream(std::move(image), position_);
        }
        return image;
    }

    if (isUnit_ || isType_) {
        // The selected type's FACTOR, not the enum code; one byte has no order.
        OverwriteDigits(image, place, HexByteOf(TypeFactor(value_)),
                        DigitsOf(snvtType_->ISNVType_Length()));
        return image;
    }

    if (isKeepFloatStandard_ && !intel) {
        std::string copy = value_;
        OverwriteDigits(image, place, EncodeStream(copy, TypeClass::Float, 4, 1, 0, 0), 8);
        return image;
    }

    const TypeClass typeClass = ClassOf(*snvtType_);
    const int32_t length = snvtType_->ISNVType_Length();
    const int16_t a = NarrowToInt16(snvtType_->ISNVType_ACoef());
    const int16_t b = NarrowToInt16(snvtType_->ISNVType_BCoef());
    const int16_t c = NarrowToInt16(snvtType_->ISNVType_CCoef());
    const std::string digits = EncodeDigits(value_, typeClass, length, a, b, c, intel);
    OverwriteDigits(image, place, digits, DigitsOf(length));
    return image;
}

void CDBAttribute::ApplyShortFloat() {
    shortFloatManaged_ = true;
    SkipStep([&] {
        if (ClassOf(*snvtType_) == TypeClass::Float && !isKeepFloatStandard_) {
            OwnType().SetLength(2);
        }
    });
}

}  // namespace zerbin
