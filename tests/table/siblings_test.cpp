// One search for tables with the same axes: what single lookups give, or nothing done.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "random_tables.h"
#include "table/lookup.h"

namespace {

using kzb_test::TableMaker;

constexpr int count = 4;
const char* const methods[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

std::uint64_t bits(double v) {
    std::uint64_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return std::isnan(v) ? 1 : b;  // one not-a-number is as good as another
}

// `count` tables with the axes of one random table that has no cyclic axis.
struct Family {
    Family(TableMaker& maker, bool odd) {
        const int dim = 1 + maker.below(5);
        maker.fill(tables[0], dim, dim > 3 ? 5 : 8, odd);
        for (int a = 1; a <= dim; ++a) {
            kzb::table_set_cyclic_flag(&tables[0], a, 0);
        }
        for (std::size_t k = 1; k < count; ++k) {
            kzb::table_create(tables[k], dim, tables[0].sizes.data());
            for (int a = 0; a < dim; ++a) {
                copy_axis(tables[k], a);
            }
            for (std::size_t i = 0; i < static_cast<std::size_t>(tables[k].total); ++i) {
                tables[k].values[i] = maker.value(odd);
            }
        }
    }
    void copy_axis(KZB_TABLE& table, int a) const {
        const auto axis = static_cast<std::size_t>(a);
        if (!tables[0].axes[axis]) {
            return;
        }
        for (int i = 0; i < table.sizes[axis]; ++i) {
            kzb::table_set_axis_value(&table, a + 1, i, tables[0].axes[axis][static_cast<std::size_t>(i)]);
        }
    }
    std::array<KZB_TABLE, count> tables;
    const KZB_TABLE* pointers[count] = {&tables[0], &tables[1], &tables[2], &tables[3]};
};

struct SiblingOutcome {
    double values[count] = {kzb::KZB_NO_VALUE, kzb::KZB_NO_VALUE, kzb::KZB_NO_VALUE, kzb::KZB_NO_VALUE};
    int statuses[count] = {};
    double timing[20] = {};
};

TEST(Siblings, equal_single_lookups_or_leave_them_to_be_made) {
    TableMaker maker;
    int together = 0;
    for (int round = 0; round < 4000; ++round) {
        const bool odd = round % 3 == 0;
        const Family family(maker, odd);
        const std::vector<double> x = maker.point(family.tables[0], odd);
        const kzb::Scheme scheme = kzb::scheme_of(methods[maker.below(5)]);
        const kzb::LookupSwitches switches{maker.below(2) == 0, false};
        SiblingOutcome shared;
        testing::internal::CaptureStderr();
        const bool done = kzb::table_lookup_siblings(scheme, family.pointers, count, x.data(), shared.values,
                                                     shared.statuses, shared.timing, switches);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        if (!done) {
            for (const double slot : shared.timing) {
                EXPECT_EQ(slot, 0.0);
            }
            continue;
        }
        ++together;
        SiblingOutcome single;
        testing::internal::CaptureStderr();
        for (int k = 0; k < count; ++k) {
            single.statuses[k] =
                kzb::table_lookup(scheme, family.pointers[k], x.data(), single.values[k], single.timing, switches);
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        for (int k = 0; k < count; ++k) {
            EXPECT_EQ(bits(shared.values[k]), bits(single.values[k])) << "round " << round << " table " << k;
            EXPECT_EQ(shared.statuses[k], single.statuses[k]) << "round " << round << " table " << k;
        }
        for (int slot = 0; slot < 20; ++slot) {
            EXPECT_EQ(shared.timing[slot], single.timing[slot]) << "round " << round << " slot " << slot;
        }
    }
    // Four of five schemes share a search, on nearly all ordinary grids.
    EXPECT_GT(together, 2000);
}

TEST(Siblings, do_nothing_while_times_are_measured_and_without_a_scheme) {
    TableMaker maker;
    const Family family(maker, false);
    const std::vector<double> x = maker.point(family.tables[0], false);
    SiblingOutcome out;
    EXPECT_FALSE(kzb::table_lookup_siblings(kzb::Scheme::linear, family.pointers, count, x.data(), out.values,
                                            out.statuses, out.timing, kzb::LookupSwitches{false, true}));
    EXPECT_FALSE(kzb::table_lookup_siblings(kzb::Scheme::unknown, family.pointers, count, x.data(), out.values,
                                            out.statuses, out.timing, kzb::LookupSwitches{}));
    EXPECT_EQ(out.values[0], kzb::KZB_NO_VALUE);
}

class SameAxes : public testing::Test {
  protected:
    SameAxes() {
        for (KZB_TABLE* table : {&one, &two}) {
            const int rows[2] = {2, 3};
            kzb::table_create(*table, 2, rows);
            for (int i = 0; i < 3; ++i) {
                kzb::table_set_axis_value(table, 1, i, 10.0 * i);
                kzb::table_set_axis_value(table, 2, i, i);
            }
        }
    }
    KZB_TABLE one;
    KZB_TABLE two;
};

TEST_F(SameAxes, hold_for_equal_nodes_whatever_the_values) {
    two.values[3] = 7.0;
    EXPECT_TRUE(kzb::table_has_same_axes(one, two));
}

TEST_F(SameAxes, end_with_a_node_apart_by_one_bit) {
    kzb::table_set_axis_value(&two, 2, 2, std::nextafter(2.0, 3.0));
    EXPECT_FALSE(kzb::table_has_same_axes(one, two));
    kzb::table_set_axis_value(&two, 2, 2, 2.0);
    EXPECT_TRUE(kzb::table_has_same_axes(one, two));
    kzb::table_set_axis_value(&two, 1, 0, -0.0);
    EXPECT_FALSE(kzb::table_has_same_axes(one, two));
}

TEST_F(SameAxes, end_with_a_cyclic_axis_on_either_side) {
    kzb::table_set_cyclic_flag(&two, 1, 1);
    EXPECT_FALSE(kzb::table_has_same_axes(one, two));
    EXPECT_FALSE(kzb::table_has_same_axes(two, one));
    kzb::table_set_cyclic_flag(&one, 1, 1);
    EXPECT_FALSE(kzb::table_has_same_axes(one, two));
}

TEST_F(SameAxes, need_grids_and_equal_sizes) {
    KZB_TABLE without;
    const int rows[2] = {2, 3};
    kzb::table_create(without, 2, rows);
    EXPECT_FALSE(kzb::table_has_same_axes(one, without));
    EXPECT_FALSE(kzb::table_has_same_axes(without, without));
    KZB_TABLE other;
    const int more[2] = {3, 2};
    kzb::table_create(other, 2, more);
    EXPECT_FALSE(kzb::table_has_same_axes(one, other));
    EXPECT_FALSE(kzb::table_has_same_axes(KZB_TABLE{}, KZB_TABLE{}));
}

}  // namespace
