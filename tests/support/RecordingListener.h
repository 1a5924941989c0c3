// A listener double that records every callback it hears as "Operation(arg,arg)", the
// operation named without its "IcbkAppObject_" prefix. Listeners that share a CallJournal also
// write "name Operation(...)" to it, so that a test sees the order of the calls across them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "interfaces/IcbkAppObject.h"

namespace zerbin::testing {

class CallJournal {
public:
    const std::vector<std::string>& Lines() const { return lines_; }
    void Record(std::string line) { lines_.push_back(std::move(line)); }
    void Clear() { lines_.clear(); }

private:
    std::vector<std::string> lines_;
};

class RecordingListener : public IcbkAppObject {
    using Key = const std::string&;

public:
    explicit RecordingListener(std::string name = "listener",
                               std::shared_ptr<CallJournal> journal = nullptr)
        : name_(std::move(name)), journal_(std::move(journal)) {}

    const std::vector<std::string>& Lines() const { return lines_; }

    // Runs after each call has been recorded, inside the raising operation: a test may call
    // back into the block from here.
    void OnCall(std::function<void()> hook) { hook_ = std::move(hook); }

    void IcbkAppObject_Created() override { Hear("Created"); }
    void IcbkAppObject_CDBChanged(int32_t cdb, int32_t ddb, int32_t sdb) override {
        Hear("CDBChanged",
             std::to_string(cdb) + "," + std::to_string(ddb) + "," + std::to_string(sdb));
    }
    void IcbkAppObject_Destroied() override { Hear("Destroied"); }
    void IcbkAppObject_AttributeChanged(Key k) override { Hear("AttributeChanged", k); }
    void IcbkAppObject_AppObjectUserNameChanged(Key k) override {
        Hear("AppObjectUserNameChanged", k);
    }
    void IcbkAppObject_NVNameChanged(Key k, Key n) override { Hear("NVNameChanged", k + "," + n); }
    void IcbkAppObject_CPNameChanged(Key k, Key n) override { Hear("CPNameChanged", k + "," + n); }
    void IcbkAppObject_NVTypeChanged(Key k) override { Hear("NVTypeChanged", k); }
    void IcbkAppObject_CPTypeChanged(Key k) override { Hear("CPTypeChanged", k); }
    void IcbkAppObject_RefInTypeChanged(Key k) override { Hear("RefInTypeChanged", k); }
    void IcbkAppObject_RefInAdded(Key k) override { Hear("RefInAdded", k); }
    void IcbkAppObject_RefInRemoved(Key k) override { Hear("RefInRemoved", k); }
    void IcbkAppObject_RefOutAdded(Key k) override { Hear("RefOutAdded", k); }
    void IcbkAppObject_RefOutRemoved(Key k) override { Hear("RefOutRemoved", k); }
    void IcbkAppObject_RefOutTypeChanged(Key k) override { Hear("RefOutTypeChanged", k); }
    void IcbkAppObject_ConnectionDeleted() override { Hear("ConnectionDeleted"); }
    void IcbkAppObject_ConnectionToBeDeleted(Key k) override { Hear("ConnectionToBeDeleted", k); }
    void IcbkAppObject_RefOutAddedBefore(Key k, Key b) override {
        Hear("RefOutAddedBefore", k + "," + b);
    }
    void IcbkAppObject_RefreshObj(Key k) override { Hear("RefreshObj", k); }
    void IcbkAppObject_NumObjectsChanged() override { Hear("NumObjectsChanged"); }
    void IcbkAppObject_AvailableDimsChanged() override { Hear("AvailableDimsChanged"); }
    void IcbkAppObject_RemoveGatewayObject(Key k) override { Hear("RemoveGatewayObject", k); }
    void IcbkAppObject_LoadGatewayDevices() override { Hear("LoadGatewayDevices"); }
    std::shared_ptr<IObject> IcbkAppObject_Gateways() override { return Hear("Gateways"); }
    std::shared_ptr<IObject> IcbkAppObject_Ioms() override { return Hear("Ioms"); }
    void IcbkAppObject_RemoveIomInternalObject(std::shared_ptr<IObject>) override {
        Hear("RemoveIomInternalObject");
    }
    void IcbkAppObject_LoadIoms(std::shared_ptr<IObject>, std::shared_ptr<IObject>) override {
        Hear("LoadIoms");
    }

private:
    std::nullptr_t Hear(const std::string& operation, const std::string& arguments = {}) {
        lines_.push_back(operation + "(" + arguments + ")");
        if (journal_) {
            journal_->Record(name_ + " " + lines_.back());
        }
        if (hook_) {
            hook_();
        }
        return nullptr;
    }

    std::string name_;
    std::shared_ptr<CallJournal> journal_;
    std::vector<std::string> lines_;
    std::function<void()> hook_;
};

}  // namespace zerbin::testing
