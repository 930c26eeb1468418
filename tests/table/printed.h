// What an operation prints on standard error.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace table_test {

template <class Body>
std::string printed_by(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}

// perror puts ": " and the system's text behind ours.
inline void expect_text(const std::string& printed, const std::string& text) {
    EXPECT_EQ(printed.substr(0, text.size() + 2), text + ": ");
}

}  // namespace table_test
