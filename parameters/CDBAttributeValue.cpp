// The value of an attribute: the write and what it sets off in the block, the reads, the
// display forms, the editor, the return to the default and the macro terminal test.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "datatypes/CDBFields.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/CDBUnits.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"
#include "interfaces/IMemberOwner.h"
#include "parameters/CDBAttribute.h"
#include "platform/Messages.h"

namespace zerbin {

namespace {

// Each part and a blank, the whole trimmed at both ends.
template <class Part>
std::string JoinFields(CDBFields& fields, Part part) {
    std::string joined;
    for (const auto& field : fields.Fields()) {
        joined += part(*field) + " ";
    }
    return Trim(joined);
}

// The stored form of a structure: its fields joined by single blanks. Only trailing blanks
// go, which stand for empty fields at the end, as a missing token does; a leading blank is
// an empty first field and stays, so that the value splits back into the same fields.
std::string JoinStored(const std::vector<std::string>& tokens) {
    std::string joined;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        joined += (i == 0 ? "" : " ") + tokens[i];
    }
    const std::size_t last = joined.find_last_not_of(' ');
    joined.resize(last == std::string::npos ? 0 : last + 1);
    return joined;
}

// Counts nesting of the value write for as long as it lives.
class DepthGuard {
public:
    explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

private:
    int& depth_;
};

}  // namespace

std::string CDBAttribute::StructToken(const std::string& text, int32_t index) const {
    // Token 0 of a text without blank is empty, which would lose the value of a structure
    // given as a single token.
    if (index == 0 && text.find(' ') == std::string::npos) {
        return text;
    }
    return NthToken(text, index, " ");
}

void CDBAttribute::RaiseAttributeChanged(bool absorb) {
    if (callbacks_.size() == 0) {
        return;  // a project load writes every value of every block, mostly unheard
    }
    const std::string key = globalKey_.Of(def_->name);
    callbacks_.Raise([&](IcbkAppObject& listener) {
        RunStep(absorb, [&] { listener.IcbkAppObject_AttributeChanged(key); });
    });
}

void CDBAttribute::ChangeTypeOfConnections(bool absorb) {
    // A block without inputs or outputs has no collection to walk.
    std::shared_ptr<IInputs> inputs;
    RunStep(absorb, [&] { inputs = Need(parent_).IAppObject_Inputs(); });
    if (inputs) {
        for (const auto& input : inputs->IInputs_NewEnum()) {
            RunStep(absorb, [&] { Need(input).IInput_changeType(value_); });
        }
    }
    std::shared_ptr<IOutputs> outputs;
    RunStep(absorb, [&] { outputs = Need(parent_).IAppObject_Outputs(); });
    if (outputs) {
        for (const auto& output : outputs->IOutputs_NewEnum()) {
            RunStep(absorb, [&] { Need(output).IOutput_changeType(value_); });
        }
    }
}

// ---- The write -----------------------------------------------------------------------------

void CDBAttribute::IAttribute_Value(std::string Text) {
    if (writeDepth_ >= kMaxNestedWrites) {
        return;
    }
    DepthGuard depth(writeDepth_);

    if (def_->isType) {
        if (Text == value_) {
            return;
        }
        bool accepted = true;
        SkipStep([&] { accepted = ConnectionCheckPasses(Text); });
        if (!accepted) {
            ShowMessage("Type selected (ID: " + Text +
                            "), is not compatible with the object connections.\r\n"
                            "Select a compatible type or remove the object connections.",
                        "Warning: Incompatible type", MessageIcon::Information);
            return;
        }
    }

    if (def_->isUnit) {
        const auto unit = UnitFor(NormalizeDecimal(Text));
        if (unit && !UnitFitsDependents(*unit)) {
            return;
        }
    }

    SkipStep([&] { StoreValue(Text); });

    if (def_->isUnit) {
        // A value that no unit has leaves the dependents as they are: there is nothing to
        // derive them from, and resetting them to an empty type would lose their values.
        if (const auto unit = SelectedUnit()) {
            RederiveDependents(unit, true);
        }
    }

    if (def_->isType) {
        ChangeTypeOfConnections(true);
        RaiseAttributeChanged(true);
    }
    RaiseAttributeChanged(true);

    if (interceptor_) {
        SkipStep([&] {
            auto self = Self();
            interceptor_->AttributeValueChanged(self);
        });
    }
}

