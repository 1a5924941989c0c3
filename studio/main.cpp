// zerbin-studio [PROJECT] [--screenshot FILE]: the desktop host. With --screenshot the window
// is rendered to FILE (a small wired example when no project is given) and the program ends.
#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

#include "studio/Screenshot.h"
#include "studio/StudioWindow.h"

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName("Zerbin");
    QCoreApplication::setApplicationName("zerbin-studio");
    QCoreApplication::setApplicationVersion(ZERBIN_VERSION);

    QCommandLineParser parser;
    parser.setApplicationDescription("Build, wire and set up a controller's function blocks.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("project", "A project file to open.");
    const QCommandLineOption screenshot("screenshot", "Render the window to FILE and quit.",
                                        "FILE");
    parser.addOption(screenshot);
    parser.process(app);

    zerbin::studio::StudioWindow window;
    const QStringList files = parser.positionalArguments();
    if (parser.isSet(screenshot)) {
        return zerbin::studio::RenderScreenshot(window, files.value(0), parser.value(screenshot))
                   ? 0
                   : 1;
    }
    window.resize(1280, 800);
    window.show();
    if (!files.isEmpty()) {
        window.OpenProject(files.front());
    }
    return QApplication::exec();
}
