// The window tests need a QApplication for the whole run; GoogleTest drives them.
#include <gtest/gtest.h>

#include <QApplication>

#include <cstring>

#include "base/ProcessState.h"

namespace {

// Every test starts in a process as fresh as a host's.
class FreshProcess : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { zerbin::ProcessState::Reset(); }
};

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
    ::testing::UnitTest::GetInstance()->listeners().Append(new FreshProcess);
    return RUN_ALL_TESTS();
}
