// The host around the blocks of one zerbin run: the library, the documents every block is
// given, the sink that prints and counts the messages the blocks show, and the creation of a
// block in the order a host must keep.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "app_object/CDBAppObject.h"
#include "cli/CommandLine.h"
#include "platform/Messages.h"

namespace zerbin::cli {

// Prints every message box as "TITLE: TEXT" on a stream and counts them. A line break in the
// text stays a line break.
class StreamMessageSink : public MessageSink {
public:
    explicit StreamMessageSink(std::ostream& stream) : stream_(stream) {}
    int Show(const Message& message) override;
    int Count() const { return count_; }

private:
    std::ostream& stream_;
    int count_ = 0;
};

struct HostSettings {
    std::filesystem::path library;
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::shared_ptr<const pugi::xml_document> ownerDevice;
    bool shortFloat = false;
};

// A document the run needs; throws UnreadableError naming what it is, the file and the
// parser's reason with line and column.
std::shared_ptr<const pugi::xml_document> ReadDocument(const std::filesystem::path& file,
                                                       const std::string& what);

// Parses the definition of type into the process's store, as the first block of the type
// would, so that a definition that is there but cannot be read (a directory, a FIFO, no
// permission, too large, out of memory) ends the command with its file name and the reason
// (UnreadableError). A missing or not well-formed definition is left to the block, which
// tells the user itself, as for any host.
void ReadDefinition(const std::filesystem::path& library, const std::string& type);

// One line for a text that may hold line breaks: tab, carriage return, line feed and
// backslash written as C writes them in a string ("\t", "\r", "\n", "\\").
std::string EscapedLine(const std::string& text);
// EscapedLine(text) appended to line.
void AppendEscapedLine(std::string& line, const std::string& text);

// Within a catch block: reports the exception being handled on err as "zerbin: error: "
// where and the failure, and gives the exit status it calls for (3 for a file that cannot be
// read, else 1). Exceptions that are no std::exception go on.
int ReportCurrentFailure(std::ostream& err, const std::string& where);

// The block types of the library: the folders T that hold T/T.xml, sorted by name. Throws
// UnreadableError when the library folder cannot be listed.
std::vector<std::string> LibraryTypes(const std::filesystem::path& library);

// True when the library holds a definition file for type (and type could be a folder).
bool HasBlockType(const std::filesystem::path& library, const std::string& type);

// Throws UsageError when type can't name a folder of the library or has no definition there.
void RequireBlockType(const std::filesystem::path& library, const std::string& type);

struct BlockKeys {
    std::string globalKey;
    std::optional<std::string> extendedKey;
    std::optional<std::string> userName;
};

// One block, from construction to IAppObject_Destroy when it goes.
class HostedBlock {
public:
    // Created through NewBlock, in the host's order.
    HostedBlock(const HostSettings& settings, const std::string& type, const BlockKeys& keys);
    ~HostedBlock();
    HostedBlock(const HostedBlock&) = delete;
    HostedBlock& operator=(const HostedBlock&) = delete;

    CDBAppObject& operator*() const { return *block_; }
    CDBAppObject* operator->() const { return block_.get(); }

    // Writes each attribute value through IAttribute_Value, then each input reference through
    // IInput_Value, in the order given. Every name is looked up first, so that a name the
    // block lacks throws UsageError ("TYPE has no attribute NAME"), and so does a reference
    // that does not fill its input's place, before anything is written. An enumeration or a
    // selector takes the label it shows for the label's code. A value the tool's editors
    // would refuse (not a number, outside the limits, no code of the list) is not written
    // and comes back as one objection each, for the command to report.
    [[nodiscard]] std::vector<std::string> Apply(const std::vector<Assignment>& sets,
                                                 const std::vector<Assignment>& refs);

private:
    std::shared_ptr<CDBAppObject> block_;
    std::string type_;
};

}  // namespace zerbin::cli
