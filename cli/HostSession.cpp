#include "cli/HostSession.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <new>
#include <optional>
#include <system_error>

#include "app_object/HostOrder.h"
#include "base/MMain.h"
#include "base/Xml.h"
#include "cli/CliErrors.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/Error.h"
#include "parameters/ValueRules.h"
#include "platform/DefinitionStore.h"
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

namespace {

std::shared_ptr<pugi::xml_document> LoadOrExplain(const std::filesystem::path& file,
                                                  const std::string& what, std::uintmax_t maxBytes,
                                                  xml::ParseError& error) {
    try {
        return xml::LoadFile(file, &error, maxBytes);
    } catch (const std::bad_alloc&) {
        throw UnreadableError("cannot read " + what + " '" + file.string() + "': out of memory");
    }
}

}  // namespace

std::shared_ptr<const pugi::xml_document> ReadDocument(const std::filesystem::path& file,
                                                       const std::string& what) {
    xml::ParseError error;
    std::shared_ptr<const pugi::xml_document> document =
        LoadOrExplain(file, what, xml::kMaxDocumentBytes, error);
    if (!document) {
        throw UnreadableError("cannot read " + what + " '" + file.string() +
                              "': " + LowerFirst(error.reason));
    }
    return document;
}

void ReadDefinition(const std::filesystem::path& library, const std::string& type) {
    // Every block of a project asks, and the answer is nearly always that the type is stored;
    // a stored name that could not be a folder has nothing to read either.
    DefinitionStore& store = DefinitionCache::Shared();
    if (store.FindEntry(type) || !IsSafeTypeName(type)) {
        return;
    }
    const std::filesystem::path file = DefinitionFile(library, type);
    xml::ParseError error;
    std::shared_ptr<const pugi::xml_document> document =
        LoadOrExplain(file, "definition", kMaxDefinitionBytes, error);
    if (document) {
        store.AddDocument(std::move(document), type);
    } else if (error.unreadable && error.systemError != ENOENT) {
        throw UnreadableError("cannot read definition '" + file.string() +
                              "': " + LowerFirst(error.reason));
    }
}

std::string EscapedLine(const std::string& text) {
    std::string escaped;
    AppendEscapedLine(escaped, text);
    return escaped;
}

void AppendEscapedLine(std::string& escaped, const std::string& text) {
    // Runs without a character to escape are copied whole: nearly every name is one such run.
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char* escape = nullptr;
        switch (text[at]) {
            case '\\':
                escape = "\\\\";
                break;
            case '\t':
                escape = "\\t";
                break;
            case '\r':
                escape = "\\r";
                break;
            case '\n':
                escape = "\\n";
                break;
            default:
                continue;
        }
        escaped.append(text, start, at - start).append(escape);
        start = at + 1;
    }
    escaped.append(text, start);
}

int ReportCurrentFailure(std::ostream& err, const std::string& where) {
    try {
        throw;
    } catch (const UnreadableError& error) {
        err << kErrorPrefix << where << error.what() << '\n';
        return kExitUnreadable;
    } catch (const IoError& error) {
        err << kErrorPrefix << where << "cannot read '" << error.File() << "': " << error.Reason()
            << '\n';
        return kExitUnreadable;
    } catch (const std::bad_alloc&) {
        err << kErrorPrefix << where << "out of memory\n";
        return kExitFailure;
    } catch (const std::exception& error) {
        err << kErrorPrefix << where << LowerFirst(error.what()) << '\n';
        return kExitFailure;
    }
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
        // Any kind of file counts: one that cannot be read is for the command to report.
        if (entry.is_directory(ignored) &&
            std::filesystem::exists(DefinitionFile(library, name), ignored)) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

bool HasBlockType(const std::filesystem::path& library, const std::string& type) {
    std::error_code error;
    return IsSafeTypeName(type) && std::filesystem::exists(DefinitionFile(library, type), error);
}

void RequireBlockType(const std::filesystem::path& library, const std::string& type) {
    if (!IsSafeTypeName(type)) {
        throw UsageError("invalid block type name '" + type + "'");
    }
    if (!HasBlockType(library, type)) {
        throw UsageError("no block type '" + type + "' in library '" + library.string() + "'");
    }
}

HostedBlock::HostedBlock(const HostSettings& settings, const std::string& type,
                         const BlockKeys& keys)
    : type_(type) {
    // A definition that cannot be read is the user's to hear of, not a block with no members.
    ReadDefinition(settings.library, type);
    block_ = NewBlock(type, {settings.dictionary, settings.ownerDevice, settings.shortFloat,
                             keys.globalKey, keys.extendedKey, keys.userName});
}

HostedBlock::~HostedBlock() {
    // Breaks the references between the block and its members, so that nothing outlives it.
    try {
        block_->IAppObject_Destroy();
    } catch (...) {
        // A destructor must not throw, and the block is gone either way.
    }
}

std::vector<std::string> HostedBlock::Apply(const std::vector<Assignment>& sets,
                                            const std::vector<Assignment>& refs) {
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

    // A reference goes into the image as it stands: it must fill the input's place exactly.
    for (std::size_t i = 0; i < refs.size(); ++i) {
        const std::size_t digits = connections[i]->IInput_Extended() ? 6 : 4;
        if (refs[i].value.size() != digits) {
            throw UsageError("--ref " + refs[i].name + "=" + refs[i].value + ": input " +
                             refs[i].name + " takes " + std::to_string(digits) +
                             " hexadecimal digits");
        }
    }

    std::vector<std::string> objections;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        IAttribute& attribute = *targets[i];
        // Judged before the write: a selector's write changes the types of others.
        const ValueVerdict verdict = CheckValue(attribute, sets[i].value);
        if (!verdict.Taken()) {
            objections.push_back("--set " + sets[i].name + "=" + sets[i].value + ": " +
                                 verdict.objection + "; not written");
            continue;
        }
        attribute.IAttribute_Value(verdict.value);
    }
    for (std::size_t i = 0; i < refs.size(); ++i) {
        connections[i]->IInput_Value(refs[i].value);
    }
    return objections;
}

}  // namespace zerbin::cli
