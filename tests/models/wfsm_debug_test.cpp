// Debug files of the wound-field model, against what printf makes of the same numbers.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "support/files.h"
#include "wfsm_files.h"

namespace kzb_test::wfsm_debug_test {
namespace {

namespace fs = std::filesystem;

const char* const names[] = {"VEKT_debug_IV.csv",       "VEKT_debug_Flux.csv",     "VEKT_debug_L.csv",
                             "VEKT_debug_Trq.csv",      "VEKT_debug_IampBeta.csv", "VEKT_debug_Itr_IV.csv",
                             "VEKT_debug_Itr_Flux.csv", "VEKT_debug_Itr_L.csv",    "VEKT_debug_Itr_IampBeta.csv"};
const char* const headers[] = {
    "Time,I_u,I_v,I_w,I_f,V_u,V_v,V_w,V_f,V_c,theta\n",
    "Time, Tot_Flux_U, Tot_Flux_V, Tot_Flux_W, Tot_Flux_F \n",
    "Time, Lu, Muv, Muw, Muf, Mvu, Lv, Mvw, Mvf, Mwu, Mwv, Lw, Mwf, Mfu, Mfv, Mfw, Lf,R,Rf\n",
    "Time, Iamp,Ibeta, Id, Iq, If, Ang, Trq\n",
    "Time,nr_i,Iamp,beta, Id, Iq,If,theta\n",
    "Time,nr_i,I_u,I_v,I_w,I_f,V_u,V_v,V_w,V_f,V_c,theta\n",
    "Time, nr_i,Tot_Flux_U, Tot_Flux_V, Tot_Flux_W, Tot_Flux_F\n",
    "Time, nr_i, Lu, Muv, Muw, Muf, Mvu, Lv, Mvw, Mvf, Mwu, Mwv, Lw, Mwf, Mfu, Mfv, Mfw, Lf,R,Rf\n",
    "Time,nr_i,Iamp,beta,Iu,Iv,Iw, If,theta\n"};

// A directory of its own as the current one.
class WfsmDebug : public ::testing::Test {
  protected:
    // Lines behind the header.
    static std::vector<std::string> rows(const char* name) {
        std::ifstream file(name, std::ios::binary);
        std::vector<std::string> lines;
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line)) {
            lines.push_back(line);
        }
        return lines;
    }
    // Numbers by a letter each, the last one for all that follow: "e" is "%20.10e", "x" "%20.15e", "i" "%5d", "d" "%d".
    static std::string printed(const char* kinds, const std::vector<double>& values) {
        const std::size_t last = std::char_traits<char>::length(kinds) - 1;
        std::string line;
        for (std::size_t k = 0; k < values.size(); ++k) {
            char field[64];
            const char kind = kinds[std::min(k, last)];
            if (kind == 'i' || kind == 'd') {
                std::snprintf(field, sizeof field, kind == 'i' ? "%5d" : "%d", static_cast<int>(values[k]));
            } else {
                std::snprintf(field, sizeof field, kind == 'e' ? "%20.10e" : "%20.15e", values[k]);
            }
            if (k != 0) {
                line += ',';
            }
            line += field;
        }
        return line;
    }

  private:
    WorkingFolder folder_;
};

TEST_F(WfsmDebug, no_file_unless_asked_for_by_a_non_zero_integer) {
    for (const char* value : {"", "0", "on"}) {
        const Environment variable("DORN_KZ_DEBUG_OUTPUT", value);
        const Calc_Eq_wfsm model;
        for (const char* name : names) {
            EXPECT_FALSE(fs::exists(name)) << name;
        }
    }
    const Calc_Eq_wfsm model;
    EXPECT_FALSE(fs::exists(names[0]));
}

TEST_F(WfsmDebug, nine_files_with_their_headers) {
    const Environment variable("DORN_KZ_DEBUG_OUTPUT", "-2");
    { const Calc_Eq_wfsm model; }
    for (std::size_t k = 0; k < std::size(names); ++k) {
        std::ifstream file(names[k], std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        EXPECT_EQ(text.str(), headers[k]) << names[k];
    }
}

// The first sample at time 0.0 and position 0, the second at 10 degrees, a node of the tables: the linear machine
// settles in the first pass there, so that the rows of the second show the final currents.
class WfsmDebugRows : public WfsmDebug {
  protected:
    void SetUp() override {
        WfsmDebug::SetUp();
        const Environment variable("DORN_KZ_DEBUG_OUTPUT", "1");
        KZB_STORE store;
        linear_file(store, w);
        Calc_Eq_wfsm model;
        model.set_initial_current(4, 5.0);
        model.bind(store);
        sample(model, {}, 0.0, 0.0);
        sample(model, v, position, 1e-3);
        s = model.state();
    }
    const WoundField w;
    const Four v{30.0, -10.0, -20.0, 12.0};
    const double position = pi / 18.0;
    kzb::WfsmStep s;
};

TEST_F(WfsmDebugRows, currents_and_voltages) {
    const auto& i = s.current;
    auto lines = rows("VEKT_debug_IV.csv");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], printed("e", {0.0, 0.0, 0.0, 0.0, 5.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(lines[1],
              printed("e", {1e-3, i[0], i[1], i[2], i[3], v[0], v[1], v[2], v[3], s.neutral_voltage, position}));
    lines = rows("VEKT_debug_Itr_IV.csv");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1].substr(0, 27), printed("ei", {0.0, 1.0}) + ",");
    EXPECT_EQ(lines[3],
              printed("eie", {1e-3, 1.0, i[0], i[1], i[2], i[3], v[0], v[1], v[2], v[3], s.neutral_voltage, position}));
}

