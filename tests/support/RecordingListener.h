// A listener double that records every callback it hears, for tests of the members that raise
// them. Several listeners can share one CallJournal, so that a test sees the order of the calls
// across listeners, not only within one.
//
//   auto journal = std::make_shared<CallJournal>();
//   auto first = std::make_shared<RecordingListener>("first", journal);
//   auto second = std::make_shared<RecordingListener>("second", journal);
//   input->IInput_CallBack(first);
//   input->IInput_CallBack(second);
//   input->IInput_changeType("105");
//   EXPECT_THAT(journal->Lines(), ElementsAre("first ConnectionToBeDeleted(K\\RIN\\A)", ...));
//   EXPECT_THAT(first->Lines(), ElementsAre("ConnectionToBeDeleted(K\\RIN\\A)", ...));
//
// Operations are named without their "IcbkAppObject_" prefix.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "interfaces/Error.h"
#include "interfaces/IcbkAppObject.h"

namespace zerbin::testing {

struct ListenerCall {
    std::string listener;   // name of the listener that heard the call
    std::string operation;  // e.g. "RefInTypeChanged"
    std::vector<std::string> arguments;

    // "RefInTypeChanged(K\RIN\A)"; several arguments are joined by ",".
    std::string Signature() const {
        std::string text = operation + "(";
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            text += (i == 0 ? "" : ",") + arguments[i];
        }
        return text + ")";
    }
};

// The calls of any number of listeners, in the order they were heard.
class CallJournal {
public:
    void Record(const ListenerCall& call) { calls_.push_back(call); }
    const std::vector<ListenerCall>& Calls() const { return calls_; }
    // "first RefInTypeChanged(K\RIN\A)": the listener's name, a blank, the signature.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const auto& call : calls_) {
            lines.push_back(call.listener + " " + call.Signature());
        }
        return lines;
    }
    void Clear() { calls_.clear(); }

private:
    std::vector<ListenerCall> calls_;
};

class RecordingListener : public IcbkAppObject {
    using Key = const std::string&;

public:
    explicit RecordingListener(std::string name = "listener",
                               std::shared_ptr<CallJournal> journal = nullptr)
        : name_(std::move(name)), journal_(std::move(journal)) {}

    const std::string& Name() const { return name_; }
    // This listener's own calls.
    const std::vector<ListenerCall>& Calls() const { return calls_; }
    // Signatures of this listener's own calls, without its name.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const auto& call : calls_) {
            lines.push_back(call.Signature());
        }
        return lines;
    }
    std::size_t CountOf(const std::string& operation) const {
        std::size_t count = 0;
        for (const auto& call : calls_) {
            count += call.operation == operation ? 1 : 0;
        }
        return count;
    }
    void Clear() { calls_.clear(); }

    // Runs after each call has been recorded, inside the raising operation: a test may call
    // back into the block from here, or throw.
    void OnCall(std::function<void(const ListenerCall&)> hook) { hook_ = std::move(hook); }
    // Makes the named operation throw zerbin::Error("listener failed") after recording it.
    void FailOn(std::string operation) { failOn_ = std::move(operation); }

    void IcbkAppObject_Created() override { Hear("Created", {}); }
    void IcbkAppObject_CDBChanged(int32_t cdb, int32_t ddb, int32_t sdb) override {
        Hear("CDBChanged", {std::to_string(cdb), std::to_string(ddb), std::to_string(sdb)});
    }
    void IcbkAppObject_Destroied() override { Hear("Destroied", {}); }
    void IcbkAppObject_AttributeChanged(Key k) override { Hear("AttributeChanged", {k}); }
    void IcbkAppObject_AppObjectUserNameChanged(Key k) override {
        Hear("AppObjectUserNameChanged", {k});
    }
    void IcbkAppObject_NVNameChanged(Key k, Key n) override { Hear("NVNameChanged", {k, n}); }
    void IcbkAppObject_CPNameChanged(Key k, Key n) override { Hear("CPNameChanged", {k, n}); }
    void IcbkAppObject_NVTypeChanged(Key k) override { Hear("NVTypeChanged", {k}); }
    void IcbkAppObject_CPTypeChanged(Key k) override { Hear("CPTypeChanged", {k}); }
    void IcbkAppObject_RefInTypeChanged(Key k) override { Hear("RefInTypeChanged", {k}); }
    void IcbkAppObject_RefInAdded(Key k) override { Hear("RefInAdded", {k}); }
    void IcbkAppObject_RefInRemoved(Key k) override { Hear("RefInRemoved", {k}); }
    void IcbkAppObject_RefOutAdded(Key k) override { Hear("RefOutAdded", {k}); }
    void IcbkAppObject_RefOutRemoved(Key k) override { Hear("RefOutRemoved", {k}); }
    void IcbkAppObject_RefOutTypeChanged(Key k) override { Hear("RefOutTypeChanged", {k}); }
    void IcbkAppObject_ConnectionDeleted() override { Hear("ConnectionDeleted", {}); }
    void IcbkAppObject_ConnectionToBeDeleted(Key k) override { Hear("ConnectionToBeDeleted", {k}); }
    void IcbkAppObject_RefOutAddedBefore(Key k, Key b) override {
        Hear("RefOutAddedBefore", {k, b});
    }
    void IcbkAppObject_RefreshObj(Key k) override { Hear("RefreshObj", {k}); }
    void IcbkAppObject_NumObjectsChanged() override { Hear("NumObjectsChanged", {}); }
    void IcbkAppObject_AvailableDimsChanged() override { Hear("AvailableDimsChanged", {}); }
    void IcbkAppObject_RemoveGatewayObject(Key k) override { Hear("RemoveGatewayObject", {k}); }
    void IcbkAppObject_LoadGatewayDevices() override { Hear("LoadGatewayDevices", {}); }
    std::shared_ptr<IObject> IcbkAppObject_Gateways() override {
        Hear("Gateways", {});
        return nullptr;
    }
    std::shared_ptr<IObject> IcbkAppObject_Ioms() override {
        Hear("Ioms", {});
        return nullptr;
    }
    void IcbkAppObject_RemoveIomInternalObject(std::shared_ptr<IObject>) override {
        Hear("RemoveIomInternalObject", {});
    }
    void IcbkAppObject_LoadIoms(std::shared_ptr<IObject>, std::shared_ptr<IObject>) override {
        Hear("LoadIoms", {});
    }

private:
    void Hear(std::string operation, std::vector<std::string> arguments) {
        ListenerCall call{name_, std::move(operation), std::move(arguments)};
        calls_.push_back(call);
        if (journal_) {
            journal_->Record(call);
        }
        if (hook_) {
            hook_(call);
        }
        if (!failOn_.empty() && call.operation == failOn_) {
            throw Error("listener failed");
        }
    }

    std::string name_;
    std::shared_ptr<CallJournal> journal_;
    std::vector<ListenerCall> calls_;
    std::function<void(const ListenerCall&)> hook_;
    std::string failOn_;
};

}  // namespace zerbin::testing