void CDBAttribute::StoreValue(const std::string& text) {
    if (!fields_) {
        if (ClassOf(*snvtType_) == TypeClass::Textual) {
            value_ = text;
            return;
        }
        value_ = NormalizeDecimal(text);
        if (def_->divideBy > 1 && !restoringSaved_) {
            // LeadingNumber reads the text as it came: "12,5" divides 12.
            value_ = FormatDouble(LeadingNumber(text) / static_cast<double>(def_->divideBy));
        }
        return;
    }

    std::vector<std::string> tokens;
    int32_t index = 0;
    for (const auto& field : fields_->Fields()) {
        SkipStep([&] {
            const std::string token = StructToken(text, index);
            field->IField_Value(token);
            const bool textual = ClassOf(field->Record()) == TypeClass::Textual;
            tokens.push_back(textual ? token : NormalizeDecimal(token));
        });
        ++index;
    }
    value_ = JoinStored(tokens);
}

std::optional<std::string> CDBAttribute::PlainRestoredValue(
    std::optional<std::string_view> text) const {
    if (fields_ || def_->isUnit || def_->isType || interceptor_ || callbacks_.size() != 0 ||
        writeDepth_ != 0 || !snvtType_) {
        return std::nullopt;
    }
    if (!text) {
        return std::string();
    }
    // As StoreValue keeps a saved value: a text as it is, a number normalised and, being
    // saved, not divided again.
    if (ClassOf(*snvtType_) == TypeClass::Textual) {
        return std::string(*text);
    }
    return NormalizeDecimal(std::string(*text));
}

bool CDBAttribute::RestoringLeavesAsIs(std::string_view text) const {
    const std::optional<std::string> restored = PlainRestoredValue(text);
    return restored && *restored == value_;
}

// ---- Reads ---------------------------------------------------------------------------------

std::string CDBAttribute::IAttribute_Value() {
    if (fields_) {
        std::vector<std::string> tokens;
        for (const auto& field : fields_->Fields()) {
            tokens.push_back(field->IField_Value());
        }
        return JoinStored(tokens);
    }
    // A text is not a number: its "." or "," stays as the user wrote it.
    if (ClassOf(*snvtType_) == TypeClass::Textual) {
        return value_;
    }
    return DecimalToDisplay(value_);
}

std::string CDBAttribute::IAttribute_DispValue() {
    const TypeClass typeClass = ClassOf(*snvtType_);
    if (IsNumericClass(typeClass)) {
        const auto converter = UnitsManager();
        const std::string typeId = snvtType_->ISNVType_ID();
        return Need(converter).ToDisplayValue(typeId, DecimalToDisplay(value_)) + " " +
               converter->DisplayUnit(typeId);
    }
    if (typeClass == TypeClass::Enum) {
        return FormatDisplayValue(DecimalToDisplay(value_), snvtType_->ISNVType_EnumDesc());
    }
    if (typeClass == TypeClass::Bitfield || typeClass == TypeClass::Textual) {
        return Trim(value_);
    }
    if (typeClass == TypeClass::Struct) {
        // Deliberately writes: after the read the fields hold the tokens of Value.
        CDBFields& fields = Need(fields_);
        std::string running;
        for (int32_t i = 1; i <= fields.IFields_Count(); ++i) {
            const auto field = fields.IFields_Item(std::to_string(i));
            Need(field).IField_Value(StructToken(value_, i - 1));
            running += " " + field->IField_DispValue();
        }
        return Trim(running);
    }
    return DecimalToDisplay(value_);
}