TEST_F(WfsmDebugRows, fluxes) {
    auto lines = rows("VEKT_debug_Flux.csv");
    ASSERT_EQ(lines.size(), 2U);
    // At position 0 without armature current: psi_k = mf cos(k 120 degrees) i_f, psi_f = lf i_f.
    const std::string start = printed(
        "exxxx", {0.0, 0.25, linear_flux(w, {0.0, 0.0, 5.0, 0.0}, 1), linear_flux(w, {0.0, 0.0, 5.0, 0.0}, 2), 6.0});
    EXPECT_EQ(lines[0], start);
    // The flux at the last estimate, next to that at the final currents.
    double u = 0.0;
    double f = 0.0;
    ASSERT_EQ(std::sscanf(lines[1].c_str(), "%*f,%lf,%*f,%*f,%lf", &u, &f), 2);
    EXPECT_NEAR(u, s.flux[0], 1e-12);
    EXPECT_NEAR(f, s.flux[3], 1e-12);
    const std::string last = printed("e", {1e-3}) + ",    1" + lines[1].substr(20);
    lines = rows("VEKT_debug_Itr_Flux.csv");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1], printed("e", {0.0}) + ",    1" + start.substr(20));
    EXPECT_EQ(lines[3], last);
}

TEST_F(WfsmDebugRows, inductances_and_resistances) {
    std::vector<double> row{1e-3};
    row.insert(row.end(), s.inductance.begin(), s.inductance.end());
    row.insert(row.end(), {0.5, 2.0});
    auto lines = rows("VEKT_debug_L.csv");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1], printed("exxxxxxxxxxxxxxxxee", row));
    row.insert(row.begin() + 1, 1.0);
    lines = rows("VEKT_debug_Itr_L.csv");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3], printed("eixxxxxxxxxxxxxxxxee", row));
}

TEST_F(WfsmDebugRows, torque_has_no_d_and_q_current) {
    const auto lines = rows("VEKT_debug_Trq.csv");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1], printed("e", {1e-3, s.Iamp, s.beta, 0.0, 0.0, s.current[3], 10.0, s.torque}));
}

TEST_F(WfsmDebugRows, amplitude_and_phase) {
    const auto& i = s.current;
    auto lines = rows("VEKT_debug_IampBeta.csv");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1], printed("eieeeeeed", {1e-3, 1.0, s.Iamp, s.beta, s.Id, s.Iq, i[3], position, 1.0}));
    lines = rows("VEKT_debug_Itr_IampBeta.csv");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3], printed("eie", {1e-3, 1.0, s.Iamp, s.beta, i[0], i[1], i[2], i[3], position}));
}

TEST_F(WfsmDebug, evaluation_writes_inductances_and_torque_alone) {
    const Environment variable("DORN_KZ_DEBUG_OUTPUT", "1");
    KZB_STORE store;
    linear_file(store);
    {
        Calc_Eq_wfsm model;
        model.bind(store);
        const Four i{1.0, 2.0, -3.0, 4.0};
        model.evaluate(i.data(), 0.0, 0.0);
    }
    for (const char* name : names) {
        const std::string text = name;
        const bool written = text == "VEKT_debug_L.csv" || text == "VEKT_debug_Trq.csv";
        EXPECT_EQ(rows(name).size(), written ? 1U : 0U) << name;
    }
}

// Six passes that run away from the solution: the step keeps the first, number 0, of those up to 5.
TEST_F(WfsmDebug, last_column_is_the_pass_that_the_step_kept) {
    const Environment variable("DORN_KZ_DEBUG_OUTPUT", "1");
    const Environment relaxation("DORN_KZ_DEBUG_ACCEL", "2.5");
    const Environment passes("DORN_KZ_DEBUG_NITR", "6");
    KZB_STORE store;
    linear_file(store);
    {
        Calc_Eq_wfsm model;
        model.bind(store);
        sample(model, {}, 0.0, 0.0);
        sample(model, {9.0, -4.0, -5.0, 10.0}, 0.0, 1e-3);
    }
    const auto lines = rows("VEKT_debug_IampBeta.csv");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1].substr(20, 7), ",    5,");
    EXPECT_EQ(lines[1].substr(lines[1].rfind(',')), ",0");
}

TEST_F(WfsmDebug, files_that_cannot_be_made_are_passed_over) {
    const Environment variable("DORN_KZ_DEBUG_OUTPUT", "1");
    for (const char* name : names) {
        fs::create_directory(name);
    }
    KZB_STORE store;
    linear_file(store);
    Calc_Eq_wfsm model;
    model.bind(store);
    EXPECT_TRUE(sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 0.0));
}

}  // namespace
}  // namespace kzb_test::wfsm_debug_test
