#include "studio/BlockFactory.h"

#include <algorithm>
#include <system_error>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "app_object/CDBAppObject.h"
#include "datatypes/UnitConverter.h"
#include "editors/QtAdapters.h"
#include "platform/Events.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/Picture.h"

namespace zerbin::studio {

std::shared_ptr<IAppObject> BlockFactory::CreateBlock() const {
    return std::make_shared<CDBAppObject>();
}

void BlockFactory::UseLibrary(const std::filesystem::path& library) {
    library_ = std::filesystem::absolute(library).lexically_normal();
    // The component looks its types up in the parent of its own folder; that folder itself
    // need not exist.
    SetComponentFolder(library_ / "Zerbin");
}

std::vector<std::string> BlockFactory::Types() const {
    std::vector<std::string> types;
    std::error_code error;
    std::filesystem::directory_iterator entries(library_, error);
    if (error) {
        return types;
    }
    for (const std::filesystem::directory_entry& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (HasType(name)) {
            types.push_back(name);
        }
    }
    std::sort(types.begin(), types.end());
    return types;
}

bool BlockFactory::HasType(const std::string& type) const {
    std::error_code error;
    return IsSafeTypeName(type) &&
           std::filesystem::is_regular_file(DefinitionFile(library_, type), error);
}

BlockTypeInfo BlockFactory::Describe(const std::string& type) const {
    BlockTypeInfo info{type, {}, {}, {}, {}};
    const std::shared_ptr<IAppObject> block = CreateBlock();
    int32_t errorCode = 0;
    block->IAppObject_Init(type, errorCode);
    info.name = block->IAppObject_Name();
    info.category = block->IAppObject_Category();
    info.description = block->IAppObject_Description();
    if (const std::shared_ptr<const Picture> icon = block->IAppObject_Icon()) {
        info.icon = icon->bytes;
    }
    block->IAppObject_Destroy();
    return info;
}

void BlockFactory::UseUnitSystem(bool us) {
    SetUnitSystem(us ? UnitSystem::US : UnitSystem::SI);
}

void BlockFactory::UseMessageSink(std::shared_ptr<MessageSink> sink) {
    SetMessageSink(std::move(sink));
}

void BlockFactory::UseEventPump(bool on) {
    if (on) {
        // The component asks on every pass of its member loops; in a large project that would
        // cost more than the load itself. Every 25 ms keeps the window as alive.
        SetEventPump([timer = std::make_shared<QElapsedTimer>()] {
            if (!timer->isValid() || timer->elapsed() >= 25) {
                QCoreApplication::processEvents();
                timer->start();
            }
        });
    } else {
        SetEventPump({});
    }
}

void BlockFactory::UseWindows(bool on) {
    if (on) {
        InstallQtAdapters();
    } else {
        RemoveQtAdapters();
    }
}

std::shared_ptr<IObject> BlockFactory::HostWindow(QWidget* window) {
    return HostWindowOf(window);
}

std::filesystem::path BlockFactory::ShippedDataFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error) {
        const std::filesystem::path installed =
            (program.parent_path() / ".." / "share" / "zerbin").lexically_normal();
        if (std::filesystem::is_regular_file(installed / "snvts.xml", error)) {
            return installed;
        }
    }
    return std::filesystem::path(ZERBIN_SOURCE_DATA_DIR);
}

}  // namespace zerbin::studio
