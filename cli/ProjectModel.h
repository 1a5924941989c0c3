// A saved project seen as the commands that edit, compare and merge projects see it: its
// blocks, each named as the user names it on the command line, and each block as a list of
// settings (type, user name, place, parameters, displayable outputs, wires). The settings are
// read from and written to the block's element in place, so that whatever a command leaves
// alone goes back to the file as it came.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <pugixml.hpp>

namespace zerbin::cli {

// A block's setting names that are not parameters start with "@", which no XML name (and so
// no parameter) can start with.
inline constexpr std::string_view kTypeSetting = "@type";
inline constexpr std::string_view kNameSetting = "@name";
inline constexpr std::string_view kXSetting = "@x";
inline constexpr std::string_view kYSetting = "@y";
inline constexpr std::string_view kExportIndexSetting = "@export-index";
inline constexpr std::string_view kColorSetting = "@color";
// "@displayable OUTPUT" = "1".
inline constexpr std::string_view kDisplayablePrefix = "@displayable ";
// "@wire INPUT" = "SOURCE/OUTPUT": an input takes one wire, so the input names it.
inline constexpr std::string_view kWirePrefix = "@wire ";

// A setting and its value, in the order the block's element holds them.
using Settings = std::vector<std::pair<std::string, std::string>>;

struct ProjectBlock {
    pugi::xml_node element;
    // How the commands name it: its key, else its user name, else "#N" (N from 1).
    std::string id;
};

class Project {
public:
    // Reads the project strictly through the project file service; throws UnreadableError.
    explicit Project(std::filesystem::path file);

    const std::filesystem::path& File() const { return file_; }
    pugi::xml_document& Document() { return *document_; }
    pugi::xml_node Root() const { return document_->document_element(); }
    // The block elements, in document order, with their ids as of the read.
    const std::vector<ProjectBlock>& Blocks() const { return blocks_; }
    // The block the user named (key, then user name, then "#N"); throws UsageError.
    const ProjectBlock& Find(const std::string& name) const;
    // Whether the project's blocks were made with short floats (the studio's setting).
    bool ShortFloat() const;
    // The block element of that key, or an empty node.
    pugi::xml_node ByKey(const std::string& key) const;
    // Names the blocks anew after blocks were added or removed.
    void Reindex();

    // Appends a copy of a block element of another project. A key or export index that a
    // block here has already is replaced by the first free one ("BlockN", N from 1; the lowest
    // free index from 0); a block without a key gets one. Returns the new element and its key.
    std::pair<pugi::xml_node, std::string> Adopt(pugi::xml_node element);

    // Writes the document through the project file service: all of it or, on a failure
    // (thrown as Error naming the file), nothing.
    void Write() const;

private:
    std::filesystem::path file_;
    std::shared_ptr<pugi::xml_document> document_;
    std::vector<ProjectBlock> blocks_;
    // The blocks by key, the export indexes they hold, and where the search for a free key or
    // index goes on.
    std::unordered_map<std::string, pugi::xml_node> byKey_;
    std::unordered_set<std::string> indexes_;
    int nextKey_ = 1;
    int nextIndex_ = 0;
};

// The element's key attribute, or empty.
std::string KeyOf(pugi::xml_node element);
// Makes the element's wires that come from a block renamed (old key to new) come from its new
// key; true when one did.
bool RenameWireSources(pugi::xml_node element,
                       const std::unordered_map<std::string, std::string>& renames);
// The block's settings; parameters in the order of its "Attributes".
Settings ReadSettings(pugi::xml_node element);
// Whether the two elements are equal node for node: kinds, names, values and attributes in
// order. Such block elements hold the same settings, which is far quicker to see this way.
bool SameTree(pugi::xml_node a, pugi::xml_node b);
// Whether the two block elements hold the same settings.
bool SameSettings(pugi::xml_node a, pugi::xml_node b);
// Writes one setting into the element; nullopt removes it. A parameter or output gets its
// element when it has none; "@type" renames the element.
void WriteSetting(pugi::xml_node element, const std::string& name,
                  const std::optional<std::string>& value);
// The child of "Attributes" for the parameter, compared as the block's load compares names
// (without regard to case); an empty node when there is none.
pugi::xml_node ParameterElement(pugi::xml_node element, std::string_view name);
// Replaces the element's text with value.
void SetText(pugi::xml_node element, const std::string& value);
// The block's last image ("CDB"), as the element holds it; empty when it has none.
std::string ImageOf(pugi::xml_node element);
// Replaces the block's last image, giving the element a "CDB" when it has none.
void WriteImage(pugi::xml_node element, const std::string& image);

// Orders texts with runs of digits compared as numbers: "Block2" before "Block10".
bool NaturalLess(std::string_view a, std::string_view b);

}  // namespace zerbin::cli
