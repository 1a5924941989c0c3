// What a parameter takes: the one set of rules by which every writer of a value (the value
// editors, the command's --set, a host's own grid) accepts or refuses a text before it is
// written, so that no way in lets through a value another would refuse.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "interfaces/IAttribute.h"

namespace zerbin {

struct ValueVerdict {
    std::string value;      // the text to write: a label is replaced by its code
    std::string objection;  // empty when the value is taken; else why not, in words

    bool Taken() const { return objection.empty(); }
};

// Judges text as the stored value of attribute:
// - an enumeration, a type or unit selector and a device list take a code of their list or
//   the label shown for it (the last entry of a label wins);
// - a number (Float, SignedNumeric, UnsignedNumeric) must read wholly as a number with
//   either separator and lie within the attribute's limits, else the type's;
// - a bit field takes a whole number of its 8 or 16 bits;
// - a text fits the type's length and holds only characters FitsTextValue takes;
// - a structure takes one blank-separated value for each field, each by its field's type.
ValueVerdict CheckValue(IAttribute& attribute, const std::string& text);

// Whether a one-line value in the 8-bit code page (Windows-1252) can hold the character: no
// control character (a tab or a line end would break the line; the code page's undefined
// bytes come back as C1 controls), nothing the code page lacks.
bool FitsTextValue(char32_t c);

// The entries a list-valued attribute offers, as (code, label); empty for any other.
std::vector<std::pair<std::string, std::string>> ValueChoices(IAttribute& attribute);

}  // namespace zerbin
