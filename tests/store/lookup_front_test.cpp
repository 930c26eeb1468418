// The store's front of a lookup: names, error codes, statistics, debug lines, resolution through changes.
#include "store/lookup_front.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

// Runs in a directory of its own, so that the files of the current directory are this test's.
class LookupFront : public testing::Test {
  protected:
    void SetUp() override {
        home_ = std::filesystem::current_path();
        folder_ = std::filesystem::temp_directory_path() / ("kzb_front_" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        std::filesystem::current_path(folder_);
    }
    void TearDown() override {
        unsetenv("KZBFILEHANDLER_DEBUG_MODE");
        unsetenv("KZB_OUTPUT_ELAPSED_TIME");
        unsetenv("USE_GENERIC_INTERPOLATION");
        std::filesystem::current_path(home_);
        std::filesystem::remove_all(folder_);
    }
    static std::string content(const char* file) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream out;
        out << in.rdbuf();
        return out.str();
    }

  private:
    std::filesystem::path home_;
    std::filesystem::path folder_;
};

double at(KZB_STORE* store, const char* category, const char* key, double x, const char* method) {
    return kzb_get_table_interpolated_value(category, key, &x, method, store);
}

TEST_F(LookupFront, unknown_method_gives_no_value_and_no_error) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "linear"), 1.7976931348623157e308);
    EXPECT_EQ(at(store, "c", "t", 0.5, ""), 1.7976931348623157e308);
    EXPECT_EQ(at(store, "c", "absent", 0.5, "linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST_F(LookupFront, absent_category_leaves_no_error_and_absent_key_leaves_90006) {
    TestStore store;
    kzb_put_int("c", "k", 1, store);
    EXPECT_EQ(at(store, "absent", "t", 0.5, "Linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 0);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 90006);
}

TEST_F(LookupFront, range_errors_clamp_and_stay_until_reset) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", -1.0, "Linear"), 2.0);
    EXPECT_EQ(kzb_has_error(store), 80001);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 3.0);
    EXPECT_EQ(kzb_has_error(store), 80001);
    EXPECT_EQ(at(store, "c", "t", 2.0, "Cubic"), 4.0);
    EXPECT_EQ(kzb_has_error(store), 80002);
    kzb_reset_error(store);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST_F(LookupFront, callers_values_are_never_changed) {
    TestStore store;
    store.line("c", "t", {0.0, 10.0}, {2.0, 4.0});
    kzb_set_table_cyclic_flag("c", "t", 1, 1, store);
    double x = 25.0;
    EXPECT_EQ(kzb_get_table_interpolated_value("c", "t", &x, "Linear", store), 3.0);
    EXPECT_EQ(x, 25.0);
}

TEST_F(LookupFront, counters_count_and_times_stay_zero_unless_asked) {
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

TEST_F(LookupFront, elapsed_time_grows_when_the_variable_stood_at_initialize) {
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

TEST_F(LookupFront, report_of_an_idle_store_is_all_zero) {
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

TEST_F(LookupFront, debug_line_per_lookup_while_the_variable_stands) {
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

TEST_F(LookupFront, variable_that_only_begins_alike_does_not_count) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    setenv("KZBFILEHANDLER_DEBUG_MODE_X", "1", 1);
    at(store, "c", "t", 0.5, "Linear");
    unsetenv("KZBFILEHANDLER_DEBUG_MODE_X");
    EXPECT_FALSE(std::filesystem::exists("KZBFileHandlerDebug.txt"));
}

TEST_F(LookupFront, changed_table_is_seen_by_the_next_lookup) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 3.0);
    const int first = 0;
    kzb_set_table_value("c", "t", &first, 6.0, store);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 5.0);
    store.line("c", "t", {0.0, 2.0}, {0.0, 8.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 2.0);
    for (int i = 0; i < 40; ++i) {  // moves the records of the list
        store.line("c", ("filler" + std::to_string(i)).c_str(), {0.0}, {0.0});
    }
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 2.0);
}

TEST_F(LookupFront, texts_that_change_behind_one_address_are_read_anew) {
    TestStore store;
    store.line("c", "a", {0.0, 1.0}, {2.0, 4.0});
    store.line("c", "b", {0.0, 1.0}, {20.0, 40.0});
    char key[2] = "a";
    EXPECT_EQ(at(store, "c", key, 0.5, "Linear"), 3.0);
    key[0] = 'b';
    EXPECT_EQ(at(store, "c", key, 0.5, "Linear"), 30.0);
}

TEST_F(LookupFront, kept_reference_notices_that_its_table_was_made_later) {
    TestStore store;
    kzb::TableRef table("c", "t");
    const kzb::Method linear = kzb::Method::named("Linear");
    const double x = 0.5;
    EXPECT_EQ(table.at(*store, linear, &x, 1), kzb::KZB_NO_VALUE);
    EXPECT_FALSE(table.exists(*store));
    EXPECT_EQ(table.dim(*store), 0);
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_TRUE(table.exists(*store));
    EXPECT_EQ(table.dim(*store), 1);
    EXPECT_EQ(table.at(*store, linear, &x, 1), 3.0);
}

TEST_F(LookupFront, axes_beyond_the_given_values_are_seen_as_zero) {
    TestStore store;
    const int sizes[2] = {2, 2};
    kzb_create_table("c", "t", 2, sizes, store);
    for (int i = 0; i < 2; ++i) {
        kzb_set_table_axis_value("c", "t", 1, i, i, store);
        kzb_set_table_axis_value("c", "t", 2, i, i, store);
        for (int j = 0; j < 2; ++j) {
            const int at_node[2] = {i, j};
            kzb_set_table_value("c", "t", at_node, 10.0 * i + j, store);
        }
    }
    kzb::TableRef table("c", "t");
    const double x = 0.5;
    EXPECT_EQ(table.at(*store, kzb::Method::named("Linear"), &x, 1), 5.0);
}

TEST_F(LookupFront, components_equal_single_lookups_with_and_without_debug_lines) {
    TestStore store;
    const int sizes[2] = {3, 3};
    kzb_create_table("c", "t", 2, sizes, store);
    for (int i = 0; i < 3; ++i) {
        kzb_set_table_axis_value("c", "t", 1, i, 2.0 * i, store);
        kzb_set_table_axis_value("c", "t", 2, i, i, store);
        for (int j = 0; j < 3; ++j) {
            const int at_node[2] = {i, j};
            kzb_set_table_value("c", "t", at_node, i * i + 0.5 * j, store);
        }
    }
    kzb::TableRef table("c", "t");
    const double x = 1.25;
    for (const bool debug : {false, true}) {
        if (debug) {
            setenv("KZBFILEHANDLER_DEBUG_MODE", "1", 1);
        }
        kzb::read_lookup_switches(*store);
        for (const char* name : {"Linear", "Cubic", "Spline4", "Spline6", "Spline", "other"}) {
            const kzb::Method method = kzb::Method::named(name);
            double together[3];
            table.components(*store, method, &x, 1, 3, together);
            for (int k = 0; k < 3; ++k) {
                const double point[2] = {x, static_cast<double>(k)};
                EXPECT_EQ(together[k], kzb_get_table_interpolated_value("c", "t", point, name, store)) << name << k;
            }
        }
    }
    std::istringstream lines(content("KZBFileHandlerDebug.txt"));
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        ++count;
    }
    EXPECT_EQ(count, 2 * 6 * 3);  // three single lines and three of the components, per method
}

}  // namespace
