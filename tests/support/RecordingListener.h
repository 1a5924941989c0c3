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
    void IcbkAppObject_CDBChanged(int32_t ExtraCDBLen, int32_t ExtraDDBLen,
                                  int32_t ExtraSDBLen) override {
        Hear("CDBChanged", {std::to_string(ExtraCDBLen), std::to_string(ExtraDDBLen),
                            std::to_string(ExtraSDBLen)});
    }
    void IcbkAppObject_Destroied() override { Hear("Destroied", {}); }
    void IcbkAppObject_AttributeChanged(const std::string& GlobalKey) override {
        Hear("AttributeChanged", {GlobalKey});
    }
    void IcbkAppObject_AppObjectUserNameChanged(const std::string& GlobalKey) override {
        Hear("AppObjectUserNameChanged", {GlobalKey});
    }
    void IcbkAppObject_NVNameChanged(const std::string& GlobalKey,
                                     const std::string& NewName) override {
        Hear("NVNameChanged", {GlobalKey, NewName});
    }
    void IcbkAppObject_CPNameChanged(const std::string& GlobalKey,
                                     const std::string& NewName) override {
        Hear("CPNameChanged", {GlobalKey, NewName});
    }
    void IcbkAppObject_NVTypeChanged(const std::string& GlobalKey) override {
        Hear("NVTypeChanged", {GlobalKey});
    }
    void IcbkAppObject_CPTypeChanged(const std::string& GlobalKey) override {
        Hear("CPTypeChanged", {GlobalKey});
    }
    void IcbkAppObject_RefInTypeChanged(const std::string& GlobalKey) override {
        Hear("RefInTypeChanged", {GlobalKey});
    }
    void IcbkAppObject_RefInAdded(const std::string& GlobalKey) override {
        Hear("RefInAdded", {GlobalKey});
    }
    void IcbkAppObject_RefInRemoved(const std::string& GlobalKey) override {
        Hear("RefInRemoved", {GlobalKey});
    }
    void IcbkAppObject_RefOutAdded(const std::string& GlobalKey) override {
        Hear("RefOutAdded", {GlobalKey});
    }
    void IcbkAppObject_RefOutRemoved(const std::string& GlobalKey) override {
        Hear("RefOutRemoved", {GlobalKey});
    }
    void IcbkAppObject_RefOutTypeChanged(const std::string& GlobalKey) override {
        Hear("RefOutTypeChanged", {GlobalKey});
    }
    void IcbkAppObject_ConnectionDeleted() override { Hear("ConnectionDeleted", {}); }
    void IcbkAppObject_ConnectionToBeDeleted(const std::string& ConnectionKey) override {
        Hear("ConnectionToBeDeleted", {ConnectionKey});
    }
    void IcbkAppObject_RefOutAddedBefore(const std::string& GlobalKey,
                                         const std::string& BeforeKey) override {
        Hear("RefOutAddedBefore", {GlobalKey, BeforeKey});
    }
    void IcbkAppObject_RefreshObj(const std::string& GlobalKey) override {
        Hear("RefreshObj", {GlobalKey});
    }
    void IcbkAppObject_NumObjectsChanged() override { Hear("NumObjectsChanged", {}); }
    void IcbkAppObject_AvailableDimsChanged() override { Hear("AvailableDimsChanged", {}); }
    void IcbkAppObject_RemoveGatewayObject(const std::string& sRemovedKey) override {
        Hear("RemoveGatewayObject", {sRemovedKey});
    }
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
