// show: the header of a new block, its members in the order they stand in the CDB, and its
// outputs.
#include <algorithm>
#include <string>
#include <vector>

#include "base/MMain.h"
#include "cli/CliErrors.h"
#include "cli/Commands.h"
#include "connections/CDBInput.h"
#include "connections/CDBInputs.h"
#include "parameters/CDBAttribute.h"
#include "parameters/CDBAttributes.h"

namespace zerbin::cli {
namespace {

constexpr const char* kNone = "-";

using Row = std::vector<std::string>;

// Columns padded to their widest cell (in characters), two blanks apart, no trailing blanks.
void PrintTable(std::ostream& out, const std::vector<Row>& rows) {
    std::vector<int32_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], CharCount(row[i]));
        }
    }
    for (const Row& row : rows) {
        std::string line = "  ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) {
                line.append(static_cast<std::size_t>(widths[i] - CharCount(row[i]) + 2), ' ');
            }
        }
        out << line << '\n';
    }
}

std::string OrNone(const std::string& text) {
    return text.empty() ? kNone : text;
}

std::string YesNo(bool flag) {
    return flag ? "yes" : "no";
}

struct Member {
    Row row;
    int32_t position;
    bool placed;
};

std::string AttributeKind(CDBAttribute& attribute) {
    if (attribute.IAttribute_ToolOnly()) {
        return "tool-only";
    }
    if (attribute.IAttribute_IsUnit()) {
        return "unit selector";
    }
    if (attribute.IAttribute_IsType()) {
        return "type selector";
    }
    if (attribute.IAttribute_IsUnitDependent()) {
        return "unit-dependent";
    }
    if (attribute.IAttribute_IsDeviceDependent()) {
        return "device list";
    }
    return "attribute";
}

Member AttributeMember(CDBAttribute& attribute) {
    const std::shared_ptr<ISNVType> type = attribute.IAttribute_SNVTType();
    const bool keepFloat = attribute.IAttribute_IsKeepFloatStandard();
    const int32_t length = keepFloat ? 4 : (type ? type->ISNVType_Length() : 0);
    const bool toolOnly = attribute.IAttribute_ToolOnly();
    const int32_t position = attribute.IAttribute_CDBPosition();
    return Member{
        {AttributeKind(attribute), attribute.IAttribute_Name(),
         OrNone(type ? type->ISNVType_ID() : ""), OrNone(type ? type->ISNVType_GenType() : ""),
         std::to_string(length), toolOnly ? kNone : std::to_string(attribute.CDBOrderInPosition()),
         toolOnly ? kNone : std::to_string(position), OrNone(attribute.IAttribute_DispValue())},
        position,
        !toolOnly && position > 0};
}

std::string CompatibleList(IInput& input) {
    std::string list;
    if (const auto compatibles = input.Iinput_SNVTCompatibles()) {
        for (const auto& entry : compatibles->ICompatibleSNVTs_NewEnum()) {
            list += (list.empty() ? "" : ",") + entry->ICompatibleSNVT_ID();
        }
    }
    return OrNone(list);
}

Member InputMember(CDBInput& input) {
    const bool extended = input.IInput_Extended();
    const int32_t position = input.IInput_CDBPosition();
    return Member{
        {extended ? "extended input" : "input", input.IInput_Name(), CompatibleList(input),
         "reference", extended ? "3" : "2", std::to_string(input.CDBOrderInPosition()),
         std::to_string(position), OrNone(input.IInput_Value())},
        position,
        position > 0};
}

// Placed members by their offset, attributes before inputs at an equal one as the layout
// goes; then those the layout passed by, in collection order.
std::vector<Member> MembersInLayoutOrder(CDBAppObject& block) {
    std::vector<Member> members;
    if (const auto attributes = block.AttributesCollection()) {
        for (const auto& attribute : attributes->Members()) {
            members.push_back(AttributeMember(*attribute));
        }
    }
    if (const auto inputs = block.InputsCollection()) {
        for (const auto& input : inputs->Members()) {
            members.push_back(InputMember(*input));
        }
    }
    std::stable_sort(members.begin(), members.end(), [](const Member& a, const Member& b) {
        if (a.placed != b.placed) {
            return a.placed;
        }
        return a.placed && a.position < b.position;
    });
    return members;
}

std::vector<Row> OutputRows(CDBAppObject& block) {
    std::vector<Row> rows;
    const std::shared_ptr<IOutputs> outputs = block.IAppObject_Outputs();
    if (!outputs) {
        return rows;
    }
    for (const std::shared_ptr<IOutput>& output : outputs->IOutputs_NewEnum()) {
        const std::shared_ptr<ISNVType> type = output->IOutput_SNVTType();
        const auto display = std::dynamic_pointer_cast<IDisplayItem>(output);
        rows.push_back({output->IOutput_Name(), OrNone(type ? type->ISNVType_ID() : ""),
                        OrNone(type ? type->ISNVType_GenType() : ""),
                        type ? std::to_string(type->ISNVType_Length()) : kNone,
                        YesNo(output->IOutput_IsTypeDependent()),
                        display ? display->IDisplayItem_Reference() : kNone});
    }
    return rows;
}

}  // namespace

int RunShow(const CommandContext& context) {
    const std::string& type = context.invocation.arguments.front();
    RequireBlockType(context.host.library, type);
    HostedBlock block(context.host, type, BlockKeys{"Block1", {}, {}});
    std::ostream& out = context.out;

    out << type << ": " << block->IAppObject_Name() << '\n';
    PrintTable(out, {
                        {"ID", OrNone(block->IAppObject_ID())},
                        {"Description", OrNone(block->IAppObject_Description())},
                        {"Category", OrNone(block->IAppObject_Category())},
                        {"ExecTime", std::to_string(block->IAppObject_ExecTime())},
                        {"MaxInstances", std::to_string(block->IAppObject_MaxInstances())},
                        {"RAM usage", std::to_string(block->IAppObject_DDBDimension())},
                        {"Backup usage", std::to_string(block->IAppObject_SDBDimension())},
                        {"Device clock", YesNo(block->IAppObject_UsesDeviceClock())},
                        {"Device dependent", YesNo(block->IAppObject_IsDeviceDependent())},
                        {"Datasheet", YesNo(block->IAppObject_DatasheetAvailable())},
                        {"CDBDimension", std::to_string(block->IAppObject_CDBDimension())},
                    });

    std::vector<Row> members{
        {"Kind", "Name", "SNVT", "Class", "Length", "Order", "Position", "Value"}};
    for (Member& member : MembersInLayoutOrder(*block)) {
        members.push_back(std::move(member.row));
    }
    out << "\nMembers in layout order:\n";
    if (members.size() == 1) {
        out << "  none\n";
    } else {
        PrintTable(out, members);
    }

    std::vector<Row> outputs{{"Output", "SNVT", "Class", "Length", "Type-dependent", "Reference"}};
    for (Row& row : OutputRows(*block)) {
        outputs.push_back(std::move(row));
    }
    out << "\nOutputs:\n";
    if (outputs.size() == 1) {
        out << "  none\n";
    } else {
        PrintTable(out, outputs);
    }
    return kExitOk;
}

}  // namespace zerbin::cli
