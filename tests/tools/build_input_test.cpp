// What the reader of a flux map accepts, and the one line it gives for what it does not: file:line, what, expected.
#include <clocale>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "kzb/build_spline.h"
#include "kzb/csv_table.h"
#include "tools/build_synthetic.h"

namespace kzb::tool {
namespace {

using namespace synthetic;
using testing::ElementsAre;
using testing::HasSubstr;

SourceMap map_of(const std::string& text, const SourceOptions& options = {}) {
    return read_source_map(CsvTable::parse(text, "map.csv"), options);
}

struct WrongInput {
    std::string text;
    std::string message;
};

TEST(BuildInput, wrong_maps_are_refused_in_one_line_that_says_what_and_where) {
    const std::string head = "id_A,iq_A,psi_d_Vs,psi_q_Vs\n";
    const std::vector<WrongInput> wrong{
        {"", "map.csv: empty, expected a header line"},
        {"\n\r\n  \n", "map.csv: empty, expected a header line"},
        {head, "map.csv: no row of numbers after the header"},
        {head + "0,0,0.1\n", "map.csv:2: 3 cells, expected 4 as in the header"},
        {head + "0,0,0.1,0\n0,1,0.1,\n", "map.csv:3: column \"psi_q_Vs\": \"\" is not a finite number"},
        {head + "0,0,0.1,0\n\n0,1,nan,0\n", "map.csv:4: column \"psi_d_Vs\": \"nan\" is not a finite number"},
        {head + "0,0,inf,0\n", "map.csv:2: column \"psi_d_Vs\": \"inf\" is not a finite number"},
        {head + "0,0,1e400,0\n", "\"1e400\" is not a finite number"},
        {head + "0;0;0.1;0\n", "map.csv:2: 1 cells, expected 4"},
        {head + "0x10,0,0.1,0\n", "column \"id_A\": \"0x10\" is not a finite number"},
        {"id_A,iq_A,psi_d_Vs\n0,0,0.1\n",
         "map.csv:1: no column for psi_q, expected psi_q_Vs or --column psi_q=NAME; the "
         "columns are id_A, iq_A, psi_d_Vs"},
        {"id_ft,iq_A,psi_d_Vs,psi_q_Vs\n0,0,0.1,0\n", "map.csv:1: no column for id"},
        {"id_A,id_mA,iq_A,psi_d_Vs,psi_q_Vs\n0,0,0,0.1,0\n", "columns \"id_A\" and \"id_mA\" both fit id"},
        {head + "0,0,0.1,0\n0,1,0.1,0\n1,0,0.1,0\n", "map.csv: no row for id 1 A, iq 1 A, expected a full grid"},
        {head + "0,0,0.1,0\n0,1,0.1,0\n1,0,0.1,0\n1,1,0.1,0\n0,1,0.2,0\n",
         "map.csv:6: the point of line 3 a second time"},
        {head + "0,0,0.1,0\n0,1,0.1,0\n", "map.csv: the d current takes 1 value(s), expected a grid with at least 2"},
        {head + "0,0,0.1,0\n1,2,0.1,0\n3,4,0.1,0\n5,6,0.1,0\n7,8,1,1\n9,10,1,1\n", "expected a full grid"},
    };
    for (const WrongInput& input : wrong) {
        try {
            map_of(input.text);
            ADD_FAILURE() << "accepted: " << input.text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code, exit_file);
            EXPECT_THAT(failure.what(), HasSubstr(input.message));
            EXPECT_THAT(failure.what(), testing::Not(HasSubstr("\n")));
        }
    }
}

TEST(BuildInput, scattered_points_are_refused_before_a_huge_grid_is_made) {
    std::string text = "id,iq,psi_d,psi_q\n";
    for (int n = 0; n < 3000; ++n) {
        text += fmt::format("{},{},0.1,0\n", n, 0.5 * n);
    }
    EXPECT_THROW(map_of(text), Failure);
}

TEST(BuildInput, positions_must_cover_a_period_evenly) {
    const auto flat = [](double id, double iq, double) {
        return std::array<double, 4>{psi_d(id), psi_q(iq), 0.0, 0.0};
    };
    EXPECT_EQ(map_of(position_map({0, 1}, {0, 1}, steps(0, 10, 18), flat)).period, 180.0);
    EXPECT_EQ(map_of(position_map({0, 1}, {0, 1}, steps(-60, 10, 13), flat)).period, 120.0);
    EXPECT_THROW(map_of(position_map({0, 1}, {0, 1}, steps(0, 10, 20), flat)), Failure);  // 0 .. 190
    EXPECT_THROW(map_of(position_map({0, 1}, {0, 1}, {0.0, 180.0}, flat)), Failure);      // two nodes
}

TEST(BuildInput, map_without_zero_current_is_refused) {
    std::string text = "id,iq,psi_d,psi_q\n1,0,0.1,0\n2,0,0.2,0\n1,1,0.1,1\n2,1,0.2,1\n";
    try {
        build_text(text, Application::Harmonic);
        FAIL() << "accepted";
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("d current starts at 1 A, expected a map that holds zero current"));
    }
}

