#include "platform/EditorPort.h"

namespace zerbin {
namespace {

std::shared_ptr<IEditorFactory>& Factory() {
    static std::shared_ptr<IEditorFactory> factory;
    return factory;
}

}  // namespace

std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) {
    auto& factory = Factory();
    return factory ? factory->CreateValueEditor(editorName) : nullptr;
}

void SetEditorFactory(std::shared_ptr<IEditorFactory> factory) {
    Factory() = std::move(factory);
}

}  // namespace zerbin
