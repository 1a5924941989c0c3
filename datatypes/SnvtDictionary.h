// Lookups of type entries in the process-wide SNVT dictionary. The answers are those of a
// first-match search by the path "SNVTS/SNVT_" + id in document order, but an index is built
// once for each installed dictionary, so that resolving a type does not walk the document.
// A dictionary is treated as unchanging while it is installed: SetSnvtDictionary with a
// different document is what makes the next lookup index anew.
#pragma once

#include <cstdint>
#include <string>

#include <pugixml.hpp>

namespace zerbin {

// The first element in document order that matches "SNVTS/SNVT_" + id at any depth of
// SnvtDictionary(); an empty node when there is none or no dictionary is installed.
pugi::xml_node FindSnvtEntry(const std::string& id);

// The first element in document order that matches "SNVTS/SNVT_" + id + "/" + childName
// (names compared exactly). When the first entry of an id lacks such a child, this may be the
// child of a later entry of the same id. Empty node when there is none.
pugi::xml_node FindSnvtChild(const std::string& id, const std::string& childName);

// A number that changes whenever the lookups may answer differently: another dictionary
// installed, or the index dropped. 0 while no dictionary is installed. Lets a caller keep what
// it derived from the entries for as long as the number stays the same.
uint64_t SnvtIndexGeneration();

// Drops the index, for a host that has changed the installed dictionary in place.
void InvalidateSnvtIndex();

}  // namespace zerbin
