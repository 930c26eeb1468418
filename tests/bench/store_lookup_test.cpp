// The store's front against the plain reference: the exported call and the models' way, with and without phase folding.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "bench/reference/lookup.h"
#include "random_table.h"
#include "same_bits.h"
#include "store/lookup_front.h"

namespace kzb_bench_test {
namespace {

struct Finish {
    void operator()(KZB_STORE* store) const { kzb_finish(store); }
};
using StoreHandle = std::unique_ptr<KZB_STORE, Finish>;

StoreHandle make_store() {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    return StoreHandle(store);
}

// One file in both worlds.
class Twin {
  public:
    Twin() : product_(make_store()) {}
    void put_int(const char* category, const char* key, int value) {
        kzb_reference::kzb_put_int(category, key, value, reference_);
        kzb_put_int(category, key, value, product_.get());
    }
    void put_double(const char* category, const char* key, double value) {
        kzb_reference::kzb_put_double(category, key, value, reference_);
        kzb_put_double(category, key, value, product_.get());
    }
    void put_table(const char* category, const char* key, const RandomTable& table) {
        table.put(category, key, reference_);
        table.put(category, key, *product_);
    }
    // Looks up in all three ways and compares value, error and call counters since the last time.
    void expect_equal(const char* category, const char* key, std::vector<double> x, const char* method) {
        std::ostringstream where;
        where.precision(17);
        where << category << '/' << key << ' ' << method << " at";
        for (const double coordinate : x) {
            where << ' ' << coordinate;
        }
        const std::vector<double> before = x;
        reference_.error = 0;
        const double expected = kzb_reference::kzb_get_table_interpolated_value<kzb_reference::WithClocks>(
            category, key, x.data(), method, reference_);
        for (int slot : {1, 3, 5}) {
            counts_[slot] += 2.0 * (reference_.timing[slot] - seen_[slot]);
            seen_[slot] = reference_.timing[slot];
        }
        kzb_reset_error(product_.get());
        const double exported = kzb_get_table_interpolated_value(category, key, x.data(), method, product_.get());
        ASSERT_TRUE(same_bits(exported, expected)) << exported << " instead of " << expected << ' ' << where.str();
        ASSERT_EQ(kzb_has_error(product_.get()), reference_.error) << where.str();
        ASSERT_EQ(x, before);
        kzb_reset_error(product_.get());
        kzb::TableRef table(category, key);
        const double direct = table.at(*product_, kzb::Method::named(method), x.data(), static_cast<int>(x.size()));
        ASSERT_TRUE(same_bits(direct, expected)) << direct << " instead of " << expected << ' ' << where.str();
        ASSERT_EQ(kzb_has_error(product_.get()), reference_.error) << where.str();
        for (int slot : {1, 3, 5}) {
            ASSERT_EQ(kzb_get_time(product_.get(), slot), counts_[slot]) << "slot " << slot << ' ' << where.str();
        }
    }
    // The components of one point at once, as a model asks for them.
    void expect_equal_components(const char* category, const char* key, const std::vector<double>& leading, int count,
                                 const char* method) {
        std::vector<double> results(static_cast<std::size_t>(count));
        kzb::TableRef table(category, key);
        table.components(*product_, kzb::Method::named(method), leading.data(), static_cast<int>(leading.size()), count,
                         results.data());
        for (int k = 0; k < count; ++k) {
            std::vector<double> x = leading;
            x.push_back(k);
            const double expected = kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>(
                category, key, x.data(), method, reference_);
            ASSERT_TRUE(same_bits(results[static_cast<std::size_t>(k)], expected))
                << category << '/' << key << ' ' << method << " component " << k;
        }
        for (int slot : {1, 3, 5}) {
            counts_[slot] += reference_.timing[slot] - seen_[slot];
            seen_[slot] = reference_.timing[slot];
            ASSERT_EQ(kzb_get_time(product_.get(), slot), counts_[slot]) << "slot " << slot;
        }
    }
    KZB_STORE& product() { return *product_; }

