// The blocks of the C interface and the process-wide settings a C host makes.
#include <memory>
#include <string>
#include <vector>

#include "app_object/HostOrder.h"
#include "datatypes/UnitConverter.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IInput.h"
#include "interfaces/IOutput.h"
#include "interfaces/ISNVType.h"
#include "libzerbin/Block.h"
#include "libzerbin/CallGuard.h"
#include "libzerbin/HostMessageSink.h"
#include "libzerbin/Library.h"
#include "parameters/ValueRules.h"

ZerbinBlock::~ZerbinBlock() {
    try {
        // Breaks the references between the block and its members, so that nothing outlives it.
        block->IAppObject_Destroy();
    } catch (...) {
        // The block is gone either way, and a C caller cannot hear of it.
    }
}

namespace zerbin::capi {
namespace {

const char* KindName(int kind) {
    switch (kind) {
        case ZERBIN_ATTRIBUTE:
            return "attribute";
        case ZERBIN_INPUT:
            return "input";
        default:
            return "output";
    }
}

void RequireKind(int kind) {
    if (kind != ZERBIN_ATTRIBUTE && kind != ZERBIN_INPUT && kind != ZERBIN_OUTPUT) {
        throw Failure(ZERBIN_E_INVALID_ARGUMENT, "no member kind " + std::to_string(kind));
    }
}

[[noreturn]] void NoMember(const ZerbinBlock& block, int kind, const std::string& name) {
    throw Failure(ZERBIN_E_NOT_FOUND, block.type + " has no " + KindName(kind) + " " + name);
}

std::shared_ptr<IAttribute> AttributeOf(const ZerbinBlock& block, const std::string& name) {
    const auto attributes = block.block->IAppObject_Attributes();
    auto attribute = attributes ? attributes->IAttributes_Item(name) : nullptr;
    if (!attribute) {
        NoMember(block, ZERBIN_ATTRIBUTE, name);
    }
    return attribute;
}

std::shared_ptr<IInput> InputOf(const ZerbinBlock& block, const std::string& name) {
    const auto inputs = block.block->IAppObject_Inputs();
    auto input = inputs ? inputs->IInputs_Item(name) : nullptr;
    if (!input) {
        NoMember(block, ZERBIN_INPUT, name);
    }
    return input;
}

std::shared_ptr<IOutput> OutputOf(const ZerbinBlock& block, const std::string& name) {
    const auto outputs = block.block->IAppObject_Outputs();
    auto output = outputs ? outputs->IOutputs_Item(name) : nullptr;
    if (!output) {
        NoMember(block, ZERBIN_OUTPUT, name);
    }
    return output;
}

// The names of a kind of member, in the definition's order; a block without that kind of
// member has no collection for it.
std::vector<std::string> MemberNames(const ZerbinBlock& block, int kind) {
    std::vector<std::string> names;
    if (kind == ZERBIN_ATTRIBUTE) {
        if (const auto attributes = block.block->IAppObject_Attributes()) {
            for (const auto& attribute : attributes->IAttributes_NewEnum()) {
                names.push_back(attribute->IAttribute_Name());
            }
        }
    } else if (kind == ZERBIN_INPUT) {
        if (const auto inputs = block.block->IAppObject_Inputs()) {
            for (const auto& input : inputs->IInputs_NewEnum()) {
                names.push_back(input->IInput_Name());
            }
        }
    } else if (const auto outputs = block.block->IAppObject_Outputs()) {
        for (const auto& output : outputs->IOutputs_NewEnum()) {
            names.push_back(output->IOutput_Name());
        }
    }
    return names;
}

}  // namespace

std::unique_ptr<ZerbinBlock> MakeBlock(const std::string& type, const std::string& globalKey) {
    HostSetup setup = CurrentSetup();
    RequireType(type);
    if (!globalKey.empty()) {
        setup.globalKey = globalKey;
    }
    return std::make_unique<ZerbinBlock>(NewBlock(type, setup), type);
}

}  // namespace zerbin::capi

using namespace zerbin::capi;
namespace fs = std::filesystem;

