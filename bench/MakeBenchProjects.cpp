// Writes the projects the whole-process benchmarks load, of any number of blocks:
//   default  the shipped types in turn, each block with a new block's values and its image;
//   random   the same types with seeded random valid values, as users' projects hold them;
//   compact  the small shipped types with random values and their selectors switched, written
//            without indentation and with an empty CDB element, as a tool that leaves the
//            image to the loader writes them.
// Run: build/bench/MakeBenchProjects KIND BLOCKS FILE
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "base/MMain.h"
#include "bench/ShippedBlocks.h"
#include "datatypes/TypeClass.h"
#include "platform/Files.h"
#include "platform/ProjectFile.h"

namespace {

using zerbin::CDBAppObject;

class Random {
public:
    explicit Random(uint32_t seed) : rng_(seed) {}

    int64_t Between(int64_t low, int64_t high) {
        return std::uniform_int_distribution<int64_t>(low, high)(rng_);
    }

    std::string Word(int64_t maxLength) {
        static const char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123 ";
        std::string text;
        for (int64_t n = Between(0, maxLength); n > 0; --n) {
            text += kLetters[Between(0, sizeof kLetters - 2)];
        }
        return text;
    }

    // A valid value of the type: a listed code, bits that fit, a number within the limits with
    // up to two decimals, or a text that fits.
    std::string Of(zerbin::ISNVType& type) {
        const zerbin::TypeClass typeClass = zerbin::ClassOf(type);
        const int32_t length = type.ISNVType_Length();
        if (typeClass == zerbin::TypeClass::Enum) {
            std::vector<std::string> codes;
            std::istringstream entries(type.ISNVType_EnumDesc());
            for (std::string entry; std::getline(entries, entry, ';');) {
                if (!entry.empty()) {
                    codes.push_back(entry.substr(0, entry.find(',')));
                }
            }
            return codes.empty() ? "0"
                                 : codes[static_cast<std::size_t>(
                                       Between(0, static_cast<int64_t>(codes.size()) - 1))];
        }
        if (typeClass == zerbin::TypeClass::Bitfield) {
            return std::to_string(Between(0, (int64_t{1} << (8 * std::min(length, 4))) - 1));
        }
        if (typeClass == zerbin::TypeClass::Textual) {
            return Word(std::max(length, 1));
        }
        double low = Limit(type.ISNVType_Min(), 0);
        double high = Limit(type.ISNVType_Max(), 100);
        // Users' numbers are modest even where the type would take a float's whole range.
        low = std::max(low, -10000.0);
        high = std::min(high, 100000.0);
        if (!(low < high)) {
            low = 0;
            high = 100;
        }
        const double value =
            std::round((low + (high - low) * static_cast<double>(Between(0, 1000)) / 1000.0) *
                       100) /
            100;
        char text[64];
        std::snprintf(text, sizeof text, "%.2f", value);
        return text;
    }

private:
    static double Limit(std::string text, double fallback) {
        std::replace(text.begin(), text.end(), ',', '.');
        return text.empty() ? fallback : zerbin::LeadingNumber(text);
    }

    std::mt19937 rng_;
};

std::vector<std::shared_ptr<zerbin::IAttribute>> Attributes(CDBAppObject& block) {
    const auto attributes = block.IAppObject_Attributes();
    return attributes ? attributes->IAttributes_NewEnum()
                      : std::vector<std::shared_ptr<zerbin::IAttribute>>{};
}

// Selectors first, as a user sets them: a switched selector retypes or re-derives the others.
// A DivideBy attribute keeps its value, which a second division would change.
void Randomize(CDBAppObject& block, Random& random) {
    for (bool selectors : {true, false}) {
        for (const auto& attribute : Attributes(block)) {
            if ((attribute->IAttribute_IsType() || attribute->IAttribute_IsUnit()) != selectors ||
                attribute->IAttribute_DividedBy() > 1) {
                continue;
            }
            if (const auto fields = attribute->IAttribute_Fields()) {
                std::string value;
                for (const auto& field : fields->IFields_NewEnum()) {
                    value += (value.empty() ? "" : " ") + random.Of(*field->IField_SNVTType());
                }
                attribute->IAttribute_Value(value);
            } else {
                attribute->IAttribute_Value(random.Of(*attribute->IAttribute_SNVTType()));
            }
        }
    }
    if (const auto outputs = block.IAppObject_Outputs()) {
        for (const auto& output : outputs->IOutputs_NewEnum()) {
            output->IOutput_IsDisplayable(random.Between(0, 1) == 1);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string kind = argc == 4 ? argv[1] : "";
    if (kind != "default" && kind != "random" && kind != "compact") {
        std::fprintf(stderr, "usage: MakeBenchProjects default|random|compact BLOCKS FILE\n");
        return 2;
    }
    const long blocks = std::strtol(argv[2], nullptr, 10);
    if (!zerbin::bench::Shipped().dictionary || !zerbin::bench::Shipped().device) {
        return 3;
    }
    zerbin::SetComponentFolder(zerbin::bench::kData / "library" / "Zerbin");
    const bool compact = kind == "compact";
    // The compact project's types are the small ones, the two with selectors among them twice.
    const std::vector<std::string> types =
        compact ? std::vector<std::string>{"SETPOINT_UNIT", "TYPE_MUX", "IO_CHANNEL", "TIME_DELAY",
                                           "SETPOINT_UNIT", "TYPE_MUX", "Q_EMPTY",    "LABEL"}
                : zerbin::bench::ShippedTypes();
    Random random(20261126u);
    pugi::xml_document project;
    pugi::xml_node root = project.append_child("Project");
    for (long i = 0; i < blocks; ++i) {
        const std::string key = "Block" + std::to_string(i + 1);
        auto block =
            zerbin::bench::CreateBlock(types[static_cast<std::size_t>(i) % types.size()], key);
        block->IAppObject_UserName(key);
        block->IAppObject_XPosition(40.0 * static_cast<double>(i % 100));
        block->IAppObject_YPosition(30.0 * static_cast<double>(i / 100));
        if (kind != "default") {
            Randomize(*block, random);
        }
        if (!compact) {
            block->IAppObject_Stream();
        }
        block->IAppObject_XmlSave(root, project);
        block->IAppObject_Destroy();
    }
    const unsigned format =
        compact ? pugi::format_raw | pugi::format_no_empty_element_tags : pugi::format_default;
    std::ostringstream text;
    project.save(text, "  ", format);
    try {
        zerbin::ProjectFile(argv[3], "bench project").WriteText(text.str());
    } catch (const zerbin::ProjectFileError& error) {
        std::fprintf(stderr, "MakeBenchProjects: %s\n", error.what());
        return 1;
    }
    return 0;
}
