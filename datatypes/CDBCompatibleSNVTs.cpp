#include "datatypes/CDBCompatibleSNVTs.h"

#include <string_view>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "platform/Events.h"

namespace zerbin {
namespace {

// One entry keyed by its id as given; throws when the id is present in any letter case.
void AddEntry(KeyedCollection<CDBCompatibleSNVT>& items, const std::string& id) {
    auto entry = std::make_shared<CDBCompatibleSNVT>();
    entry->SetID(id);
    items.Add(id, std::move(entry));
}

}  // namespace

int32_t CDBCompatibleSNVTs::ICompatibleSNVTs_Count() {
    return items_.Count();
}

std::shared_ptr<ICompatibleSNVT> CDBCompatibleSNVTs::ICompatibleSNVTs_Item(int32_t Key) {
    return items_.At(Key);
}

std::vector<std::shared_ptr<ICompatibleSNVT>> CDBCompatibleSNVTs::ICompatibleSNVTs_NewEnum() {
    return {items_.Items().begin(), items_.Items().end()};
}

void CDBCompatibleSNVTs::ICompatibleSNVTs_Add(const std::string& list) {
    AddList(list);
}

void CDBCompatibleSNVTs::ICompatibleSNVTs_Remove(const std::string& sId) {
    RemoveEntry(sId);
}

std::string CDBCompatibleSNVTs::ICompatibleSNVTs_ToString() {
    std::string text;
    for (const auto& entry : items_.Items()) {
        if (!text.empty()) {
            text += ',';
        }
        text += entry->ICompatibleSNVT_ID();
    }
    return text;
}

bool CDBCompatibleSNVTs::ICompatibleSNVTs_Exists(const std::string& strSnvtID) {
    return items_.Contains(strSnvtID);
}

std::shared_ptr<ICompatibleSNVTs> CDBCompatibleSNVTs::ICompatibleSNVTs_Merge(
    std::shared_ptr<ICompatibleSNVTs> oCompatibleSNVTs) {
    ICompatibleSNVTs& given = Need(oCompatibleSNVTs);
    auto common = std::make_shared<CDBCompatibleSNVTs>();
    for (const auto& entry : given.ICompatibleSNVTs_NewEnum()) {
        const std::string id = Need(entry).ICompatibleSNVT_ID();
        if (ICompatibleSNVTs_Exists(id)) {
            // A foreign set may repeat an id; the intersection keeps its first place.
            SkipStep([&] { AddEntry(common->items_, id); });
        }
    }
    return common;
}

std::shared_ptr<CDBCompatibleSNVTs> CDBCompatibleSNVTs::Copy() const {
    auto copy = std::make_shared<CDBCompatibleSNVTs>();
    copy->items_ =
        items_.Copied([](const std::shared_ptr<CDBCompatibleSNVT>& entry) { return entry; });
    return copy;
}

std::shared_ptr<IObject> CDBCompatibleSNVTs::IClonable_Clone() {
    auto copy = std::make_shared<CDBCompatibleSNVTs>();
    for (const auto& entry : items_.Items()) {
        AddEntry(copy->items_, entry->ICompatibleSNVT_ID());
    }
    return copy;
}

void CDBCompatibleSNVTs::AddList(const std::string& list) {
    if (list.empty()) {
        return;
    }
    if (list.find(',') == std::string::npos) {
        SkipStep([&] { AddEntry(items_, list); });
        return;
    }
    // One pass over the list: a list may hold many thousands of ids.
    std::string_view rest = list;
    while (true) {
        ServePendingEvents();
        const std::size_t comma = rest.find(',');
        const std::string token(rest.substr(0, comma));
        // Deliberate: the first empty token ends the list, so "1,,3" adds only "1" and a
        // trailing comma is harmless. Definition files rely on that.
        if (token.empty()) {
            break;
        }
        SkipStep([&] { AddEntry(items_, token); });
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
}

void CDBCompatibleSNVTs::RemoveEntry(const std::string& id) {
    items_.Remove(id);
}

}  // namespace zerbin
