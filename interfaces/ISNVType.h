// The network variable type of a value, as the SNVT dictionary describes it.
#pragma once

#include <cstdint>
#include <string>

#include "interfaces/IObject.h"

namespace zerbin {

struct ISNVType : virtual IObject {
    virtual std::string ISNVType_ID() = 0;
    virtual int32_t ISNVType_R7Region() = 0;
    // The byte that a type-selecting attribute writes for this type.
    virtual int32_t ISNVType_Factor() = 0;
    virtual int32_t ISNVType_ACoef() = 0;
    virtual int32_t ISNVType_BCoef() = 0;
    virtual int32_t ISNVType_CCoef() = 0;
    // One of "SignedNumeric", "UnsignedNumeric", "Bitfield", "Enum", "Float", "Textual",
    // "Struct", or whatever word the dictionary holds.
    virtual std::string ISNVType_GenType() = 0;
    virtual std::string ISNVType_LUIType() = 0;
    virtual std::string ISNVType_InvalidValue() = 0;
    virtual std::string ISNVType_Name() = 0;
    // Limits with the decimal separator in force at the time of the read.
    virtual std::string ISNVType_Min() = 0;
    virtual std::string ISNVType_Max() = 0;
    virtual std::string ISNVType_Units() = 0;
    virtual std::string ISNVType_BACnetUnits() = 0;
    virtual std::string ISNVType_EnumDesc() = 0;
    virtual int32_t ISNVType_Length() = 0;
    // Always false: a Struct is told by ISNVType_GenType.
    virtual bool ISNVType_HasField() = 0;
};

struct IEnumType : virtual IObject {
    virtual std::string IEnumType_EnumDesc() = 0;
    virtual void IEnumType_EnumDesc(const std::string& desc) = 0;
    // True when the class word is "enum" in any letter case.
    virtual bool IEnumType_IsEnumType() = 0;
};

}  // namespace zerbin
