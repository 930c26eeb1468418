// docs/errors.md tells every status, every code and every text as the library has it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "KZBCalculator/kzb_store.h"
#include "host/host_process.h"
#include "interface/message_table.h"
#include "interface/status.h"
#include "support/files.h"

namespace kzb_test {
namespace {

const std::string& page() {
    static const std::string text = read_file(KZB_SOURCE_DIR "/docs/errors.md");
    return text;
}

std::string row(int number, const std::string& text) {
    return "\n| " + std::to_string(number) + " | " + text + " |";
}

// What a call prints on standard error for a code, without the system's part.
std::string printed_text(int code) {
    testing::internal::CaptureStderr();
    kzb_print_error_short_message(code);
    const std::string all = testing::internal::GetCapturedStderr();
    return all.substr(0, all.rfind(": "));
}

TEST(ErrorsPage, tells_every_status) {
#define KZB_EXPECT_STATUS(name, code, text) EXPECT_THAT(page(), testing::HasSubstr(row(code, text)));
    KZB_STATUS_LIST(KZB_EXPECT_STATUS)
#undef KZB_EXPECT_STATUS
}

TEST(ErrorsPage, tells_every_code_of_the_store) {
    int found = 0;
    for (int code = 10000; code < 100000; ++code) {
        if (code % 10000 > 100) {
            code += 9999 - code % 10000;  // codes stand at the start of their ten thousand
            continue;
        }
        const std::string text = printed_text(code);
        if (text != "no message") {
            ++found;
            EXPECT_THAT(page(), testing::HasSubstr(row(code, text)));
        }
    }
    EXPECT_EQ(found, 35);
    testing::internal::CaptureStdout();
    kzb_print_warning_short_message(90033);
    EXPECT_THAT(page(), testing::HasSubstr("90033, \"" + testing::internal::GetCapturedStdout() + "\""));
}

TEST(ErrorsPage, tells_every_text_of_the_block) {
    const kzb::MessageTable& texts = kzb::message_table("ENG");
    for (int i = 1; i < kzb::message_count; ++i) {
        std::string text = texts[static_cast<std::size_t>(i)];
        for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n')) {
            text.replace(at, 1, "\\n");
        }
        EXPECT_THAT(page(), testing::HasSubstr(row(i, text)));
    }
}

}  // namespace
}  // namespace kzb_test
