// Debug files of the permanent-magnet model, against what printf makes of the same numbers.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "pmsm_files.h"
#include "support/files.h"

namespace kzb_test::pmsm_debug_test {
namespace {

using kzb::Calc_Eq;
namespace fs = std::filesystem;

// A directory of its own as the current one, and the variable that asks for debug files.
class PmsmDebug : public ::testing::Test {
  protected:
    void TearDown() override { unsetenv("DORN_KZ_DEBUG_OUTPUT"); }
    static std::string fields(std::initializer_list<double> values) {
        std::string line;
        for (const double value : values) {
            char field[64];
            std::snprintf(field, sizeof field, "%20.10e", value);
            if (!line.empty()) {
                line += ',';
            }
            line += field;
        }
        return line + "\n";
    }

  private:
    WorkingFolder folder_;
};

const char* const names[] = {"VEKT_debug_Flux.csv", "VEKT_debug_L.csv",         "VEKT_debug_I_beta_theta.csv",
                             "VEKT_debug_IV.csv",   "VEKT_debug_LossTable.csv", "VEKT_debug_FluxIntegral.csv"};

TEST_F(PmsmDebug, no_file_unless_asked_for_by_a_non_zero_integer) {
    for (const char* value : {"", "0", "on"}) {
        setenv("DORN_KZ_DEBUG_OUTPUT", value, 1);
        const Calc_Eq model;
        for (const char* name : names) {
            EXPECT_FALSE(fs::exists(name)) << name;
        }
    }
}

TEST_F(PmsmDebug, construction_deletes_files_of_earlier_releases) {
    for (const char* name : {"KZ_linkageflux.txt", "KZ_LdLq.txt", "KZ_other.txt"}) {
        std::ofstream(name) << "old";
    }
    const Calc_Eq model;
    EXPECT_FALSE(fs::exists("KZ_linkageflux.txt"));
    EXPECT_FALSE(fs::exists("KZ_LdLq.txt"));
    EXPECT_TRUE(fs::exists("KZ_other.txt"));
}

TEST_F(PmsmDebug, headers_stand_from_construction_on) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "2", 1);
    { const Calc_Eq model; }
    EXPECT_EQ(read_file(names[0]),
              "Time,Total_Flux_U,Total_Flux_V,Total_Flux_W,Induced_Voltage_of_Magnet_U,Induced_Voltage_of_Magnet_V,"
              "Induced_Voltage_of_Magnet_W\n");
    EXPECT_EQ(read_file(names[1]), "Time,Lu,Luv,Luw,Lvu,Lv,Lvw,Lwu,Lwv,Lw,R\n");
    EXPECT_EQ(read_file(names[2]), "Time,Iamp,Ibeta,theta\n");
    EXPECT_EQ(read_file(names[3]), "Time,I_u,I_v,I_w,V_u,V_v,V_w,V_c\n");
    EXPECT_EQ(read_file(names[4]), "Time, AC_resistance, DC_resistance\n");
    EXPECT_TRUE(fs::exists(names[5]));
    EXPECT_EQ(read_file(names[5]), "");
}

TEST_F(PmsmDebug, rows_of_a_harmonic_step) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    std::string flux, inductance, polar, iv, loss;
    {
        KZB_STORE store;
        harmonic_file(store);
        Calc_Eq model;
        bind(model, store, kzb::harmonic);
        const kzb::Phases v = {10.0, -3.0, 2.0};
        for (int n = 0; n < 4; ++n) {
            const double time = n * 0.0009765625;
            sample(model, v, n * 0.05, time, false);
            const kzb::PmsmStep& s = model.state();
            const kzb::Phases e = n < 2 ? kzb::Phases{} : s.induced_voltage;
            const kzb::Phases& m = s.magnet_flux;
            const kzb::Matrix3& l = s.inductance;
            flux += fields({time, m[0], m[1], m[2], e[0], e[1], e[2]});
            inductance += fields({time, l[0], l[1], l[2], l[3], l[4], l[5], l[6], l[7], l[8], s.resistance[0]});
            polar +=
                fields({time, s.current_amplitude, s.current_phase, n * 0.05, s.current_amplitude, s.current_phase});
            iv += fields({time, s.current[0], s.current[1], s.current[2], 10.0, -3.0, 2.0, s.neutral_voltage});
            const double dt = s.time - s.time_previous;
            const double rpm = dt == 0.0 ? 0.0 : (s.position - s.position_previous) / dt / (2.0 * pi) * 60.0;
            loss += fields({0.0, 0.0, 0.5, s.current_amplitude, s.current_phase, rpm, 0.0, 0.0});
            model.accept();
        }
    }
    const auto body = [](const char* name) {
        const std::string text = read_file(name);
        return text.substr(text.find('\n') + 1);
    };
    EXPECT_EQ(body(names[0]), flux);
    EXPECT_EQ(body(names[1]), inductance);
    EXPECT_EQ(body(names[2]), polar);
    EXPECT_EQ(body(names[3]), iv);
    EXPECT_EQ(body(names[4]), loss);
}

