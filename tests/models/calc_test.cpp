#include "models/calc.h"

#include <gtest/gtest.h>

namespace kzb_test::calc_test {
namespace {

class Plain : public kzb::Calc {
  public:
    double induced_voltage(int) override { return 0.0; }
};

TEST(calc, starts_with_the_established_defaults) {
    const Plain calc;
    EXPECT_FALSE(calc.temperature_correction());
    EXPECT_EQ(calc.coil_temperature(), 293.15);
    EXPECT_EQ(calc.base_coil_temperature(), 293.15);
    EXPECT_EQ(calc.magnet_temperature(), 293.15);
    EXPECT_EQ(calc.base_magnet_temperature(), 293.15);
    EXPECT_EQ(calc.coil_temperature_coefficient(), 3810.0);
    EXPECT_EQ(calc.magnet_temperature_coefficient(), -0.11);
    EXPECT_EQ(calc.interpolation(), "Linear");
    EXPECT_EQ(calc.use_old_ironloss(), 0);
}

TEST(calc, factors_are_one_while_temperature_correction_is_off) {
    Plain calc;
    calc.set_coil_temperature(400.0);
    calc.set_magnet_temperature(400.0);
    EXPECT_EQ(calc.coil_factor(), 1.0);
    EXPECT_EQ(calc.magnet_factor(), 1.0);
}

TEST(calc, factors_grow_linearly_with_temperature) {
    Plain calc;
    calc.set_temperature_correction(true);
    calc.set_coil_temperature(393.15);
    calc.set_magnet_temperature(393.15);
    EXPECT_DOUBLE_EQ(calc.coil_factor(), 1.381);   // 1 + 100 * 3810e-6
    EXPECT_DOUBLE_EQ(calc.magnet_factor(), 0.89);  // 1 - 100 * 0.11 %
    calc.set_base_coil_temperature(393.15);
    calc.set_coil_temperature_coefficient(5000.0);
    EXPECT_EQ(calc.coil_factor(), 1.0);
    calc.set_coil_temperature(403.15);
    EXPECT_NEAR(calc.coil_factor(), 1.05, 1e-15);  // 10 * 5000e-6
}

TEST(calc, heat_term_is_the_product_with_the_difference) {
    EXPECT_EQ(kzb::Calc::heat_term(2.0, 3.0, 7.0, 5.0), 12.0);
}

TEST(calc, interpolation_name_selects_the_scheme) {
    Plain calc;
    calc.set_interpolation("Spline6");
    EXPECT_EQ(calc.interpolation(), "Spline6");
    EXPECT_EQ(calc.method().scheme, kzb::Scheme::spline6);
    calc.set_interpolation("nearest");
    EXPECT_EQ(calc.method().scheme, kzb::Scheme::unknown);
}

TEST(calc, has_no_messages_of_its_own) {
    Plain calc;
    EXPECT_TRUE(calc.messages().empty());
}

}  // namespace
}  // namespace kzb_test::calc_test
