// types and check: the commands that walk the library.
#include <string>
#include <vector>

#include "cli/CliErrors.h"
#include "cli/Commands.h"

namespace zerbin::cli {
namespace {

constexpr const char* kCheckKey = "Block1";

}  // namespace

int RunTypes(const CommandContext& context) {
    for (const std::string& type : LibraryTypes(context.host.library)) {
        // The header is all a listing needs: no members are created.
        auto block = std::make_shared<CDBAppObject>();
        block->IAppObject_XmlSNVTDoc(context.host.dictionary);
        int32_t errorCode = 0;
        block->IAppObject_Init(type, errorCode);
        context.out << type << '\t' << block->IAppObject_ID() << '\t' << block->IAppObject_Name()
                    << '\t' << block->IAppObject_Category() << '\n';
        block->IAppObject_Destroy();
    }
    return kExitOk;
}

int RunCheck(const CommandContext& context) {
    std::vector<std::string> types = context.invocation.arguments;
    if (types.empty()) {
        types = LibraryTypes(context.host.library);
    } else {
        for (const std::string& type : types) {
            RequireBlockType(context.host.library, type);
        }
    }
    bool anyMessage = false;
    for (const std::string& type : types) {
        const int before = context.messages.Count();
        {
            HostedBlock block(context.host, type, BlockKeys{kCheckKey, {}, {}});
            // Building the image is where a layout beyond the CDB's limits shows.
            block->IAppObject_Stream();
        }
        const int shown = context.messages.Count() - before;
        if (shown > 0) {
            anyMessage = true;
            context.err << "zerbin: note: block type '" << type << "' showed " << shown
                        << (shown == 1 ? " message" : " messages") << '\n';
        }
    }
    return anyMessage ? kExitFailure : kExitOk;
}

}  // namespace zerbin::cli