ZERBIN_API int ZerbinOpenLibrary(const char* library, const char* dictionary,
                                 const char* ownerDevice) {
    return Guarded(false, [&] {
        const bool none = ownerDevice != nullptr && ownerDevice[0] == '\0';
        OpenLibrary(library ? fs::path(library) : fs::path(),
                    dictionary ? fs::path(dictionary) : fs::path(),
                    ownerDevice ? fs::path(ownerDevice) : fs::path(), none);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinOnMessage(ZerbinMessageHandler handler, void* context) {
    return Guarded(false, [&] {
        zerbin::SetMessageSink(handler ? std::make_shared<HostMessageSink>(handler, context)
                                       : nullptr);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinUseUnits(int system) {
    return Guarded(false, [&] {
        if (system != ZERBIN_UNITS_SI && system != ZERBIN_UNITS_US) {
            throw Failure(ZERBIN_E_INVALID_ARGUMENT, "no unit system " + std::to_string(system));
        }
        zerbin::SetUnitSystem(system == ZERBIN_UNITS_US ? zerbin::UnitSystem::US
                                                        : zerbin::UnitSystem::SI);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockNew(const char* type, ZerbinBlock** block) {
    return Guarded(true, [&] {
        Require(block, "block");
        *block = nullptr;
        Require(type, "type");
        *block = MakeBlock(type, {}).release();
        return ZERBIN_OK;
    });
}

ZERBIN_API void ZerbinBlockFree(ZerbinBlock* block) {
    Guarded(false, [&] {
        delete block;
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockType(const ZerbinBlock* block, char* buffer, size_t size,
                               size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        return CopyOut(block->type, buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockUserName(const ZerbinBlock* block, char* buffer, size_t size,
                                   size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        return CopyOut(block->block->IAppObject_UserName(), buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockSetUserName(ZerbinBlock* block, const char* name) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(name, "name");
        block->block->IAppObject_UserName(name);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockSetKey(ZerbinBlock* block, const char* key) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(key, "key");
        block->block->IAppObject_GlobalKey(key);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockSetValue(ZerbinBlock* block, const char* attribute, const char* value) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(attribute, "attribute");
        Require(value, "value");
        const auto target = AttributeOf(*block, attribute);
        // Judged before the write: a selector's write changes the types of others.
        const zerbin::ValueVerdict verdict = zerbin::CheckValue(*target, value);
        if (!verdict.Taken()) {
            throw Failure(ZERBIN_E_REFUSED, std::string(attribute) + "=" + value + ": " +
                                                verdict.objection + "; not written");
        }
        target->IAttribute_Value(verdict.value);
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockValue(const ZerbinBlock* block, const char* attribute, char* buffer,
                                size_t size, size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(attribute, "attribute");
        return CopyOut(AttributeOf(*block, attribute)->IAttribute_Value(), buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockImage(ZerbinBlock* block, int intelOrder, char* buffer, size_t size,
                                size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        return CopyOut(
            intelOrder ? block->block->IAppObject_IntelStream() : block->block->IAppObject_Stream(),
            buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockMemberCount(const ZerbinBlock* block, int kind, size_t* count) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(count, "count");
        RequireKind(kind);
        *count = MemberNames(*block, kind).size();
        return ZERBIN_OK;
    });
}

ZERBIN_API int ZerbinBlockMemberName(const ZerbinBlock* block, int kind, size_t index, char* buffer,
                                     size_t size, size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        RequireKind(kind);
        const std::vector<std::string> names = MemberNames(*block, kind);
        if (index >= names.size()) {
            throw Failure(ZERBIN_E_NOT_FOUND, block->type + " has no " + KindName(kind) +
                                                  " number " + std::to_string(index));
        }
        return CopyOut(names[index], buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockMemberClass(const ZerbinBlock* block, int kind, const char* name,
                                      char* buffer, size_t size, size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(name, "name");
        RequireKind(kind);
        std::shared_ptr<zerbin::ISNVType> type;
        if (kind == ZERBIN_ATTRIBUTE) {
            type = AttributeOf(*block, name)->IAttribute_SNVTType();
        } else if (kind == ZERBIN_INPUT) {
            type = InputOf(*block, name)->IInput_ConnectedType();
        } else {
            type = OutputOf(*block, name)->IOutput_SNVTType();
        }
        return CopyOut(type ? type->ISNVType_GenType() : std::string(), buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockReference(const ZerbinBlock* block, int kind, const char* name,
                                    char* buffer, size_t size, size_t* length) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(name, "name");
        if (kind == ZERBIN_INPUT) {
            return CopyOut(InputOf(*block, name)->IInput_Value(), buffer, size, length);
        }
        if (kind != ZERBIN_OUTPUT) {
            throw Failure(ZERBIN_E_INVALID_ARGUMENT, "only inputs and outputs have references");
        }
        const auto item = std::dynamic_pointer_cast<zerbin::IDisplayItem>(OutputOf(*block, name));
        return CopyOut(item ? item->IDisplayItem_Reference() : std::string(), buffer, size, length);
    });
}

ZERBIN_API int ZerbinBlockSetReference(ZerbinBlock* block, const char* input,
                                       const char* reference) {
    return Guarded(false, [&] {
        Require(block, "block");
        Require(input, "input");
        Require(reference, "reference");
        const auto target = InputOf(*block, input);
        // The reference goes into the image as it stands: it must fill the input's place.
        const std::string text = reference;
        const std::size_t digits = target->IInput_Extended() ? 6 : 4;
        if (text.size() != digits ||
            text.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
            throw Failure(ZERBIN_E_REFUSED, "input " + std::string(input) + " takes " +
                                                std::to_string(digits) +
                                                " hexadecimal digits, not '" + text + "'");
        }
        target->IInput_Value(text);
        return ZERBIN_OK;
    });
}
