// Debug files of the induction model, against what printf makes of the same numbers.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "im_files.h"
#include "support/files.h"

namespace kzb_test::im_debug_test {
namespace {

namespace fs = std::filesystem;

// A directory of its own as the current one.
class ImDebugFiles : public ::testing::Test {
  protected:
    void TearDown() override { unsetenv("DORN_KZ_DEBUG_OUTPUT"); }
    static std::string fields(const char* format, const char* separator, const std::vector<double>& values) {
        std::string line;
        for (const double value : values) {
            char field[64];
            std::snprintf(field, sizeof field, format, value);
            if (!line.empty()) {
                line += separator;
            }
            line += field;
        }
        return line + "\n";
    }

  private:
    WorkingFolder folder_;
};

const char* const iv_header = "Time, SlipFreq, Theta, Vu, Vv, Vw, Iu_s, Iv_s, Iw_s, Iu_r, Iv_r, Iw_r\n";
const char* const l_header = "Time, SlipFreq, Is, Ls, Msr, Mrs, Lr\n";
const char* const r_header = "Time, SlipFreq, I0, Rs_DC, Rr\n";
const char* const teq_header = "Time, SlipFliq, I1, SourceAmp, l1, l2, l0, Rs, Rr, g0, I0, IronLoss\n";
const char* const deriv_header = "Time, Rs, Rr, m_Ls, m_Msr, m_Mrs, m_Lr, x[0], x[1], x[2], x[3], Va, Vb, Wm\n";
const char* const derivi_header = "Time, Rs, Rr, m_Ls, m_Msr, m_Mrs, m_Lr, i1a, i1b, x[0], x[1], Wm\n";

TEST_F(ImDebugFiles, only_the_value_1_makes_them) {
    for (const char* const value : {"0", "2", "-1", "x"}) {
        setenv("DORN_KZ_DEBUG_OUTPUT", value, 1);
        const Calc_Eq_im_transient model;
        EXPECT_TRUE(fs::is_empty(fs::current_path())) << value;
    }
    unsetenv("DORN_KZ_DEBUG_OUTPUT");
    { const Calc_Eq_im_transient model; }
    EXPECT_TRUE(fs::is_empty(fs::current_path()));
}

TEST_F(ImDebugFiles, headers_stand_from_construction_on) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    { const Calc_Eq_im_transient model; }
    EXPECT_EQ(read_file("VEKT_debug_IV.csv"), iv_header);
    EXPECT_EQ(read_file("VEKT_debug_L.csv"), l_header);
    EXPECT_EQ(read_file("VEKT_debug_R.csv"), r_header);
    EXPECT_EQ(read_file("VEKT_debug_TEq.csv"), teq_header);
    EXPECT_EQ(read_file("VEKT_debug_Deriv.csv"), deriv_header);
    EXPECT_EQ(read_file("VEKT_debug_DerivI.csv"), derivi_header);
}

TEST_F(ImDebugFiles, a_voltage_driven_step_writes_a_row_each) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    std::string iv = iv_header;
    std::string l = l_header;
    std::string r = r_header;
    {
        KZB_STORE store;
        im_constants_file(store);
        Calc_Eq_im_transient model;
        model.bind(store, 0);
        model.set_slip_omega(2.0);
        const double v[3] = {100.0, -30.0, -70.0};
        double looked_up_at = 0.0;
        for (int n = 1; n <= 2; ++n) {
            model.step_voltage_driven(v, 0.2, n * 1e-3, im_all_driven);
            iv += fields(
                "%20.10e", ",",
                {n * 1e-3, 2.0, 0.4, 100.0, -30.0, -70.0, model.current_output(1), model.current_output(2),
                 model.current_output(3), model.current_output(4), model.current_output(5), model.current_output(6)});
            const kzb::ImInductances& h = model.state().inductances;
            const double slip = 2.0 / im_two_pi;
            l += fields("%20.10e", ",", {n * 1e-3, slip, looked_up_at, h.m_Ls, h.m_Msr, h.m_Mrs, h.m_Lr});
            r += fields("%20.10e", ", ", {n * 1e-3, slip, looked_up_at, 0.5, model.secondary_resistance()});
            looked_up_at = model.state().primary_current;
        }
        const double i[3] = {5.0, -2.0, -3.0};
        model.step_current_driven(i, 0.2, 3e-3);
        iv += fields(
            "%20.10e", ",",
            {3e-3, 2.0, 0.4, 0.0, 0.0, 0.0, model.current_output(1), model.current_output(2), model.current_output(3),
             model.current_output(4), model.current_output(5), model.current_output(6)});
    }
    EXPECT_EQ(read_file("VEKT_debug_IV.csv"), iv);
    EXPECT_EQ(read_file("VEKT_debug_L.csv").substr(0, l.size()), l);
    EXPECT_EQ(read_file("VEKT_debug_R.csv").substr(0, r.size()), r);
    EXPECT_EQ(read_file("VEKT_debug_TEq.csv"), teq_header);
    EXPECT_EQ(read_file("VEKT_debug_Deriv.csv"), deriv_header);
}

