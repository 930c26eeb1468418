// Statistics and debug lines of lookups.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "own_folder.h"
#include "test_store.h"

using kzb_test::TestStore;

namespace {

using LookupReports = kzb_test::OwnFolder;

double at(KZB_STORE* store, const char* category, const char* key, double x, const char* method) {
    return kzb_get_table_interpolated_value(category, key, &x, method, store);
}

TEST_F(LookupReports, counters_count_and_times_stay_zero_unless_asked) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0, 2.0, 3.0}, {2.0, 4.0, 6.0, 8.0});
    at(store, "c", "t", 0.5, "Linear");
    at(store, "c", "t", 0.5, "Linear");
    at(store, "c", "t", 0.5, "Cubic");
    at(store, "c", "t", 0.5, "Spline4");
    EXPECT_EQ(kzb_get_time(store, 3), 2.0);
    EXPECT_EQ(kzb_get_time(store, 5), 1.0);
    EXPECT_EQ(kzb_get_time(store, 1), 1.0);
    for (const int slot : {6, 7, 8, 9, 10, 11, 12, 14, 15, 16}) {
        EXPECT_EQ(kzb_get_time(store, slot), 0.0) << slot;
    }
}

TEST_F(LookupReports, elapsed_time_grows_when_the_variable_stood_at_initialize) {
    setenv("KZB_OUTPUT_ELAPSED_TIME", "", 1);
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    const int size = 2;
    kzb_create_table("c", "t", 1, &size, store);
    kzb_set_table_axis_value("c", "t", 1, 1, 1.0, store);
    for (int i = 0; i < 200000; ++i) {
        at(store, "c", "t", 0.5, "Linear");
    }
    EXPECT_GT(kzb_get_time(store, 9), 0.0);
    EXPECT_EQ(kzb_get_time(store, 3), 200000.0);
    kzb_finish(store);
    const std::string report = content("KZBtime.txt");
    EXPECT_EQ(report.rfind("***  ***\n# Total interpolation elapsed time = ", 0), 0U) << report;
    EXPECT_NE(report.find("# Linear    interpolation core function call and elapsed time =     200000, "),
              std::string::npos)
        << report;
}

// The parts are slices of this process's own time, in seconds: none is more than the whole, and the total, which holds
// the others, is no less than either.
TEST_F(LookupReports, elapsed_times_are_seconds_of_the_process_clock) {
    setenv("KZB_OUTPUT_ELAPSED_TIME", "", 1);
    TestStore store;
    unsetenv("KZB_OUTPUT_ELAPSED_TIME");
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    const std::clock_t start = std::clock();
    for (int i = 0; i < 100000; ++i) {
        at(store, "c", "t", 0.5, "Linear");
    }
    const double whole = static_cast<double>(std::clock() - start) / static_cast<double>(CLOCKS_PER_SEC);
    constexpr double rounding = 1.0 + 1e-9;  // 100000 additions of half an ulp each
    const double total = kzb_get_time(store, 9);
    EXPECT_GT(total, 0.0);
    EXPECT_LE(total, whole * rounding);
    for (const int slot : {6, 11}) {
        EXPECT_LE(kzb_get_time(store, slot), total * rounding) << slot;
    }
}

TEST_F(LookupReports, total_is_taken_before_the_debug_line_is_written) {
    setenv("KZB_OUTPUT_ELAPSED_TIME", "", 1);
    setenv("KZBFILEHANDLER_DEBUG_MODE", "", 1);
    TestStore store;
    unsetenv("KZB_OUTPUT_ELAPSED_TIME");
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    const std::clock_t start = std::clock();
    for (int i = 0; i < 5000; ++i) {
        at(store, "c", "t", 0.5, "Linear");
    }
    const double whole = static_cast<double>(std::clock() - start) / static_cast<double>(CLOCKS_PER_SEC);
    // Opening and closing a file costs many times the lookup, whose share is far below a half.
    EXPECT_LT(kzb_get_time(store, 9), 0.5 * whole);
}

TEST_F(LookupReports, report_of_an_idle_store_is_all_zero) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    setenv("KZB_OUTPUT_ELAPSED_TIME", "1", 1);
    kzb_finish(store);
    const std::string zero = "0.00000e+00";
    std::string expected = "***  ***\n# Total interpolation elapsed time = " + zero + "(sec)\n";
    for (const char* scheme : {"Linear   ", "Cubic    ", "Spline(n)"}) {
        std::string name(scheme);
        expected += "# " + name + " interpolation core function call and elapsed time =          0, " + zero + "/" +
                    zero + "(sec)\n";
        name.erase(name.find_last_not_of(' ') + 1);
        expected += "# " + name + " interpolation check overhead = " + zero + "(sec)\n";
    }
    EXPECT_EQ(content("KZBtime.txt"), expected);
}

TEST_F(LookupReports, debug_line_per_lookup_while_the_variable_stands) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    at(store, "c", "t", 0.5, "Linear");
    setenv("KZBFILEHANDLER_DEBUG_MODE", "", 1);
    at(store, "c", "t", 0.5, "Linear");
    at(store, "c", "absent", 0.5, "Cubic");
    unsetenv("KZBFILEHANDLER_DEBUG_MODE");
    at(store, "c", "t", 0.5, "Linear");
    EXPECT_EQ(content("KZBFileHandlerDebug.txt"),
              "c,t,Linear,    5.0000000000e-01,    3.0000000000e+00\n"
              "c,absent,Cubic,   1.7976931349e+308\n");
}

TEST_F(LookupReports, variable_that_only_begins_alike_does_not_count) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    setenv("KZBFILEHANDLER_DEBUG_MODE_X", "1", 1);
    at(store, "c", "t", 0.5, "Linear");
    unsetenv("KZBFILEHANDLER_DEBUG_MODE_X");
    EXPECT_FALSE(std::filesystem::exists("KZBFileHandlerDebug.txt"));
}

}  // namespace
