#include "cli/HostSession.h"

#include <algorithm>
#include <cctype>
#include <system_error>

#include "app_object/HostOrder.h"
#include "base/Xml.h"
#include "cli/CliErrors.h"
#include "platform/Files.h"

namespace zerbin::cli {
namespace {

// Message texts may break lines the Windows way; on a terminal a break is one line feed.
std::string WithLineFeeds(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            result += '\n';
            if (i + 1 < text.size() && text[i + 1] == '\n') {
                ++i;
            }
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string LowerFirst(std::string text) {
    if (!text.empty()) {
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    }
    return text;
}

}  // namespace

int StreamMessageSink::Show(const Message& message) {
    ++count_;
    stream_ << message.title << ": " << WithLineFeeds(message.text) << '\n';
    // Nobody can answer: go on as a user who agrees would.
    if (message.buttons == MessageButtons::YesNo ||
        message.buttons == MessageButtons::YesNoCancel) {
        return kMessageYes;
    }
    return kMessageOk;
}

std::shared_ptr<const pugi::xml_document> ReadDocument(const std::filesystem::path& file,
                                                       const std::string& what) {
    xml::ParseError error;
    std::shared_ptr<const pugi::xml_document> document = xml::LoadFile(file, &error);
    if (!document) {
        throw UnreadableError("cannot read " + what + " '" + file.string() +
                              "': " + LowerFirst(error.reason));
    }
    return document;
}

std::vector<std::string> LibraryTypes(const std::filesystem::path& library) {
    std::error_code error;
    std::filesystem::directory_iterator entries(library, error);
    if (error) {
        throw UnreadableError("cannot read library '" + library.string() +
                              "': " + LowerFirst(error.message()));
    }
    std::vector<std::string> types;
    for (const std::filesystem::directory_entry& entry : entries) {
        const std::string name = entry.path().filename().string();
        std::error_code ignored;
        if (entry.is_directory(ignored) &&
            std::filesystem::is_regular_file(DefinitionFile(library, name), ignored)) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

void RequireBlockType(const std::filesystem::path& library, const std::string& type) {
    if (!IsSafeTypeName(type)) {
        throw UsageError("invalid block type name '" + type + "'");
    }
    std::error_code error;
    if (!std::filesystem::is_regular_file(DefinitionFile(library, type), error)) {
        throw UsageError("no block type '" + type + "' in library '" + library.string() + "'");
    }
}

HostedBlock::HostedBlock(const HostSettings& settings, const std::string& type,
                         const BlockKeys& keys)
    : block_(NewBlock(type, {settings.dictionary, settings.ownerDevice, settings.shortFloat,
                             keys.globalKey, keys.extendedKey, keys.userName})),
      type_(type) {}

HostedBlock::~HostedBlock() {
    // Breaks the references between the block and its members, so that nothing outlives it.
    try {
        block_->IAppObject_Destroy();
    } catch (...) {
        // A destructor must not throw, and the block is gone either way.
    }
}

void HostedBlock::Apply(const std::vector<Assignment>& sets, const std::vector<Assignment>& refs) {
    const std::shared_ptr<IAttributes> attributes = block_->IAppObject_Attributes();
    std::vector<std::shared_ptr<IAttribute>> targets;
    for (const Assignment& set : sets) {
        std::shared_ptr<IAttribute> attribute =
            attributes ? attributes->IAttributes_Item(set.name) : nullptr;
        if (!attribute) {
            throw UsageError(type_ + " has no attribute " + set.name);
        }
        targets.push_back(std::move(attribute));
    }
    const std::shared_ptr<IInputs> inputs = block_->IAppObject_Inputs();
    std::vector<std::shared_ptr<IInput>> connections;
    for (const Assignment& ref : refs) {
        std::shared_ptr<IInput> input = inputs ? inputs->IInputs_Item(ref.name) : nullptr;
        if (!input) {
            throw UsageError(type_ + " has no input " + ref.name);
        }
        connections.push_back(std::move(input));
    }

    for (std::size_t i = 0; i < sets.size(); ++i) {
        targets[i]->IAttribute_Value(sets[i].value);
    }
    for (std::size_t i = 0; i < refs.size(); ++i) {
        connections[i]->IInput_Value(refs[i].value);
    }
}

}  // namespace zerbin::cli
