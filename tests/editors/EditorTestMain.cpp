// The window tests need a QApplication for the whole run; GoogleTest drives them.
#include <gtest/gtest.h>

#include <QApplication>

#include <cstring>

namespace {

// The offscreen platform warns about every fixed-size window; that says nothing about the test.
QtMessageHandler standardHandler = nullptr;

void QuietHandler(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (!message.contains(QLatin1String("propagateSizeHints"))) {
        standardHandler(type, context, message);
    }
}

}  // namespace

int main(int argc, char** argv) {
    standardHandler = qInstallMessageHandler(QuietHandler);
    // ctest lists the tests before it sets their environment; listing opens no window, so it
    // runs offscreen whatever the machine has.
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--gtest_list_tests") == 0 &&
            qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
    }
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
