// types and check: the commands that walk the library.
#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "cli/DataFolder.h"
#include "platform/LibraryManifest.h"

namespace zerbin::cli {
namespace {

constexpr const char* kCheckKey = "Block1";

}  // namespace

int RunTypes(const CommandContext& context) {
    int status = kExitOk;
    for (const std::string& type : LibraryTypes(context.host.library)) {
        try {
            ReadDefinition(context.host.library, type);
        } catch (const UnreadableError& error) {
            context.err << kErrorPrefix << error.what() << '\n';
            status = kExitUnreadable;
            continue;
        }
        // The header is all a listing needs: no members are created. The block is taken apart
        // however the listing ends, or its members and it would keep each other alive.
        auto block = std::make_shared<CDBAppObject>();
        const std::unique_ptr<CDBAppObject, void (*)(CDBAppObject*)> destroy(
            block.get(), [](CDBAppObject* made) {
                try {
                    made->IAppObject_Destroy();
                } catch (...) {
                    // The listing is over either way; a destructor must not throw.
                }
            });
        block->IAppObject_XmlSNVTDoc(context.host.dictionary);
        int32_t errorCode = 0;
        block->IAppObject_Init(type, errorCode);
        context.out << type << '\t' << block->IAppObject_ID() << '\t' << block->IAppObject_Name()
                    << '\t' << block->IAppObject_Category() << '\n';
    }
    return status;
}

namespace {

// The library's manifest against the dictionary: a library that needs a newer dictionary is
// refused before any of its types is made with the older one.
int CheckManifest(const CommandContext& context) {
    std::optional<LibraryManifest> manifest;
    try {
        manifest = ReadLibraryManifest(context.host.library);
    } catch (const LibraryManifestError& error) {
        context.err << kErrorPrefix << error.what() << '\n';
        return error.Unreadable() ? kExitUnreadable : kExitFailure;
    }
    if (!manifest || manifest->dictionaryVersion.empty()) {
        return kExitOk;
    }
    const std::string have = DictionaryVersion(*context.host.dictionary);
    if (!have.empty() && IsVersion(have) &&
        CompareVersions(have, manifest->dictionaryVersion) >= 0) {
        return kExitOk;
    }
    const std::string dictionary =
        context.invocation.dictionary.value_or(ShippedDictionary()).string();
    context.err << kErrorPrefix << "library '" << context.host.library.string() << "'"
                << (manifest->name.empty() ? "" : " (" + manifest->name + ")")
                << " needs dictionary version " << manifest->dictionaryVersion
                << " or later; dictionary '" << dictionary << "' "
                << (have.empty() ? std::string("gives no version") : "is version '" + have + "'")
                << '\n';
    return kExitFailure;
}

}  // namespace

int RunCheck(const CommandContext& context) {
    if (const int status = CheckManifest(context); status != kExitOk) {
        return status;
    }
    if (context.invocation.project) {
        return CheckProject(context);
    }
    std::vector<std::string> types = context.invocation.arguments;
    if (types.empty()) {
        types = LibraryTypes(context.host.library);
    } else {
        for (const std::string& type : types) {
            RequireBlockType(context.host.library, type);
        }
    }
    int status = kExitOk;
    for (const std::string& type : types) {
        const int before = context.messages.Count();
        // A type that fails is named and passed by: the rest of the library is still checked.
        try {
            HostedBlock block(context.host, type, BlockKeys{kCheckKey, {}, {}});
            // Building the image is where a layout beyond the CDB's limits shows.
            block->IAppObject_Stream();
        } catch (const UnreadableError& error) {
            context.err << kErrorPrefix << error.what() << '\n';
            status = kExitUnreadable;
        } catch (const std::exception& error) {
            context.err << kErrorPrefix << "block type '" << type
                        << "': " << LowerFirst(error.what()) << '\n';
            status = std::max(status, kExitFailure);
        }
        const int shown = context.messages.Count() - before;
        if (shown > 0) {
            status = std::max(status, kExitFailure);
            context.err << "zerbin: note: block type '" << type << "' showed " << shown
                        << (shown == 1 ? " message" : " messages") << '\n';
        }
    }
    return status;
}

}  // namespace zerbin::cli
