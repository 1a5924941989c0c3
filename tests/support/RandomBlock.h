// A block given random values of every kind, and everything a project keeps of it, for the
// save-then-load tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <random>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "datatypes/TypeClass.h"
#include "tests/support/TestSupport.h"

namespace zerbin::testing {

inline std::vector<std::shared_ptr<IAttribute>> AttributesOf(CDBAppObject& block) {
    const auto attributes = block.IAppObject_Attributes();
    return attributes ? attributes->IAttributes_NewEnum()
                      : std::vector<std::shared_ptr<IAttribute>>{};
}

inline std::vector<std::shared_ptr<IOutput>> OutputsOf(CDBAppObject& block) {
    const auto outputs = block.IAppObject_Outputs();
    return outputs ? outputs->IOutputs_NewEnum() : std::vector<std::shared_ptr<IOutput>>{};
}

// Name and value of every attribute, one line each.
inline std::string AttributeValues(CDBAppObject& block) {
    std::string values;
    for (const auto& attribute : AttributesOf(block)) {
        values += attribute->IAttribute_Name() + "=" + attribute->IAttribute_Value() + "\n";
    }
    return values;
}

// The block saved under a "Project" element of a document of its own.
struct SavedBlock {
    std::shared_ptr<pugi::xml_document> document = std::make_shared<pugi::xml_document>();
    pugi::xml_node project = document->append_child("Project");
    pugi::xml_node Element() const { return project.first_child(); }
};

inline SavedBlock Save(CDBAppObject& block) {
    SavedBlock saved;
    block.IAppObject_XmlSave(saved.project, *saved.document);
    return saved;
}

// The codes of an enum description "0,OFF;1,ON;".
inline std::vector<std::string> EnumCodes(const std::string& description) {
    std::vector<std::string> codes;
    std::istringstream entries(description);
    for (std::string entry; std::getline(entries, entry, ';');) {
        if (!entry.empty()) {
            codes.push_back(entry.substr(0, entry.find(',')));
        }
    }
    return codes;
}

// A limit in stored form, with either separator, as a number; fallback when it has none.
inline double Limit(const std::string& text, double fallback) {
    std::string point = text;
    std::replace(point.begin(), point.end(), ',', '.');
    return point.empty() ? fallback : LeadingNumber(point);
}

class RandomValues {
public:
    // Without carriageReturns no text holds a CR, for a trip through the text of a document
    // written by a writer that leaves them raw.
    explicit RandomValues(uint32_t seed, bool carriageReturns = true)
        : rng_(seed), carriageReturns_(carriageReturns) {}

    int64_t Between(int64_t low, int64_t high) {
        return std::uniform_int_distribution<int64_t>(low, high)(rng_);
    }
    bool Coin() { return Between(0, 1) == 1; }

    // Letters, digits, white space (also alone, at either end, and as CR LF), separators and
    // characters beyond ASCII.
    std::string Text(int64_t maxLength) {
        static const std::vector<std::string> pieces = {
            "a", "Z", "7", " ",  ".", ",",    "-", "_", "\xC3\xA4", "\xE2\x82\xAC",
            "&", "<", "'", "\t", " ", "\r\n", "\r"};
        const auto usable = static_cast<int64_t>(pieces.size()) - (carriageReturns_ ? 1 : 3);
        std::string text;
        const bool blanksOnly = Between(0, 7) == 0;
        const int64_t length = Between(0, maxLength);
        for (int64_t i = 0; i < length; ++i) {
            text += blanksOnly ? std::string(Coin() ? " " : "\t")
                               : pieces[static_cast<std::size_t>(Between(0, usable - 1))];
        }
        return text;
    }

