#include "studio/BlockFactory.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

#include "interfaces/IEditors.h"
#include "studio/ComponentLibrary.h"
#include "studio/StudioMessages.h"

namespace zerbin::studio {
namespace {

namespace fs = std::filesystem;

const ComponentEntryPoints& Component() {
    std::string why;
    if (!ComponentLibrary::Load(&why)) {
        throw std::runtime_error(why);
    }
    return ComponentLibrary::Entry();
}

// A type is a folder of the library; a name that would lead out of it is none.
bool IsTypeName(const std::string& type) {
    return !type.empty() && type != "." && type != ".." &&
           type.find_first_of(std::string("/\\\0", 3)) == std::string::npos;
}

int AnswerMessage(void* /*context*/, const char* text, const char* caption, int style) {
    const Message message = MessageFromStyle(text, caption, style);
    return ShowMessage(message.text, message.title, message.icon, message.buttons);
}

void ServeEvents(void* /*context*/) {
    // The component asks on every pass of its member loops; in a large project that would
    // cost more than the load itself. Every 25 ms keeps the window as alive.
    static QElapsedTimer timer;
    if (!timer.isValid() || timer.elapsed() >= 25) {
        // Input waits until the step is over: a key or click served in the middle of a long
        // step would act on a project that is half changed.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        timer.start();
    }
}

class StudioHostWindow : public IHostWindow {
public:
    explicit StudioHostWindow(QWidget* window) : window_(window) {}
    void* HostWindow() override { return window_.data(); }

private:
    QPointer<QWidget> window_;
};

}  // namespace

std::shared_ptr<IAppObject> BlockFactory::CreateBlock() const {
    const ComponentEntryPoints& component = Component();
    ZerbinObject* handle = nullptr;
    const int result = component.getClassObject(ZERBIN_PROGID, &handle);
    auto block = std::dynamic_pointer_cast<IAppObject>(TakeObject(handle, component.releaseObject));
    if (result != ZERBIN_OK || !block) {
        throw std::runtime_error("the component made no block (" + std::to_string(result) + ")");
    }
    return block;
}

std::shared_ptr<IProjectFiles> BlockFactory::ProjectFiles() {
    const ComponentEntryPoints& component = Component();
    ZerbinObject* handle = nullptr;
    const int result = component.getProjectFiles(&handle);
    auto files =
        std::dynamic_pointer_cast<IProjectFiles>(TakeObject(handle, component.releaseObject));
    if (result != ZERBIN_OK || !files) {
        throw std::runtime_error("the component gave no project file service (" +
                                 std::to_string(result) + ")");
    }
    return files;
}

void BlockFactory::UseLibrary(const fs::path& library) {
    library_ = fs::absolute(library).lexically_normal();
    hasType_.clear();
    Component().setBlockLibrary(library_.c_str());
}

std::vector<std::string> BlockFactory::Types() const {
    std::vector<std::string> types;
    std::error_code error;
    fs::directory_iterator entries(library_, error);
    if (error) {
        return types;
    }
    for (const fs::directory_entry& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (HasType(name)) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

bool BlockFactory::HasType(const std::string& type) const {
    if (const auto known = hasType_.find(type); known != hasType_.end()) {
        return known->second;
    }
    std::error_code error;
    const bool has =
        IsTypeName(type) && fs::is_regular_file(library_ / type / (type + ".xml"), error);
    hasType_.emplace(type, has);
    return has;
}

BlockTypeInfo BlockFactory::Describe(const std::string& type) const {
    BlockTypeInfo info{type, {}, {}, {}, {}};
    const std::shared_ptr<IAppObject> block = CreateBlock();
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    info.name = block->IAppObject_Name();
    info.category = block->IAppObject_Category();
    info.description = block->IAppObject_Description();
    info.icon = block->IAppObject_Icon();
    block->IAppObject_Destroy();
    return info;
}

void BlockFactory::UseUnitSystem(bool us) {
    Component().setUnitSystem(us ? ZERBIN_UNITS_US : ZERBIN_UNITS_SI);
}

void BlockFactory::UseMessageSink(std::shared_ptr<MessageSink> sink) {
    const bool any = sink != nullptr;
    SetMessageSink(std::move(sink));
    Component().setMessageHandler(any ? &AnswerMessage : nullptr, nullptr);
}

void BlockFactory::UseEventPump(bool on) {
    Component().setEventPump(on ? &ServeEvents : nullptr, nullptr);
}

std::shared_ptr<IObject> BlockFactory::HostWindow(QWidget* window) {
    return std::make_shared<StudioHostWindow>(window);
}

fs::path BlockFactory::ShippedDataFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        const fs::path installed =
            (program.parent_path() / ZERBIN_STUDIO_TO_DATA).lexically_normal();
        if (fs::is_regular_file(installed / "snvts.xml", error)) {
            return installed;
        }
    }
    return fs::path(ZERBIN_SOURCE_DATA_DIR);
}

}  // namespace zerbin::studio