std::string CDBAttribute::IAttribute_DispDefault() {
    const TypeClass typeClass = ClassOf(*snvtType_);
    if (IsNumericClass(typeClass)) {
        return DecimalToDisplay(def_->defaultValue) + " " + snvtType_->ISNVType_Units();
    }
    if (typeClass == TypeClass::Enum) {
        return FormatDisplayValue(DecimalToDisplay(def_->defaultValue),
                                  snvtType_->ISNVType_EnumDesc());
    }
    if (typeClass == TypeClass::Bitfield || typeClass == TypeClass::Textual) {
        return Trim(def_->defaultValue);
    }
    if (typeClass == TypeClass::Struct) {
        return JoinFields(Need(fields_),
                          [](CDBField& field) { return field.IField_DispDefault(); });
    }
    return DecimalToDisplay(def_->defaultValue);
}

std::string CDBAttribute::IAttribute_DispMin() {
    const TypeClass typeClass = ClassOf(*snvtType_);
    if (IsNumericClass(typeClass)) {
        return DecimalToDisplay(def_->min) + " " + snvtType_->ISNVType_Units();
    }
    if (typeClass == TypeClass::Struct) {
        return JoinFields(Need(fields_), [](CDBField& field) { return field.IField_DispMin(); });
    }
    return DecimalToDisplay(def_->min);
}

std::string CDBAttribute::IAttribute_DispMax() {
    const TypeClass typeClass = ClassOf(*snvtType_);
    if (IsNumericClass(typeClass)) {
        return DecimalToDisplay(def_->max) + " " + snvtType_->ISNVType_Units();
    }
    if (typeClass == TypeClass::Struct) {
        return JoinFields(Need(fields_), [](CDBField& field) { return field.IField_DispMax(); });
    }
    return DecimalToDisplay(def_->max);
}

// ---- Editor, default, macro ----------------------------------------------------------------

void CDBAttribute::IAttribute_SetValue() {
    // One step: without an editor nothing opens and nothing is said.
    SkipStep([&] {
        const std::shared_ptr<IValueEditor> made = Editor();
        IValueEditor& editor = Need(made);
        editor.DataPoint(shared_from_this());
        editor.ShowModal();
    });
}

void CDBAttribute::IAttribute_BackToDefault() {
    value_ = def_->defaultValue;
    if (fields_) {
        // The fields are the truth of a structure's value: they follow at once rather than
        // at the next display read.
        int32_t index = 0;
        for (const auto& field : fields_->Fields()) {
            field->IField_Value(StructToken(value_, index++));
        }
    }
    if (def_->isUnit) {
        if (const auto unit = SelectedUnit()) {
            RederiveDependents(unit, false);
        }
    }
    if (def_->isType) {
        ChangeTypeOfConnections(false);
        RaiseAttributeChanged(false);
    }
    RaiseAttributeChanged(false);
}

bool CDBAttribute::IAttribute_IsMacroConnected() {
    std::shared_ptr<IMacro> macro;
    SkipStep([&] {
        auto host = std::dynamic_pointer_cast<IMacroHost>(Need(parent_).IAppObject_Parent());
        macro = Need(host).Macro();
    });
    if (!macro) {
        return false;
    }
    std::vector<std::shared_ptr<IMacroAttributeGroup>> groups;
    SkipStep([&] { groups = macro->AttributeGroups(); });
    const std::string key = globalKey_.Of(def_->name);
    for (const auto& group : groups) {
        std::shared_ptr<IMacroTerminals> terminals;
        int32_t count = 0;
        SkipStep([&] {
            terminals = Need(group).Terminals();
            count = Need(terminals).Count();
        });
        for (int32_t position = 1; position <= count; ++position) {
            bool match = false;
            SkipStep([&] { match = Need(terminals->Item(position)).ItemKey() == key; });
            if (match) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace zerbin