TEST(BuildInput, missing_file_is_told_with_its_name) {
    try {
        CsvTable::read("/nowhere/map.csv");
        FAIL() << "read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, exit_file);
        EXPECT_THAT(failure.what(), HasSubstr("/nowhere/map.csv: cannot be opened"));
    }
    EXPECT_THROW(CsvTable::read(testing::TempDir()), Failure);  // a folder
}

TEST(BuildInput, byte_order_mark_windows_line_ends_quotes_and_any_row_order_are_read) {
    const SourceMap map = map_of(
        "\xef\xbb\xbf\"id_A\", iq_A ,psi_d_Vs,psi_q_Vs,remark\r\n"
        "1,0,+0.2,0,b\r\n\r\n0,1,0.1,1,c\r\n0,0,1e-1,0,\r\n1,1,.2,1,x");
    EXPECT_THAT(map.id, ElementsAre(0.0, 1.0));
    EXPECT_THAT(map.iq, ElementsAre(0.0, 1.0));
    EXPECT_THAT(map.psi_d, ElementsAre(0.1, 0.1, 0.2, 0.2));
    EXPECT_THAT(map.psi_q, ElementsAre(0.0, 1.0, 0.0, 1.0));
    EXPECT_FALSE(map.has_positions);
    EXPECT_TRUE(map.torque.empty());
}

TEST(BuildInput, columns_can_be_named_with_their_unit) {
    SourceOptions options;
    options.columns = {{"psi_d", "fluss längs:mVs"}, {"psi_q", "quer_mWb"}};
    const SourceMap map = map_of("id,iq,fluss längs,quer_mWb\n0,0,100,0\n0,1,100,5\n1,0,102,0\n1,1,102,5\n", options);
    EXPECT_DOUBLE_EQ(map.psi_d[0], 0.1);
    EXPECT_DOUBLE_EQ(map.psi_q[1], 0.005);
    options.columns["iq"] = "absent";
    EXPECT_THROW(map_of("id,iq,fluss längs,quer_mWb\n0,0,100,0\n", options), Failure);
    options.columns["iq"] = "iq:furlong";
    EXPECT_THROW(map_of("id,iq,fluss längs,quer_mWb\n0,0,100,0\n", options), Failure);
}

TEST(BuildInput, numbers_are_read_alike_under_a_locale_with_decimal_comma) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
        std::setlocale(LC_ALL, name);  // what the host lacks changes nothing
        EXPECT_EQ(finite_number("1.5"), 1.5);
        EXPECT_FALSE(finite_number("1,5").has_value());
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(BuildInput, number_has_no_tail_and_no_sign_pair) {
    for (const char* text : {"", "+", "-", "1.5A", " 1", "+-1", "--1", "1e", "nan", "-inf"}) {
        EXPECT_FALSE(finite_number(text).has_value()) << text;
    }
    EXPECT_EQ(finite_number("-0.25e1"), -2.5);
}

