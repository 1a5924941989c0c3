// The in-memory record of one network variable type, filled from the SNVT dictionary. Every
// attribute, output and field owns its own record and may overwrite single fields of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <pugixml.hpp>

#include "interfaces/ISNVType.h"

namespace zerbin {

class CDBSNVTType : public ISNVType, public IEnumType {
public:
    // ISNVType
    std::string ISNVType_ID() override;
    int32_t ISNVType_R7Region() override;
    int32_t ISNVType_Factor() override;
    int32_t ISNVType_ACoef() override;
    int32_t ISNVType_BCoef() override;
    int32_t ISNVType_CCoef() override;
    std::string ISNVType_GenType() override;
    std::string ISNVType_LUIType() override;
    std::string ISNVType_InvalidValue() override;
    std::string ISNVType_Name() override;
    std::string ISNVType_Min() override;
    std::string ISNVType_Max() override;
    std::string ISNVType_Units() override;
    std::string ISNVType_BACnetUnits() override;
    std::string ISNVType_EnumDesc() override;
    int32_t ISNVType_Length() override;
    bool ISNVType_HasField() override;

    // IEnumType
    std::string IEnumType_EnumDesc() override;
    void IEnumType_EnumDesc(const std::string& desc) override;
    bool IEnumType_IsEnumType() override;

    // Internal. Fills the record from the entry "SNVTS/SNVT_" + id of the process-wide
    // dictionary. Clears nothing; never throws; reports a bad type, a bad length or a missing
    // entry through the message port.
    void ResolveByID(const std::string& id);
    // Internal. The same without a word to the user, for readers that only look a type up.
    void ResolveQuietly(const std::string& id);
    // Internal. The limits as held, before DecimalToDisplay.
    const std::string& StoredMin() const { return min_; }
    const std::string& StoredMax() const { return max_; }
    const std::string& GenTypeWord() const { return genType_; }
    int32_t StoredLength() const { return length_; }
    // Internal setters: each changes the one field named.
    void SetGenType(const std::string& v);
    void SetLength(int32_t v);
    void SetEnumDesc(const std::string& v);
    void SetMin(const std::string& v);
    void SetMax(const std::string& v);

    // Internal. A record of its own with the same fields, for a member that must be free to
    // change its record without touching the one it was copied from.
    std::shared_ptr<CDBSNVTType> Copy() const { return std::make_shared<CDBSNVTType>(*this); }

    // The edits that resolving an id makes to a record, worked out once per dictionary.
    struct Resolution;

private:
    static std::shared_ptr<const Resolution> CachedResolution(const std::string& id);
    static void Resolve(const std::string& id, Resolution& out);
    // LUIType and Length for the class word, and its details from the entry.
    static void ApplyTypeClass(const std::string& id, pugi::xml_node entry, const std::string& word,
                               Resolution& out);
    static void LoadEnums(const std::string& id, Resolution& out);
    static void LoadNumericDetails(pugi::xml_node entry, Resolution& out);
    static void LoadTextDetails(pugi::xml_node entry, Resolution& out);
    void Replay(const std::shared_ptr<const Resolution>& resolution, bool quiet = false);

    std::string enumDesc_;
    std::string genType_;
    std::string invalidValue_;
    int32_t aCoef_ = 0;
    int32_t bCoef_ = 0;
    int32_t cCoef_ = 0;
    std::string id_;
    int32_t length_ = 0;
    std::string luiType_;
    std::string min_;
    std::string max_;
    std::string units_;
    std::string bacnetUnits_;
    std::string name_;
    int32_t factor_ = 0;
    int32_t r7Region_ = 0;
};

}  // namespace zerbin
