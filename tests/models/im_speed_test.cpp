// Electrical speed: from recorded angles with tables, the mean since time zero with constants.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_speed_test {
namespace {

using kzb::AngleHistory;

TEST(im_speed, without_a_record_it_is_the_mean_since_time_zero) {
    const AngleHistory history;
    EXPECT_EQ(history.speed(0.0, 10.0), 0.0);
    EXPECT_EQ(history.speed(0.1, 10.0), 100.0);
    EXPECT_EQ(history.speed(-0.1, 10.0), 0.0);
    EXPECT_EQ(history.speed(std::nan(""), 10.0), 0.0);
}

TEST(im_speed, takes_the_newest_record_before_the_present_time) {
    AngleHistory history;
    history.push(1.0, 5.0);
    history.push(2.0, 9.0);
    history.push(3.0, 20.0);
    EXPECT_EQ(history.speed(4.0, 26.0), 6.0);           // (26 - 20) / 1
    EXPECT_EQ(history.speed(3.0, 20.0), 11.0);          // (20 - 9) / 1: its own record is not before it
    EXPECT_EQ(history.speed(3.0 + 1e-16, 20.0), 11.0);  // nor one within 1e-15
    EXPECT_EQ(history.speed(2.5, 10.0), 2.0);           // (10 - 9) / 0.5
    EXPECT_EQ(history.speed(0.5, 10.0), 20.0);          // none before it
}

TEST(im_speed, a_time_is_recorded_once) {
    AngleHistory history;
    history.push(0.0, 1.0);
    history.push(0.0, 2.0);
    history.push(5e-16, 3.0);
    history.push(1e-15, 4.0);
    EXPECT_EQ(history.size(), 1U);
    EXPECT_EQ(history.speed(1.0, 2.0), 1.0);  // from the first angle
    history.push(3e-15, 5.0);
    EXPECT_EQ(history.size(), 2U);
}

TEST(im_speed, the_fourth_record_drops_the_oldest) {
    AngleHistory history;
    for (int n = 1; n <= 4; ++n) {
        history.push(n, 10.0 * n);
    }
    EXPECT_EQ(history.size(), 3U);
    EXPECT_EQ(history.speed(2.5, 30.0), 20.0);  // (30 - 20) / 0.5
    EXPECT_EQ(history.speed(1.5, 30.0), 20.0);  // 30 / 1.5: the record at 1.0 is gone
}

TEST(im_speed, with_constants_no_angle_is_ever_recorded) {
    KZB_STORE store;
    ImConstants m;
    m.poles = 2;  // theta is the displacement
    im_constants_file(store, m);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    im_sample(model, {0.0, 0.0, 0.0}, 0.0, 0.0);
    EXPECT_EQ(model.electrical_speed(), 0.0);
    im_sample(model, {0.0, 0.0, 0.0}, 10.0, 0.1);
    EXPECT_EQ(model.electrical_speed(), 100.0);
    // Standing still from here on: the mean since time zero all the same.
    im_sample(model, {0.0, 0.0, 0.0}, 10.0, 0.2);
    EXPECT_EQ(model.electrical_speed(), 50.0);
}

TEST(im_speed, with_tables_it_is_that_of_the_last_interval) {
    KZB_STORE store;
    im_tables_file(store);  // four poles
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double v[3] = {0.0, 0.0, 0.0};
    double x[4] = {};
    model.execute(v, 1.0, 0.5, im_all_driven, 0.0, x);
    EXPECT_EQ(model.electrical_speed(), 4.0);  // 2 * 1.0 / 0.5 since time zero
    model.execute(v, 2.0, 1.0, im_all_driven, 0.0, x);
    EXPECT_EQ(model.electrical_speed(), 4.0);  // 2 * (2 - 1) / 0.5
    model.execute(v, 2.0, 1.5, im_all_driven, 0.0, x);
    EXPECT_EQ(model.electrical_speed(), 0.0);
}

}  // namespace
}  // namespace kzb_test::im_speed_test
