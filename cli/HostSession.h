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

// The block types of the library: the folders T that hold T/T.xml, sorted by name. Throws
// UnreadableError when the library folder cannot be listed.
std::vector<std::string> LibraryTypes(const std::filesystem::path& library);

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
    // block lacks throws UsageError ("TYPE has no attribute NAME") before anything is written.
    void Apply(const std::vector<Assignment>& sets, const std::vector<Assignment>& refs);

private:
    std::shared_ptr<CDBAppObject> block_;
    std::string type_;
};

}  // namespace zerbin::cli