  private:
    StoreHandle product_;
    kzb_reference::Store reference_;
    double seen_[20] = {};
    double counts_[20] = {};
};

constexpr const char* methods[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline", "linear", ""};

TEST(StoreLookupAgainstReference, random_tables_agree_in_every_way) {
    std::mt19937_64 random(11);
    for (int t = 0; t < 200; ++t) {
        Twin twin;
        twin.put_int("control", "motor_type", 10000);
        const RandomTable first(random, {1, 5, 8, false});
        const RandomTable second(random, {1, 5, 8, false});
        twin.put_table("torque", "a", first);
        twin.put_table("torque", "b", second);
        for (int p = 0; p < 5; ++p) {
            for (const char* method : methods) {
                twin.expect_equal("torque", "a", first.point(random), method);
                twin.expect_equal("torque", "b", second.point(random), method);
            }
        }
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(StoreLookupAgainstReference, absent_tables_agree) {
    std::mt19937_64 random(12);
    Twin twin;
    const RandomTable table(random, {3, 3, 8, false});
    twin.put_table("torque", "a", table);
    for (const char* method : methods) {
        twin.expect_equal("torque", "b", {1.0}, method);
        twin.expect_equal("flux", "a", {1.0}, method);
    }
}

struct Folded {
    int motor_type;
    const char* category;
    const char* key;
    int dim;
    int phase_axis;
    int position_axis;  // 0: none
    int components;     // of the last axis; 0: none
};

constexpr Folded folded_tables[] = {
    {10000, "current_flux", "flux", 4, 2, 3, 3},
    {10000, "harmonic_inductance", "inductance", 4, 2, 3, 9},
    {10000, "harmonic_torque", "torque_ibeta", 3, 1, 2, 0},
    {10000, "hysloss", "hysloss1", 3, 2, 0, 0},
    {10000, "eddyloss", "eddyloss1", 3, 2, 0, 0},
    {10000, "mag_flux", "flux", 2, 0, 0, 3},
    {10005, "distance_force", "force", 3, 1, 2, 0},
    {10005, "distance_force", "attractive_force", 3, 1, 2, 0},
    {10005, "distance_force", "force", 4, 1, 2, 0},
    {10007, "current_flux", "flux", 5, 2, 4, 3},
    {10007, "harmonic_inductance", "inductance", 5, 2, 4, 16},
    {10007, "harmonic_torque", "torque_ibeta", 4, 2, 4, 0},
    {10007, "hysloss", "hysloss1", 4, 2, 0, 0},
};

std::vector<double> evenly(double first, double last, int nodes) {
    std::vector<double> axis;
    for (int i = 0; i < nodes; ++i) {
        axis.push_back(first + (last - first) * i / (nodes - 1));
    }
    return axis;
}

// The current phase over a quarter turn to both sides or 0 to 90 alone, the position over one period.
RandomTable compact_table(std::mt19937_64& random, const Folded& table, double period, bool both_sides) {
    std::vector<std::vector<double>> axes(static_cast<std::size_t>(table.dim), evenly(0.0, 100.0, 4));
    std::vector<int> cyclic(axes.size(), 0);
    if (table.phase_axis != 0) {
        axes[static_cast<std::size_t>(table.phase_axis - 1)] = evenly(both_sides ? -90.0 : 0.0, 90.0, 7);
    }
    if (table.position_axis != 0) {
        axes[static_cast<std::size_t>(table.position_axis - 1)] = evenly(0.0, period, 6);
        cyclic[static_cast<std::size_t>(table.position_axis - 1)] = 1;
    }
    if (table.components != 0) {
        axes.back() = evenly(0.0, table.components - 1.0, table.components);
    }
    return RandomTable(random, axes, cyclic);
}

std::vector<double> folded_point(std::mt19937_64& random, const Folded& table, double period) {
    constexpr double phases[] = {0.0, 90.0, 180.0, 270.0, 360.0, -90.0, -180.0, 450.0, 135.0, 225.0, 90.0 + 1e-11};
    const auto any = [&](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(random);
    };
    std::vector<double> x(static_cast<std::size_t>(table.dim));
    for (double& coordinate : x) {
        coordinate = any(-10.0, 110.0);
    }
    if (table.phase_axis != 0) {
        x[static_cast<std::size_t>(table.phase_axis - 1)] =
            random() % 3 == 0 ? phases[random() % std::size(phases)] : any(-400.0, 760.0);
    }
    if (table.position_axis != 0) {
        x[static_cast<std::size_t>(table.position_axis - 1)] =
            random() % 3 == 0 ? period * 0.5 * static_cast<double>(random() % 4) : any(-0.5 * period, 1.5 * period);
    }
    if (table.components != 0) {
        x.back() = static_cast<double>(random() % static_cast<unsigned>(table.components));
    }
    return x;
}

class FoldedLookup : public testing::TestWithParam<Folded> {};

TEST_P(FoldedLookup, agrees_with_the_reference) {
    std::mt19937_64 random(13);
    const Folded& table = GetParam();
    constexpr int pole_counts[] = {8, 2, 0, 6, 5};
    for (int t = 0; t < 14; ++t) {
        const int poles = pole_counts[t % 5];
        const double period = table.motor_type == 10005 ? 0.048 : 360.0 / (poles == 0 ? 1.0 : poles * 0.5);
        Twin twin;
        twin.put_int("control", "motor_type", table.motor_type);
        twin.put_int("control", "use_phase_symmetry", t == 7 ? 0 : 1);
        twin.put_int("control", "number_of_poles", poles);
        twin.put_int("control", "current_type", t == 11 ? 0 : 1);
        twin.put_double("control", "beta_zero", t % 2 == 0 ? 0.0 : 12.5);
        twin.put_double("control", "electrical_length", 0.048);
        const RandomTable random_table = compact_table(random, table, period, t % 4 != 3);
        twin.put_table(table.category, table.key, random_table);
        if (t != 13) {
            twin.put_int("harmonic_torque", "kept", 1);
        }
        for (int p = 0; p < 20; ++p) {
            const std::vector<double> x = folded_point(random, table, period);
            for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
                twin.expect_equal(table.category, table.key, x, method);
                if (table.components != 0) {
                    twin.expect_equal_components(table.category, table.key, {x.begin(), x.end() - 1}, table.components,
                                                 method);
                }
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(every_rule, FoldedLookup, testing::ValuesIn(folded_tables),
                         [](const testing::TestParamInfo<Folded>& each) {
                             return std::to_string(each.param.motor_type) + "_" + each.param.key + "_of_" +
                                    std::to_string(each.param.dim) + "_axes";
                         });

}  // namespace
}  // namespace kzb_bench_test
