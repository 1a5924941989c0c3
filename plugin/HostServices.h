// The process-wide services a host sets through the entry points (messages, event pump, unit
// system), kept so that they survive the component's own Qt adapters being put in later.
#pragma once

namespace zerbin::plugin {

// A Qt host has made its QApplication by the time it asks for its first block: from then on
// the blocks show their windows and message boxes through Qt, unless the host has set its
// own message handler or event pump, which stay. A host without one, or a plug-in built
// without the windows, stays headless.
void UseQtWhenTheHostDoes();

}  // namespace zerbin::plugin
