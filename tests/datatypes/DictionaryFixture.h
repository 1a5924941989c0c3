// The SNVT dictionaries of the data type tests are written inline.
#pragma once

#include <string>

#include "tests/TestSupport.h"

namespace zerbin::testing {

// "<SNVTS>" + entries + "</SNVTS>".
inline std::string Snvts(const std::string& entries) {
    return "<SNVTS>" + entries + "</SNVTS>";
}

}  // namespace zerbin::testing