TEST_F(PmsmDebug, iron_loss_adds_a_line) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    {
        KZB_STORE store;
        ld_lq_file(store);
        constant(store, "loss_table", "iron_loss", {nodes(0, 100, 2)}, 40.0);
        Calc_Eq model;
        bind(model, store, kzb::ld_lq, 1);
        sample(model, {}, 0.0, 0.5);
        model.set_position(1.0);
        model.set_time(1.0);
        model.torque_from_currents();
    }
    char line[128];
    const double omega = 2.0 * pi * (1.0 / 0.5 / (2.0 * pi) * 60.0) / 60.0;
    std::snprintf(line, sizeof line, "TotalLoss, omega, LossTorque, %10.5e, %10.5e, %10.5e\n", 40.0, omega,
                  40.0 / omega);
    const std::string text = read_file(names[4]);
    EXPECT_NE(text.find(line), std::string::npos) << text;
}

TEST_F(PmsmDebug, flux_integral_rows_have_23_fields_and_a_header_only_from_time_zero) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    for (const double time : {0.25, 0.0}) {
        {
            KZB_STORE store;
            basics(store);
            constant(store, "current_table", "id", {nodes(-1, 1, 2), nodes(-1, 1, 2), nodes(0, 360, 2)}, 3.0);
            constant(store, "flux_table", "fd_noload", {nodes(0, 360, 2)}, 0.1);
            constant(store, "harmonic_torque", "torque_ibeta", {nodes(0, 1, 2), nodes(0, 1, 2), nodes(0, 1, 2)}, 0.0);
            Calc_Eq model;
            bind(model, store, kzb::flux_integral);
            double state[3] = {0.1, 0.2, 0.0};
            double derivative[3];
            model.flux_derivative(30.0, 0.0, 0.0, 0.0, time, state, derivative, 1, 1, 1);
        }
        std::string text = read_file(names[5]);
        const std::string header =
            "time, m_Eddy[0] + m_Hys[0], vind.d, vind.q, pssvind.d, pssvind.q, Vin.d, Vin.q, Rid, Riq, wFq, wFd, "
            "i_coil_d, i_coil_q, i_loss_d,i_loss_q, Vu, Vv, Vw, theta_e_rad, Fd, Fq, BW\n";
        if (time == 0.0) {
            ASSERT_EQ(text.substr(0, header.size()), header);
            text.erase(0, header.size());
        }
        char start[128];
        std::snprintf(start, sizeof start, "%lf,%20.20e,", time, 0.0);
        EXPECT_EQ(text.substr(0, std::string(start).size()), start);
        EXPECT_EQ(std::count(text.begin(), text.end(), ','), 22);
        char voltage[128];
        std::snprintf(voltage, sizeof voltage, ",%20.20e,%20.20e,%20.20e,", 30.0, 0.0, 0.0);
        EXPECT_NE(text.find(voltage), std::string::npos) << text;
    }
}

TEST_F(PmsmDebug, directory_without_write_permission_is_silent) {
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    fs::create_directory("VEKT_debug_Flux.csv");  // fopen for writing fails on a directory
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    EXPECT_TRUE(sample(model, {}, 0.0, 0.0));
}

}  // namespace
}  // namespace kzb_test::pmsm_debug_test