    // A value of the type: a listed code, bits that fit, a number within the limits with two
    // decimals (written with "." whatever the separator), or a text that fits.
    std::string Of(ISNVType& type) {
        const TypeClass typeClass = ClassOf(type);
        const int32_t length = type.ISNVType_Length();
        if (typeClass == TypeClass::Enum) {
            const auto codes = EnumCodes(type.ISNVType_EnumDesc());
            return codes.empty() ? "0"
                                 : codes[static_cast<std::size_t>(
                                       Between(0, static_cast<int64_t>(codes.size()) - 1))];
        }
        if (typeClass == TypeClass::Bitfield) {
            return std::to_string(Between(0, (int64_t{1} << (8 * std::min(length, 4))) - 1));
        }
        if (typeClass == TypeClass::Textual) {
            return Text(std::max(length, 1));
        }
        double low = Limit(type.ISNVType_Min(), 0);
        double high = Limit(type.ISNVType_Max(), 100);
        if (!(low < high) || !std::isfinite(low) || !std::isfinite(high)) {
            low = 0;
            high = 100;
        }
        const double value =
            std::round((low + (high - low) * Between(0, 1000) / 1000.0) * 100) / 100;
        char text[64];
        std::snprintf(text, sizeof text, "%.2f", value);
        return text;
    }

private:
    std::mt19937 rng_;
    bool carriageReturns_;
};

// Writes random values: selectors first, since writing one re-derives or retypes others.
// A DivideBy attribute keeps 0, the one value a second division leaves alone.
inline void Randomize(CDBAppObject& block, RandomValues& random) {
    block.IAppObject_UserName(random.Text(24));
    block.IAppObject_XPosition(static_cast<double>(random.Between(-50000, 50000)) / 100);
    block.IAppObject_YPosition(static_cast<double>(random.Between(0, 90000)) / 8);
    for (bool selectors : {true, false}) {
        for (const auto& attribute : AttributesOf(block)) {
            if ((attribute->IAttribute_IsType() || attribute->IAttribute_IsUnit()) != selectors) {
                continue;
            }
            if (attribute->IAttribute_DividedBy() > 1) {
                attribute->IAttribute_Value("0");
            } else if (const auto fields = attribute->IAttribute_Fields()) {
                // Empty fields too, the first one included: they stand between blanks.
                std::string value;
                bool first = true;
                for (const auto& field : fields->IFields_NewEnum()) {
                    value += (first ? "" : " ") + (random.Between(0, 3) == 0
                                                       ? std::string()
                                                       : random.Of(*field->IField_SNVTType()));
                    first = false;
                }
                attribute->IAttribute_Value(value);
            } else {
                attribute->IAttribute_Value(random.Of(*attribute->IAttribute_SNVTType()));
            }
        }
    }
    for (const auto& output : OutputsOf(block)) {
        output->IOutput_IsDisplayable(random.Coin());
    }
}

// Everything a project keeps of a block, the images included.
struct Snapshot {
    std::string values;
    std::string userName;
    double x = 0;
    double y = 0;
    std::vector<bool> displayable;
    std::string stream;
    std::string intel;
    std::string xml;

    bool operator==(const Snapshot&) const = default;
};

inline void PrintTo(const Snapshot& s, std::ostream* out) {
    *out << "\n  values: " << s.values << "  user name: " << s.userName << "\n  position: " << s.x
         << ", " << s.y << "\n  stream: " << s.stream << "\n  intel: " << s.intel
         << "\n  xml: " << s.xml;
}

inline Snapshot Take(CDBAppObject& block) {
    Snapshot snapshot;
    snapshot.values = AttributeValues(block);
    snapshot.userName = block.IAppObject_UserName();
    snapshot.x = block.IAppObject_XPosition();
    snapshot.y = block.IAppObject_YPosition();
    for (const auto& output : OutputsOf(block)) {
        snapshot.displayable.push_back(output->IOutput_IsDisplayable());
    }
    snapshot.stream = block.IAppObject_Stream();
    snapshot.intel = block.IAppObject_IntelStream();
    snapshot.xml = XmlText(Save(block).Element());
    return snapshot;
}

}  // namespace zerbin::testing
