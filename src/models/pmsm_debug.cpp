#include "models/pmsm_debug.h"

#include <charconv>
#include <cstdio>
#include <string>

#include "diagnostics/number_text.h"

namespace kzb {
namespace {

// "%lf"
void append_fixed(std::string& text, double value) {
    char digits[512];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6).ptr;
    text.append(digits, end);
}

}  // namespace

void PmsmDebug::open() {
    std::remove("KZ_linkageflux.txt");
    std::remove("KZ_LdLq.txt");
    debug_level = debug_output_level();
    if (debug_level == 0) {
        return;
    }
    flux.create("VEKT_debug_Flux.csv",
                "Time,Total_Flux_U,Total_Flux_V,Total_Flux_W,Induced_Voltage_of_Magnet_U,"
                "Induced_Voltage_of_Magnet_V,Induced_Voltage_of_Magnet_W\n");
    inductance.create("VEKT_debug_L.csv", "Time,Lu,Luv,Luw,Lvu,Lv,Lvw,Lwu,Lwv,Lw,R\n");
    current_polar.create("VEKT_debug_I_beta_theta.csv", "Time,Iamp,Ibeta,theta\n");
    current_voltage.create("VEKT_debug_IV.csv", "Time,I_u,I_v,I_w,V_u,V_v,V_w,V_c\n");
    loss_table.create("VEKT_debug_LossTable.csv", "Time, AC_resistance, DC_resistance\n");
    flux_integral.create("VEKT_debug_FluxIntegral.csv", "");
}

void PmsmDebug::flux_integral_row(double time, const double* fields, int count) {
    if (!flux_integral.is_open()) {
        return;
    }
    // Only a first row at time 0.0 brings the header, as established.
    if (time < 1e-8 && !flux_integral_header_written) {
        flux_integral_header_written = true;
        flux_integral.write(
            "time, m_Eddy[0] + m_Hys[0], vind.d, vind.q, pssvind.d, pssvind.q, Vin.d, Vin.q, Rid, Riq, wFq, wFd, "
            "i_coil_d, i_coil_q, i_loss_d,i_loss_q, Vu, Vv, Vw, theta_e_rad, Fd, Fq, BW\n");
    }
    std::string line;
    append_fixed(line, time);
    for (int i = 0; i < count; ++i) {
        line += ',';
        append_scientific(line, fields[i], 20, 20);
    }
    line += '\n';
    flux_integral.write(line);
}

}  // namespace kzb
