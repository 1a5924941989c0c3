// The unit converter: stored values of the SNVT dictionary to and from the units the user
// sees. The SI system shows stored values as they are, in the dictionary's unit; the US
// customary system, which the host can switch on, converts the types a US user reads in
// other units.
#pragma once

#include <memory>

#include "interfaces/IHostServices.h"

namespace zerbin {

enum class UnitSystem { SI, US };

// The system of converters made from now on, and of those already made that follow the
// process setting. SI until the host switches.
void SetUnitSystem(UnitSystem system);
UnitSystem CurrentUnitSystem();

// A converter that reads the process-wide SNVT dictionary and follows the process setting.
std::shared_ptr<IUnitConverter> CreateUnitConverter();

}  // namespace zerbin
