// zerbin-studio [PROJECT] [--screenshot FILE]: the desktop host. With --screenshot the window
// is rendered to FILE (a small wired example when no project is given), the component's file
// is named on stdout, and the program ends.
#include <cstdio>
#include <string>

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

#include "studio/ComponentLibrary.h"
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

    std::string why;
    if (!zerbin::studio::ComponentLibrary::Load(&why)) {
        std::fprintf(stderr, "zerbin-studio: %s\n", why.c_str());
        return 1;
    }

    zerbin::studio::StudioWindow window;
    const QStringList files = parser.positionalArguments();
    if (parser.isSet(screenshot)) {
        std::printf("component: %s\n", zerbin::studio::ComponentLibrary::File().c_str());
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
