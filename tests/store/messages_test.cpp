// Every text of an error or warning code, letter by letter.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "KZBCalculator/kzb_store.h"

namespace {

struct CodeText {
    int code;
    const char* text;
};

// The texts as users see them, misspellings included.
const CodeText texts[] = {
    {10001, "under construction"},
    {80001, "The reference value of table is lower than the axis range."},
    {80002, "The reference value of table is upper than the axis range."},
    {90001, "unknown format"},
    {90002, "The inpur file can not be opend."},
    {90003, "reading error at ReadControlForOldFormatByAscii"},
    {90004, "reading error at ReadCategoryParameterByAsciiModeForOldFileFormat"},
    {90005, "reading error at ReadParameters"},
    {90006, "The table is not found"},
    {90007, "Allocation error in spline interpolation"},
    {90008, "error occred in setting cyclic flag"},
    {90009, "The input file is broken"},
    {90010, "The outside of the table range is accessed."},
    {90011, "The correction category [$KZ_Correction_BackEMF] is not available at the latest version."},
    {90012, "The correction category [$KZ_Correction_Flux] is not available at the latest version."},
    {90013, "The correction category [$KZ_Correction_LdLq] is not available at the latest version."},
    {90014, "The unknown category was found in the correction file."},
    {90015, "The correction file can not be opened."},
    {90016, "The end marker [$KZ_Correction_End] was not found in the correction file."},
    {90017, "The end marker [$KZ_Correction_Start] was not found in the correction file."},
    {90018, "PSMS is only available as the [$KZ_Correction_MotorType]."},
    {90019, "The correction file is corrupt."},
    {90020, "The correction of total flux linkage cannot be used with the correction of inductance or magnetic flux."},
    {90021,
     "The correction of total flux linkage cannot be apply, because the correction of inductance or magnetic flux has "
     "been apply to the kzb file."},
    {90022,
     "The correction of inductance or magnetic flux cannot be apply, because the correction of total flux linkage has "
     "been apply to the kzb file."},
    {90023, "The number of axis does not match the required number."},
    {90024, "The number of points on the table is not enough."},
    {90025, "This table cannot be added to the kzb file."},
    {90026, "The reference id is not found in the motion condition list."},
    {90027, "The reference id is not found in the element set list."},
    {90028, "The available type is not found in the element set list."},
    {90029, "The format of this loss table file is illegal."},
    {90030, "Use phase symmetry option is not available for this motor type."},
    {90031, "The value of the table contains a character string."},
    {90032, "Cannot open an xml file to write out information."},
};

std::string error_print(int code) {
    testing::internal::CaptureStderr();
    kzb_print_error_short_message(code);
    return testing::internal::GetCapturedStderr();
}

std::string warning_print(int code) {
    testing::internal::CaptureStdout();
    kzb_print_warning_short_message(code);
    return testing::internal::GetCapturedStdout();
}

TEST(Messages, every_error_code_prints_its_text_and_the_systems_behind_it) {
    for (const CodeText& row : texts) {
        const std::string start = std::string(row.text) + ": ";
        EXPECT_EQ(error_print(row.code).substr(0, start.size()), start) << row.code;
    }
}

TEST(Messages, any_other_code_has_no_message) {
    std::set<int> known;
    for (const CodeText& row : texts) {
        known.insert(row.code);
    }
    for (const int code : {-1, 0, 1, 9999, 10000, 10002, 80000, 80003, 90000, 90033, 90034, 2147483647}) {
        ASSERT_EQ(known.count(code), 0U);
        EXPECT_EQ(error_print(code).rfind("no message: ", 0), 0U) << code;
    }
}

TEST(Messages, warning_prints_on_standard_output_without_a_line_end) {
    EXPECT_EQ(warning_print(90033), "The specified kzb is incomplete.");
    for (const int code : {0, 1, 90001, 90032, 90034}) {
        EXPECT_EQ(warning_print(code), "no message") << code;
    }
}

}  // namespace
