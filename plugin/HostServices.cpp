// The entry points through which a host reaches the component's process-wide services: the
// message boxes, the event pump and the unit system.
#include "plugin/HostServices.h"

#include <functional>
#include <memory>
#include <new>
#include <string>

#include "datatypes/UnitConverter.h"
#include "libzerbin/HostMessageSink.h"
#include "platform/Events.h"
#include "platform/HostThread.h"
#include "platform/Messages.h"
#include "zerbin/plugin.h"

#ifdef ZERBIN_PLUGIN_WITH_EDITORS
#include <QApplication>

#include "editors/QtAdapters.h"
#endif

namespace zerbin::plugin {
namespace {

// What the host has set; nothing set means the component's own.
struct HostSettings {
    std::shared_ptr<MessageSink> messages;
    bool pumpSet = false;
    std::function<void()> pump;
    bool qt = false;
};

HostSettings& Settings() {
    static HostSettings settings;
    return settings;
}

// The component's own services, then the host's over them.
void Apply() {
    HostSettings& settings = Settings();
    SetMessageSink(nullptr);
    SetEventPump({});
#ifdef ZERBIN_PLUGIN_WITH_EDITORS
    if (settings.qt) {
        InstallQtAdapters();
    }
#endif
    if (settings.messages) {
        SetMessageSink(settings.messages);
    }
    if (settings.pumpSet) {
        SetEventPump(settings.pump);
    }
}

template <typename Body>
int Guarded(Body body) noexcept {
    if (!OnHostThread()) {
        return ZERBIN_E_WRONG_THREAD;
    }
    try {
        body();
        return ZERBIN_OK;
    } catch (const std::bad_alloc&) {
        return ZERBIN_E_OUT_OF_MEMORY;
    } catch (...) {
        return ZERBIN_E_UNEXPECTED;
    }
}

}  // namespace

void UseQtWhenTheHostDoes() {
#ifdef ZERBIN_PLUGIN_WITH_EDITORS
    HostSettings& settings = Settings();
    if (!settings.qt && qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) {
        settings.qt = true;
        Apply();
    }
#endif
}

}  // namespace zerbin::plugin

using namespace zerbin::plugin;

ZERBIN_PLUGIN_API int ZerbinSetMessageHandler(ZerbinMessageHandler handler, void* context) {
    return Guarded([&] {
        UseQtWhenTheHostDoes();
        Settings().messages =
            handler != nullptr ? std::make_shared<zerbin::capi::HostMessageSink>(handler, context)
                               : nullptr;
        Apply();
    });
}

ZERBIN_PLUGIN_API int ZerbinShowMessageBox(const char* text, const char* caption, int style) {
    if (text == nullptr || caption == nullptr) {
        return ZERBIN_E_INVALID_ARGUMENT;
    }
    try {
        UseQtWhenTheHostDoes();
        const zerbin::Message message = zerbin::capi::MessageOfStyle(text, caption, style);
#ifdef ZERBIN_PLUGIN_WITH_EDITORS
        if (Settings().qt) {
            return zerbin::ShowMessageBox(message);
        }
#endif
        // The component's own headless box, not the host's handler: the host is the caller.
        const std::shared_ptr<zerbin::MessageSink> host = zerbin::CurrentMessageSink();
        zerbin::SetMessageSink(nullptr);
        const int answer = zerbin::CurrentMessageSink()->Show(message);
        zerbin::SetMessageSink(host);
        return answer;
    } catch (const std::bad_alloc&) {
        return ZERBIN_E_OUT_OF_MEMORY;
    } catch (...) {
        return ZERBIN_E_UNEXPECTED;
    }
}

ZERBIN_PLUGIN_API int ZerbinSetEventPump(ZerbinEventPump pump, void* context) {
    return Guarded([&] {
        UseQtWhenTheHostDoes();
        HostSettings& settings = Settings();
        settings.pumpSet = true;
        settings.pump = pump != nullptr ? std::function<void()>([pump, context] { pump(context); })
                                        : std::function<void()>();
        Apply();
    });
}

ZERBIN_PLUGIN_API int ZerbinSetUnitSystem(int system) {
    if (system != ZERBIN_UNITS_SI && system != ZERBIN_UNITS_US) {
        return ZERBIN_E_INVALID_ARGUMENT;
    }
    return Guarded([&] {
        zerbin::SetUnitSystem(system == ZERBIN_UNITS_US ? zerbin::UnitSystem::US
                                                        : zerbin::UnitSystem::SI);
    });
}
