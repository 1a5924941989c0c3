#include "studio/ProjectMacro.h"

#include "studio/StudioProject.h"

namespace zerbin::studio {
namespace {

class Connection : public IConnection {
public:
    Connection(std::shared_ptr<IObject> source, std::shared_ptr<IObject> target)
        : source_(std::move(source)), target_(std::move(target)) {}
    std::shared_ptr<IObject> Source() override { return source_; }
    std::shared_ptr<IObject> Target() override { return target_; }

private:
    std::shared_ptr<IObject> source_;
    std::shared_ptr<IObject> target_;
};

}  // namespace

std::vector<std::shared_ptr<IObject>> ProjectMacro::Members() {
    std::vector<std::shared_ptr<IObject>> members;
    if (project_ != nullptr) {
        for (const std::string& key : project_->BlockKeys()) {
            members.push_back(project_->Block(key));
        }
    }
    return members;
}

std::optional<std::vector<std::shared_ptr<IConnection>>> ProjectMacro::Connections() {
    std::vector<std::shared_ptr<IConnection>> connections;
    if (project_ == nullptr) {
        return connections;
    }
    for (const Wire& wire : project_->Wires()) {
        const std::shared_ptr<IAppObject> source = project_->Block(wire.source);
        const std::shared_ptr<IAppObject> target = project_->Block(wire.target);
        const std::shared_ptr<IOutputs> outputs = source ? source->IAppObject_Outputs() : nullptr;
        const std::shared_ptr<IInputs> inputs = target ? target->IAppObject_Inputs() : nullptr;
        std::shared_ptr<IOutput> output = outputs ? outputs->IOutputs_Item(wire.output) : nullptr;
        std::shared_ptr<IInput> input = inputs ? inputs->IInputs_Item(wire.input) : nullptr;
        if (output && input) {
            connections.push_back(std::make_shared<Connection>(output, input));
        }
    }
    return connections;
}

}  // namespace zerbin::studio
