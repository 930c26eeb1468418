// Edits are done all together; when one of them or what follows finds no memory, the store is as it was.
#include "store/int_edits.h"

#include <gtest/gtest.h>

#include <new>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

kzb::IntEdits three_edits() {
    kzb::IntEdits edits;
    edits.add("old", "known", 5);
    edits.add("old", "new", 6);
    edits.add("added", "new", 7);
    return edits;
}

TEST(IntEdits, are_done_before_what_follows_them) {
    TestStore store;
    kzb_put_int("old", "known", 1, store);
    int seen = 0;
    three_edits().apply(*store, [&] { seen = kzb_get_int("added", "new", store); });
    EXPECT_EQ(seen, 7);
    EXPECT_EQ(kzb_get_int("old", "known", store), 5);
    EXPECT_EQ(kzb_get_int("old", "new", store), 6);
}

TEST(IntEdits, leave_the_store_as_it_was_when_what_follows_fails) {
    TestStore store;
    kzb_put_int("old", "known", 1, store);
    kzb_put_int("old", "other", 2, store);
    EXPECT_THROW(three_edits().apply(*store, [] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(kzb_get_int("old", "known", store), 1);
    EXPECT_EQ(kzb_get_int("old", "other", store), 2);
    EXPECT_EQ(kzb_has_parameter("old", "new", store), 0);
    EXPECT_EQ(kzb_has_category("added", store), 0);
    EXPECT_EQ(kzb_get_category_num(store), 1);
    // The names that went can be put anew.
    kzb_put_int("added", "new", 9, store);
    EXPECT_EQ(kzb_get_int("added", "new", store), 9);
}

}  // namespace
