#include "datatypes/TypeClass.h"

#include <utility>

#include "datatypes/CDBSNVTType.h"
#include "interfaces/ISNVType.h"

namespace zerbin {
namespace {

constexpr std::pair<std::string_view, TypeClass> kWords[] = {
    {"SignedNumeric", TypeClass::SignedNumeric},
    {"UnsignedNumeric", TypeClass::UnsignedNumeric},
    {"Bitfield", TypeClass::Bitfield},
    {"Enum", TypeClass::Enum},
    {"Float", TypeClass::Float},
    {"Textual", TypeClass::Textual},
    {"Struct", TypeClass::Struct},
};

}  // namespace

TypeClass ParseTypeClass(std::string_view word) {
    for (const auto& [text, typeClass] : kWords) {
        if (word == text) {
            return typeClass;
        }
    }
    return TypeClass::Other;
}

TypeClass ClassOf(ISNVType& type) {
    return ParseTypeClass(type.ISNVType_GenType());
}

TypeClass ClassOf(const CDBSNVTType& type) {
    return ParseTypeClass(type.GenTypeWord());
}

bool IsNumericClass(TypeClass typeClass) {
    return typeClass == TypeClass::Float || typeClass == TypeClass::SignedNumeric ||
           typeClass == TypeClass::UnsignedNumeric;
}

bool IsWholeNumberClass(TypeClass typeClass) {
    return typeClass == TypeClass::SignedNumeric || typeClass == TypeClass::UnsignedNumeric ||
           typeClass == TypeClass::Bitfield;
}

const char* ValueEditorName(TypeClass typeClass) {
    switch (typeClass) {
        case TypeClass::SignedNumeric:
        case TypeClass::UnsignedNumeric:
        case TypeClass::Float:
            return "frmCPModif1";
        case TypeClass::Enum:
            return "frmCPModif3";
        case TypeClass::Bitfield:
            return "frmCPModif5";
        case TypeClass::Textual:
            return "frmCPModif2";
        case TypeClass::Struct:
            return "frmCPModif4";
        case TypeClass::Other:
            break;
    }
    return "";
}

}  // namespace zerbin
