// Helpers shared by the test suites.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <string>

#include "app_object/MMain.h"

namespace zerbin::testing {

// The folder of shared test fixtures.
inline std::filesystem::path FixturesDir() {
    return ZERBIN_FIXTURES_DIR;
}

// Switches LC_NUMERIC to a locale whose decimal separator is a comma for its lifetime, and
// detects the separator after each switch so DecimalSeparator() follows. When no such locale
// is installed nothing changes and Active() is false; use ZERBIN_REQUIRE_COMMA_LOCALE. Given
// comma = false it switches to "C" instead, so that a test can run under both separators.
class ScopedLocale {
public:
    explicit ScopedLocale(bool comma = true) {
        const char* current = std::setlocale(LC_NUMERIC, nullptr);
        previous_ = current != nullptr ? current : "C";
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "C"}) {
            if ((std::string(name) == "C") == !comma &&
                std::setlocale(LC_NUMERIC, name) != nullptr) {
                active_ = true;
                break;
            }
        }
        DetectDecimalSeparator();
    }
    ~ScopedLocale() {
        std::setlocale(LC_NUMERIC, previous_.c_str());
        DetectDecimalSeparator();
    }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    bool Active() const { return active_; }

private:
    std::string previous_;
    bool active_ = false;
};

}  // namespace zerbin::testing

// Skips the current test when the comma locale could not be switched on.
#define ZERBIN_REQUIRE_COMMA_LOCALE(scopedLocale)                                         \
    do {                                                                                  \
        if (!(scopedLocale).Active()) {                                                   \
            GTEST_SKIP() << "locale de_DE.UTF-8 is not installed (.ci/install makes it)"; \
        }                                                                                 \
    } while (false)

// The comma separator in force when comma is set, else the point.
#define ZERBIN_SEPARATOR_FOR(comma, name)          \
    ::zerbin::testing::ScopedLocale name((comma)); \
    ZERBIN_REQUIRE_COMMA_LOCALE(name)