// A parabola meets the parabolic ends and the smoothness of the inside exactly.
TEST(BuildSpline, open_spline_reproduces_a_parabola_on_uneven_nodes) {
    const std::vector<double> x{-1.0, 0.0, 0.5, 2.0, 3.5};
    std::vector<double> y;
    for (const double v : x) {
        y.push_back(2.0 * v * v - 3.0 * v + 1.0);
    }
    const std::vector<double> m = spline_slopes(x, y);
    for (std::size_t i = 0; i < x.size(); ++i) {
        EXPECT_NEAR(m[i], 4.0 * x[i] - 3.0, 1e-13);
    }
    EXPECT_THAT(spline_slopes({0.0, 2.0}, {1.0, 5.0}), ElementsAre(2.0, 2.0));
}

// On even nodes the slope at a node of a spline through sin(w x) is w cos(w x) * 3 sin(wh) / ((2 + cos(wh)) wh).
TEST(BuildSpline, periodic_spline_has_the_slopes_of_the_cyclic_system) {
    std::vector<double> x;
    std::vector<double> y;
    for (int k = 0; k < 12; ++k) {
        x.push_back(30.0 * k);
        y.push_back(std::sin(x.back() * pi / 180.0));
    }
    const PeriodicSpline spline(x, y, 360.0);
    const double wh = pi / 6.0;
    const double factor = pi / 180.0 * 3.0 * std::sin(wh) / ((2.0 + std::cos(wh)) * wh);
    for (const double at : {0.0, 30.0, 210.0, 360.0, -330.0, 750.0}) {
        EXPECT_NEAR(spline.at(at), std::sin(at * pi / 180.0), 1e-14);
        EXPECT_NEAR(spline.slope_at(at), std::cos(at * pi / 180.0) * factor, 1e-15);
    }
    // Between nodes the error of a cubic spline stays below 5/384 h^4 max|f''''|.
    for (double at = 1.0; at < 360.0; at += 7.0) {
        EXPECT_NEAR(spline.at(at), std::sin(at * pi / 180.0), 5.0 / 384.0 * wh * wh * wh * wh);
    }
}

TEST(BuildSpline, surface_goes_on_linearly_beyond_its_edge) {
    // x^2 + x y inside; beyond: value and slopes of the nearest edge point.
    const std::vector<double> x{0.0, 1.0, 2.0, 3.0};
    const std::vector<double> y{-1.0, 0.0, 1.0};
    std::vector<double> values;
    for (const double a : x) {
        for (const double b : y) {
            values.push_back(a * a + a * b);
        }
    }
    const BicubicSurface surface(x, y, values);
    const auto expect = [&surface](double at_x, double at_y, double f, double fx, double fy) {
        const SurfaceValue v = surface.at(at_x, at_y);
        EXPECT_NEAR(v.f, f, 1e-12);
        EXPECT_NEAR(v.fx, fx, 1e-12);
        EXPECT_NEAR(v.fy, fy, 1e-12);
    };
    expect(1.5, 0.25, 2.25 + 0.375, 3.0 + 0.25, 1.5);
    expect(3.0, 1.0, 12.0, 7.0, 3.0);
    // Beyond x = 3 at y = 0.5: f = 9 + 1.5 + (x - 3)(6 + y), whose slopes are 6 + y and 3 + (x - 3).
    expect(4.0, 0.5, 10.5 + 6.5, 6.5, 4.0);
    // Beyond the corner (3, 1): f = 12 + 7 (x - 3) + 3 (y - 1).
    expect(4.0, 2.0, 12.0 + 7.0 + 3.0, 7.0, 3.0);
}

}  // namespace
}  // namespace kzb::tool
