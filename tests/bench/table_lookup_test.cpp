// Lookups of the table layer against the plain reference: value, status and call counters, bit for bit.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>

#include "bench/reference/lookup.h"
#include "random_table.h"
#include "same_bits.h"
#include "table/lookup.h"

namespace kzb_bench_test {
namespace {

constexpr const char* all_schemes[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
constexpr int counters[] = {1, 3, 5};

using ReferenceLookup = int (*)(kzb_reference::Category&, const char*, const double*, double&, double*);

ReferenceLookup reference_of(const std::string& scheme) {
    using kzb_reference::WithClocks;
    if (scheme == "Linear") {
        return kzb_reference::table_lookup_linear<WithClocks>;
    }
    if (scheme == "Cubic") {
        return kzb_reference::table_lookup_cubic<WithClocks>;
    }
    if (scheme == "Spline4") {
        return kzb_reference::table_lookup_spline4<WithClocks>;
    }
    return scheme == "Spline6" ? kzb_reference::table_lookup_spline6<WithClocks>
                               : kzb_reference::table_lookup_spline<WithClocks>;
}

std::string describe(const RandomTable& table, const std::string& scheme, const std::vector<double>& x) {
    std::ostringstream out;
    out.precision(17);
    out << scheme << '\n' << table.text() << "at";
    for (const double coordinate : x) {
        out << ' ' << coordinate;
    }
    return out.str();
}

class GenericPath {
  public:
    explicit GenericPath(bool on) {
        if (on) {
            setenv("USE_GENERIC_INTERPOLATION", "", 1);
        } else {
            unsetenv("USE_GENERIC_INTERPOLATION");
        }
    }
    ~GenericPath() { unsetenv("USE_GENERIC_INTERPOLATION"); }
};

void expect_equal_lookups(const TableShape& shape, bool generic, int tables, int points, std::uint64_t seed) {
    const GenericPath environment(generic);
    kzb::LookupSwitches switches;
    switches.generic_path = generic;
    std::mt19937_64 random(seed);
    for (int t = 0; t < tables; ++t) {
        const RandomTable random_table(random, shape);
        kzb_reference::Store store;
        random_table.put("c", "t", store);
        KZB_TABLE product;
        random_table.put(product);
        for (int p = 0; p < points; ++p) {
            const std::vector<double> x = random_table.point(random);
            for (const char* scheme : all_schemes) {
                double expected = kzb_reference::no_value;
                double expected_timing[20] = {};
                const int expected_status =
                    reference_of(scheme)(store.categories[0], "t", x.data(), expected, expected_timing);
                double actual = kzb::KZB_NO_VALUE;
                double timing[20] = {};
                const int status =
                    kzb::table_lookup(kzb::scheme_of(scheme), &product, x.data(), actual, timing, switches);
                ASSERT_TRUE(same_bits(actual, expected))
                    << actual << " instead of " << expected << ' ' << describe(random_table, scheme, x);
                ASSERT_EQ(status, expected_status) << describe(random_table, scheme, x);
                for (const int slot : counters) {
                    ASSERT_EQ(timing[slot], expected_timing[slot])
                        << "slot " << slot << ' ' << describe(random_table, scheme, x);
                }
            }
        }
    }
}

TEST(TableLookupAgainstReference, straight_paths_agree_to_the_bit) {
    expect_equal_lookups({}, false, 1500, 8, 1);
}

TEST(TableLookupAgainstReference, generic_path_agrees_to_the_bit) {
    expect_equal_lookups({}, true, 400, 4, 2);
}

TEST(TableLookupAgainstReference, tables_of_six_axes_agree_to_the_bit) {
    expect_equal_lookups({6, 6, 4, false}, false, 60, 3, 3);
}

TEST(TableLookupAgainstReference, faulty_tables_agree_to_the_bit) {
    testing::internal::CaptureStderr();
    expect_equal_lookups({1, 5, 9, true}, false, 1500, 6, 4);
    testing::internal::GetCapturedStderr();
}

TEST(TableLookupAgainstReference, long_axes_agree_to_the_bit) {
    expect_equal_lookups({1, 2, 60, false}, false, 400, 20, 5);
}

// What `count` single lookups give, the reference makes one at a time.
TEST(TableLookupAgainstReference, components_agree_with_single_lookups) {
    std::mt19937_64 random(6);
    for (int t = 0; t < 600; ++t) {
        const RandomTable random_table(random, {1, 5, 9, false});
        kzb_reference::Store store;
        random_table.put("c", "t", store);
        KZB_TABLE product;
        random_table.put(product);
        for (const char* scheme : all_schemes) {
            std::vector<double> x = random_table.point(random);
            const int count = 1 + t % 9;
            double expected_timing[20] = {};
            std::vector<double> expected;
            for (int k = 0; k < count; ++k) {
                x.back() = k;
                double value = kzb_reference::no_value;
                reference_of(scheme)(store.categories[0], "t", x.data(), value, expected_timing);
                expected.push_back(value);
            }
            std::vector<double> actual(static_cast<std::size_t>(count), kzb::KZB_NO_VALUE);
            double timing[20] = {};
            kzb::table_lookup_components(kzb::scheme_of(scheme), &product, x.data(), count, actual.data(), timing, {});
            for (std::size_t k = 0; k < actual.size(); ++k) {
                ASSERT_TRUE(same_bits(actual[k], expected[k]))
                    << actual[k] << " instead of " << expected[k] << " component " << k << ' '
                    << describe(random_table, scheme, x);
            }
            for (const int slot : counters) {
                ASSERT_EQ(timing[slot], expected_timing[slot]) << "slot " << slot << describe(random_table, scheme, x);
            }
        }
    }
}

// Only the schemes that the text leads to a definite answer: a bracket is not read where there is none.
TEST(TableLookupAgainstReference, coordinates_without_a_number_agree) {
    std::mt19937_64 random(7);
    testing::internal::CaptureStderr();
    for (int t = 0; t < 300; ++t) {
        const RandomTable random_table(random, {1, 4, 9, false});
        kzb_reference::Store store;
        random_table.put("c", "t", store);
        KZB_TABLE product;
        random_table.put(product);
        for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 5e-324, -0.0}) {
            std::vector<double> x = random_table.point(random);
            x[static_cast<std::size_t>(t) % x.size()] = odd;
            for (const char* scheme : {"Linear", "Spline4", "Spline6", "Spline"}) {
                double expected = kzb_reference::no_value;
                double expected_timing[20] = {};
                reference_of(scheme)(store.categories[0], "t", x.data(), expected, expected_timing);
                double actual = kzb::KZB_NO_VALUE;
                double timing[20] = {};
                kzb::table_lookup(kzb::scheme_of(scheme), &product, x.data(), actual, timing, {});
                ASSERT_TRUE(same_bits(actual, expected))
                    << actual << " instead of " << expected << ' ' << describe(random_table, scheme, x);
            }
        }
    }
    testing::internal::GetCapturedStderr();
}

// What goes to standard error counts as well: the same words, as often, in the same order.
TEST(TableLookupAgainstReference, faulty_tables_print_the_same) {
    std::mt19937_64 random(8);
    std::size_t printed = 0;
    for (int t = 0; t < 300; ++t) {
        const RandomTable random_table(random, {1, 4, 6, true});
        kzb_reference::Store store;
        random_table.put("c", "t", store);
        KZB_TABLE product;
        random_table.put(product);
        const std::vector<double> x = random_table.point(random);
        for (const char* scheme : all_schemes) {
            double expected = kzb_reference::no_value;
            double actual = kzb::KZB_NO_VALUE;
            double timing[20] = {};
            testing::internal::CaptureStderr();
            errno = 0;
            reference_of(scheme)(store.categories[0], "t", x.data(), expected, timing);
            const std::string expected_text = testing::internal::GetCapturedStderr();
            testing::internal::CaptureStderr();
            errno = 0;
            kzb::table_lookup(kzb::scheme_of(scheme), &product, x.data(), actual, timing, {});
            ASSERT_EQ(testing::internal::GetCapturedStderr(), expected_text) << describe(random_table, scheme, x);
            printed += expected_text.size();
        }
    }
    EXPECT_GT(printed, 0U);
}

}  // namespace
}  // namespace kzb_bench_test