TEST_F(ImDebugFiles, derivatives_write_their_own_rows) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    std::string deriv = deriv_header;
    std::string derivi = derivi_header;
    std::string iv = iv_header;
    {
        KZB_STORE store;
        im_tables_file(store);
        Calc_Eq_im_transient model;
        model.bind(store, 0);
        const double v[3] = {100.0, -30.0, -70.0};
        double x[4] = {3.0, -4.0, 0.5, 0.25};
        model.execute(v, 0.3, 0.5, im_all_driven, 0.0, x);
        const auto row_of_currents = [&](double time) {
            return fields(
                "%20.10e", ",",
                {time, 0.0, 0.6, 0.0, 0.0, 0.0, model.current_output(1), model.current_output(2),
                 model.current_output(3), model.current_output(4), model.current_output(5), model.current_output(6)});
        };
        iv += row_of_currents(0.5);
        const Two u = im_clarke(v[0], v[1], v[2]);
        deriv += fields(
            "%10.5e", ",",
            {0.5, 0.5, 0.375, 0.125, 0.09375, 0.078125, 0.140625, 3.0, -4.0, 0.5, 0.25, u.alpha, u.beta, 0.6 / 0.5});
        double flux[4] = {0.5, 0.25, 0.0, 0.0};
        const double i[3] = {7.0, 1.0, -8.0};
        model.torque_from_currents(i, 0.3, 1.0, 0.0, flux);
        iv += row_of_currents(1.0);
        const Two c = im_clarke(7.0, 1.0, -8.0);
        derivi += fields("%10.5e", ",",
                         {1.0, 0.5, 0.375, 0.125, 0.09375, 0.078125, 0.140625, c.alpha, c.beta, 0.5, 0.25, 0.0});
    }
    EXPECT_EQ(read_file("VEKT_debug_Deriv.csv"), deriv);
    EXPECT_EQ(read_file("VEKT_debug_DerivI.csv"), derivi);
    EXPECT_EQ(read_file("VEKT_debug_IV.csv"), iv);
}

TEST_F(ImDebugFiles, a_directory_that_takes_no_file_is_silent) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    for (const char* const name : {"VEKT_debug_IV.csv", "VEKT_debug_L.csv", "VEKT_debug_R.csv", "VEKT_debug_TEq.csv",
                                   "VEKT_debug_Deriv.csv", "VEKT_debug_DerivI.csv"}) {
        fs::create_directory(name);
    }
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double v[3] = {100.0, -30.0, -70.0};
    double x[4] = {};
    model.execute(v, 0.3, 0.5, im_all_driven, 1e-3, x);
    EXPECT_GT(x[0], 0.0);
}

// "./parameters.txt" in place of the tables.
class ImParameterFile : public ImDebugFiles {
  protected:
    void write(const std::string& text) { std::ofstream("parameters.txt", std::ios::binary) << text; }
    void step() {
        const double v[3] = {100.0, -30.0, -70.0};
        model_.step_voltage_driven(v, 0.2, 1e-3, im_all_driven);
    }
    void bind_with_file() {
        im_constants_file(store_);
        model_.bind(store_, 0);
        model_.set_read_parameter_file(true);
    }

    KZB_STORE store_;
    Calc_Eq_im_transient model_;
};

TEST_F(ImParameterFile, sets_resistances_and_inductances) {
    bind_with_file();
    write("R1 0.5e0\nR2\t+0.25\n  Ls   1.5 trailing words\r\nMsr 2.5\nMrs 3.5\nunknown 7\n\nLr 4.5");
    step();
    EXPECT_EQ(model_.resistances().Rs_DC, 0.5);
    EXPECT_EQ(model_.resistances().Rs, 0.5);
    EXPECT_EQ(model_.secondary_resistance(), 0.25);
    EXPECT_EQ(model_.state().inductances.m_Ls, 1.5);
    EXPECT_EQ(model_.state().inductances.m_Msr, 2.5);
    EXPECT_EQ(model_.state().inductances.m_Mrs, 3.5);
    EXPECT_EQ(model_.state().inductances.m_Lr, 4.5);
    // No table is looked up, none is written.
    EXPECT_EQ(store_.timing[kzb::slot_linear_calls], 0.0);
    EXPECT_EQ(im_value(store_, "R2_table"), 0.4);
    // The flux angle belongs to the tables' update.
    model_.accept();
    const double v[3] = {};
    model_.step_voltage_driven(v, 0.4, 2e-3, im_all_driven);
    EXPECT_EQ(model_.state().flux_angle, 0.0);
}

TEST_F(ImParameterFile, without_a_file_the_parameters_stay) {
    bind_with_file();
    write("Ls 1.5\nR1 0.25\n");
    step();
    fs::remove("parameters.txt");
    step();
    EXPECT_EQ(model_.state().inductances.m_Ls, 1.5);
    EXPECT_EQ(model_.resistances().Rs, 0.25);
    fs::create_directory("parameters.txt");
    step();
    EXPECT_EQ(model_.state().inductances.m_Ls, 1.5);
}

TEST_F(ImParameterFile, lines_without_a_number_are_left_out) {
    bind_with_file();
    write("Ls 1.5\n");
    step();
    write("Ls\nLs abc\nLs -\nLs 1e999\nls 9\n3 Ls\nLs \n" + std::string(100000, 'x') + "\n" +
          std::string("Ls 8\0 9", 7) + "\n");
    step();
    EXPECT_EQ(model_.state().inductances.m_Ls, 8.0);  // of the last line alone, up to its zero byte
}

TEST_F(ImParameterFile, the_flag_is_off_unless_asked_for) {
    im_constants_file(store_);
    model_.bind(store_, 0);
    write("Ls 1.5\n");
    step();
    EXPECT_NE(model_.state().inductances.m_Ls, 1.5);
}

}  // namespace
}  // namespace kzb_test::im_debug_test
