// Copies of whole tables.
#include "store/transform/table_copy.h"

#include <gtest/gtest.h>

#include "synthetic_store.h"

namespace {

using namespace synthetic;

TEST(copy_table, takes_values_grids_and_flags) {
    KZB_STORE store;
    make_table(store, "c", "t", {{0, 360}, {1, 2, 4}}, {1, 0}, [](const Point& x) { return x[0] + x[1]; });
    EXPECT_EQ(kzb::copy_table(store, "c", "t", "u"), 0);
    EXPECT_EQ(kzb::find_table(store, "c", "u")->sizes, (std::vector<int>{2, 3}));
    EXPECT_EQ(nodes(store, "c", "u", 1), (std::vector<double>{0, 360}));
    EXPECT_EQ(nodes(store, "c", "u", 2), (std::vector<double>{1, 2, 4}));
    EXPECT_EQ(cyclic_flags(store, "c", "u"), (std::vector<int>{1, 0}));
    EXPECT_EQ(value(store, "c", "u", {1, 2}), 364);
    EXPECT_EQ(store.error, 0);
}

TEST(copy_table, an_absent_grid_reads_no_value_and_is_written_so) {
    KZB_STORE store;
    const int sizes[] = {2, 2};
    kzb::create_table(store, "c", "t", 2, sizes);
    kzb::table_set_axis_value(kzb::find_table(store, "c", "t"), 2, 1, 5.0);
    EXPECT_EQ(kzb::copy_table(store, "c", "t", "u"), 0);
    EXPECT_EQ(store.error, 90010);
    ASSERT_TRUE(kzb::find_table(store, "c", "u")->axes[0]);
    EXPECT_EQ(nodes(store, "c", "u", 1), (std::vector<double>{kzb::KZB_NO_VALUE, kzb::KZB_NO_VALUE}));
    // A grid that is partly written holds zeros.
    EXPECT_EQ(nodes(store, "c", "u", 2), (std::vector<double>{0, 5}));
}

TEST(copy_table, an_absent_table_is_copied_as_one_of_no_axes) {
    KZB_STORE store;
    EXPECT_EQ(kzb::copy_table(store, "c", "t", "u"), 0);
    ASSERT_NE(kzb::find_table(store, "c", "u"), nullptr);
    EXPECT_EQ(kzb::find_table(store, "c", "u")->dim, 0);
    EXPECT_EQ(store.error, 0);
}

}  // namespace
