// What the fuzz targets share: a message sink that shows nothing, the shipped library,
// dictionary and device document, blocks made in the order the host keeps, and the checks
// whose failure is a finding. A finding ends the process with a report on stderr, so that
// libFuzzer keeps the input that caused it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"

namespace zerbin::fuzz {

// Silences messages, points the component at the shipped library and installs the shipped
// dictionary. Call once, from LLVMFuzzerInitialize.
void SetUpShippedData();

std::shared_ptr<const pugi::xml_document> ShippedDictionary();
std::shared_ptr<const pugi::xml_document> ShippedDevice();
// The block types of the shipped library, sorted by name.
const std::vector<std::string>& ShippedTypes();

// The fuzz input as text.
std::string_view AsText(const uint8_t* data, std::size_t size);

// Switches the decimal separator of the process between "." and ",".
void UseDecimalComma(bool comma);

// A block of the type, made in the host's order: the installed dictionary, the type, the
// shipped device document, the short float setting, creation, then both keys.
std::shared_ptr<CDBAppObject> MakeBlock(const std::string& type, bool manageShortFloat);

// Ends the process with the report.
[[noreturn]] void Fail(const std::string& what, const std::string& detail);

// Both images; an ID beyond the 32-bit range is the one error the caller may get.
void ImageBoth(CDBAppObject& block);

// Every display read of the attributes, their fields and the outputs.
void ReadDisplays(CDBAppObject& block);

// The block's project subtree and its text. Empty when the save raised zerbin::Error, which
// an invalid XML name does; a finding when a completed save does not parse again.
struct SavedBlock {
    std::shared_ptr<pugi::xml_document> document;
    pugi::xml_node element;
    std::string text;
    // The text read back, as a project file is, and the block element in it.
    std::shared_ptr<pugi::xml_document> reread;
    pugi::xml_node rereadElement;
};
std::optional<SavedBlock> Save(CDBAppObject& block);

// Saves the block, loads the subtree into a new block of the same type, and requires the
// same values, images and XML. A block whose values the XML can't carry is only saved and
// loaded.
void CheckRoundTrip(CDBAppObject& block, bool manageShortFloat);

}  // namespace zerbin::fuzz
