// Sibling tables in a store: what single lookups of the same names leave, in values, error, counters and debug lines.
#include "store/sibling_tables.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "own_folder.h"
#include "test_store.h"

namespace {

using kzb_test::TestStore;

class SiblingTables : public kzb_test::OwnFolder {
  protected:
    using Pair = kzb::SiblingTables<2>;
    using Refs = Pair::Refs;

    SiblingTables() {
        store.line("c", "one", {0.0, 1.0, 3.0}, {2.0, 4.0, 6.0});
        store.line("c", "two", {0.0, 1.0, 3.0}, {-1.0, 1e101, 8.0});
    }
    Pair::Values values_at(double x, const char* scheme) {
        Pair::Values values{};
        pair.look_up(*store, kzb::Method::named(scheme), Refs{&one, &two}, &x, 1, values);
        return values;
    }
    double single_at(const char* key, double x, const char* scheme) {
        return kzb_get_table_interpolated_value("c", key, &x, scheme, store);
    }

    TestStore store;
    kzb::TableRef one{"c", "one"};
    kzb::TableRef two{"c", "two"};
    Pair pair;
};

TEST_F(SiblingTables, give_the_values_and_the_error_of_the_last_lookup_that_left_one) {
    // Half way between the first two nodes.
    EXPECT_EQ(values_at(0.5, "Linear"), (Pair::Values{3.0, -1.0 + 0.5 * (1e101 + 1.0)}));
    EXPECT_EQ(kzb_has_error(store), 0);
    EXPECT_EQ(values_at(4.0, "Linear"), (Pair::Values{6.0, 8.0}));
    EXPECT_EQ(kzb_has_error(store), 80002);
    kzb_reset_error(store);
    EXPECT_EQ(values_at(1.0, "Cubic"), (Pair::Values{4.0, 1e101}));
    EXPECT_EQ(kzb_has_error(store), 9999);
}

TEST_F(SiblingTables, count_as_single_lookups) {
    values_at(0.5, "Linear");
    values_at(0.7, "Cubic");
    double together[20];
    std::copy(std::begin((*store).timing), std::end((*store).timing), together);
    for (const char* key : {"one", "two"}) {
        single_at(key, 0.5, "Linear");
        single_at(key, 0.7, "Cubic");
    }
    EXPECT_EQ(together[kzb::slot_linear_calls], 2.0);  // one line each
    EXPECT_EQ(together[kzb::slot_cubic_calls], 2.0);
    for (std::size_t slot = 0; slot < 20; ++slot) {
        EXPECT_EQ((*store).timing[slot], 2.0 * together[slot]) << slot;
    }
}

TEST_F(SiblingTables, follow_changes_of_the_store) {
    values_at(0.5, "Linear");
    store.line("c", "two", {0.0, 2.0}, {0.0, 1.0});
    EXPECT_EQ(values_at(0.5, "Linear"), (Pair::Values{3.0, 0.25}));
}

TEST_F(SiblingTables, without_one_of_them_leave_90006_for_it) {
    kzb::TableRef absent{"c", "absent"};
    Pair::Values values{};
    const double x = 0.5;
    pair.look_up(*store, kzb::Method{}, Refs{&one, &absent}, &x, 1, values);
    EXPECT_EQ(values, (Pair::Values{3.0, kzb::KZB_NO_VALUE}));
    EXPECT_EQ(kzb_has_error(store), 90006);
}

TEST_F(SiblingTables, write_a_debug_line_each) {
    (*store).debug_lines = true;
    values_at(0.5, "Linear");
    std::ifstream file("KZBFileHandlerDebug.txt");
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_EQ(text.str().find("c,one,Linear,"), 0U);
    EXPECT_NE(text.str().find("\nc,two,Linear,"), std::string::npos);
}

}  // namespace
