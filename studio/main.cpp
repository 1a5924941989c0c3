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

namespace {

const QCommandLineOption screenshot("screenshot", "Render the window to FILE and quit.", "FILE");
const QCommandLineOption wiring("wiring",
                                "With --screenshot: a wire is being dragged, the terminals that "
                                "take it lit.");

void Describe(QCommandLineParser& parser) {
    QCoreApplication::setOrganizationName("Zerbin");
    QCoreApplication::setApplicationName("zerbin-studio");
    QCoreApplication::setApplicationVersion(ZERBIN_VERSION);
    parser.setApplicationDescription("Build, wire and set up a controller's function blocks.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("project", "A project file to open.");
    parser.addOption(screenshot);
    parser.addOption(wiring);
}

// Help, the version and a mistyped option need no window: answered before QApplication,
// which ends the program where no display is.
bool NeedsNoWindow(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    QCommandLineParser parser;
    Describe(parser);
    return !parser.parse(arguments) || parser.isSet("help") || parser.isSet("help-all") ||
           parser.isSet("version");
}

}  // namespace

int main(int argc, char* argv[]) {
    if (NeedsNoWindow(argc, argv)) {
        QCoreApplication app(argc, argv);
        QCommandLineParser parser;
        Describe(parser);
        parser.process(app);  // prints and exits
        return 0;
    }
    QApplication app(argc, argv);
    // Names the installed desktop entry, whose icon the desktop then shows for the window.
    QGuiApplication::setDesktopFileName("org.zerbin.studio");
    QCommandLineParser parser;
    Describe(parser);
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
        return zerbin::studio::RenderScreenshot(window, files.value(0), parser.value(screenshot),
                                                parser.isSet(wiring))
                   ? 0
                   : 1;
    }
    window.resize(1280, 800);
    window.show();
    if (!files.isEmpty()) {
        window.OpenProject(files.front());
    } else {
        window.OfferRecovery({});
    }
    return QApplication::exec();
}
