// The class of a network variable type, read once from the word the dictionary holds, and the
// families of classes that the loaders, the encoder and the displays treat alike.
#pragma once

#include <string_view>

namespace zerbin {

struct ISNVType;
class CDBSNVTType;

// Other is any word that names no class, the empty word included.
enum class TypeClass {
    Other,
    SignedNumeric,
    UnsignedNumeric,
    Bitfield,
    Enum,
    Float,
    Textual,
    Struct
};

// The class a word names, compared exactly, letter case included.
TypeClass ParseTypeClass(std::string_view word);
// The class of a type record, from its class word.
TypeClass ClassOf(ISNVType& type);
// The same for a record of this component, read in place: most members ask it at every value.
TypeClass ClassOf(const CDBSNVTType& type);

// Float, SignedNumeric and UnsignedNumeric: they load limits and a default from the definition
// and are shown as numbers in a unit. A Bitfield, though a number in the image, is not one.
bool IsNumericClass(TypeClass typeClass);
// SignedNumeric, UnsignedNumeric and Bitfield: encoded as whole numbers.
bool IsWholeNumberClass(TypeClass typeClass);
// The value editor of a class ("frmCPModif1" to "frmCPModif5"); empty for Other.
const char* ValueEditorName(TypeClass typeClass);

}  // namespace zerbin
