// A machine whose flux map is a formula, written as CSV text, and a build of it in memory.
//
//   psi_d = psi_m + l_d id + m_dq iq,   psi_q = l_q iq + m_qd id        (peak, amplitude-invariant)
// A linear map is reproduced by cubic splines to rounding, so tables compare with the formula.
#pragma once

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "gtest/gtest.h"
#include "kzb/build_pmsm.h"
#include "kzb/command.h"

namespace kzb::tool::synthetic {

inline constexpr double psi_m = 0.1;
inline constexpr double l_d = 2e-3;
inline constexpr double l_q = 5e-3;
inline constexpr double pi = 3.14159265358979323846;

inline double psi_d(double id) {
    return psi_m + l_d * id;
}
inline double psi_q(double iq) {
    return l_q * iq;
}

// A file of the test's own, gone with the object.
class TextFile {
  public:
    TextFile(const std::string& name, const std::string& text)
        : path_(fmt::format("{}{}_{}", testing::TempDir(), ::getpid(), name)) {  // tests run side by side
        std::ofstream(path_, std::ios::binary) << text;
    }
    ~TextFile() { std::remove(path_.c_str()); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

inline std::string linear_map(double low = -20.0, double high = 20.0, double step = 10.0) {
    std::string text = "id_A,iq_A,psi_d_Vs,psi_q_Vs\n";
    for (double id = low; id <= high; id += step) {
        for (double iq = low; iq <= high; iq += step) {
            text += fmt::format("{},{},{},{}\n", id, iq, psi_d(id), psi_q(iq));
        }
    }
    return text;
}

// A map over position: one row per (id, iq, theta) with the values of `row`: psi_d, psi_q, psi_0, torque.
using Row = std::function<std::array<double, 4>(double id, double iq, double theta_deg)>;
inline std::string position_map(const std::vector<double>& id, const std::vector<double>& iq,
                                const std::vector<double>& theta, const Row& row, bool with_torque = true) {
    std::string text = with_torque ? "id_A,iq_A,theta_e_deg,psi_d_Vs,psi_q_Vs,psi_0_Vs,torque_Nm\n"
                                   : "id_A,iq_A,theta_e_deg,psi_d_Vs,psi_q_Vs,psi_0_Vs\n";
    for (const double d : id) {
        for (const double q : iq) {
            for (const double t : theta) {
                const auto v = row(d, q, t);
                text += fmt::format("{},{},{},{},{},{}", d, q, t, v[0], v[1], v[2]);
                text += with_torque ? fmt::format(",{}\n", v[3]) : "\n";
            }
        }
    }
    return text;
}

inline std::vector<double> steps(double first, double step, int count) {
    std::vector<double> values;
    for (int k = 0; k < count; ++k) {
        values.push_back(first + step * k);
    }
    return values;
}

inline PmsmOptions options_for(const std::string& path, Application application) {
    PmsmOptions options;
    options.map_path = path;
    options.model.applications = {application};
    options.model.number_of_poles = 4;
    options.model.resistance = 0.5;
    options.machine.position_count = 24;
    options.grids.amplitude_nodes = 5;
    options.grids.phase_step = 15.0;
    options.grids.flux_nodes = 7;
    return options;
}

inline PmsmBuild build_text(const std::string& text, Application application,
                            const std::function<void(PmsmOptions&)>& change = {}) {
    const TextFile file("build_synthetic.csv", text);
    PmsmOptions options = options_for(file.path(), application);
    if (change) {
        change(options);
    }
    return build_pmsm(options);
}

// The nodes of an axis, from 1.
inline std::vector<double> axis_of(KZB_STORE* store, const char* category, const char* key, int axis) {
    std::vector<double> nodes;
    for (int n = 0; n < kzb_get_table_num_rows(category, key, axis, store); ++n) {
        nodes.push_back(kzb_get_table_axis_value(category, key, axis, n, store));
    }
    return nodes;
}

// Calls check(coordinates, value) for every grid point of a table.
inline void each_value(KZB_STORE* store, const char* category, const char* key,
                       const std::function<void(const std::vector<double>&, double)>& check) {
    const int dim = kzb_get_table_dim(category, key, store);
    ASSERT_GT(dim, 0) << category << "/" << key;
    std::vector<std::vector<double>> axes;
    for (int axis = 1; axis <= dim; ++axis) {
        axes.push_back(axis_of(store, category, key, axis));
    }
    std::vector<int> index(static_cast<std::size_t>(dim), 0);
    for (bool more = true; more;) {
        std::vector<double> at;
        for (std::size_t a = 0; a < index.size(); ++a) {
            at.push_back(axes[a][static_cast<std::size_t>(index[a])]);
        }
        check(at, kzb_get_table_value(category, key, index.data(), store));
        more = false;
        for (std::size_t a = index.size(); a-- > 0 && !more;) {
            if (++index[a] < static_cast<int>(axes[a].size())) {
                more = true;
            } else {
                index[a] = 0;
            }
        }
    }
}

inline std::vector<int> cyclic_of(KZB_STORE* store, const char* category, const char* key) {
    std::vector<int> flags;
    for (int axis = 1; axis <= kzb_get_table_dim(category, key, store); ++axis) {
        flags.push_back(kzb_get_table_cyclic_flag(category, key, axis, store));
    }
    return flags;
}

}  // namespace kzb::tool::synthetic
