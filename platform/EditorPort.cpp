#include "platform/EditorPort.h"

#include "base/ProcessState.h"

namespace zerbin {
namespace {

struct InstalledFactory {
    std::shared_ptr<IEditorFactory> factory;
};

std::shared_ptr<IEditorFactory>& Factory() {
    return ProcessState::Get<InstalledFactory>().factory;
}

}  // namespace

std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) {
    auto& factory = Factory();
    return factory ? factory->CreateValueEditor(editorName) : nullptr;
}

bool HasEditorFactory() {
    return Factory() != nullptr;
}

void ShowParameterList(std::shared_ptr<IAppObject> appObject, std::shared_ptr<IObject> owner) {
    // Held for the call: the window may run code that installs another factory.
    if (const std::shared_ptr<IEditorFactory> factory = Factory()) {
        factory->ShowParameterList(std::move(appObject), std::move(owner));
    }
}

void SetEditorFactory(std::shared_ptr<IEditorFactory> factory) {
    Factory() = std::move(factory);
}

}  // namespace zerbin
