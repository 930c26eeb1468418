// A machine from a binary file of the older layout, stepped: it runs as the same machine in the present layout does,
// whose runs other tests hold against the equations.
#include <gtest/gtest.h>

#include <fstream>

#include "interface/model_file.h"

namespace kzb_test::legacy_run_test {
namespace {

constexpr double h = 0x1p-13;  // s

// Sections of the older layout, byte by byte.
class OldFile {
  public:
    OldFile() {
        static int count = 0;
        path_ = (std::filesystem::temp_directory_path() /
                 ("kzb_old_" + std::to_string(::getpid()) + "_" + std::to_string(count++) + ".kzb"))
                    .string();
    }
    OldFile(const OldFile&) = delete;
    OldFile& operator=(const OldFile&) = delete;
    ~OldFile() { std::filesystem::remove(path_); }

    OldFile& text(const std::string& bytes) {
        bytes_ += bytes;
        return *this;
    }
    OldFile& word(int value) { return raw(&value, sizeof value); }
    OldFile& number(double value) { return raw(&value, sizeof value); }
    OldFile& key(const std::string& name) { return text("\"").text(name).text("\""); }
    OldFile& table(const std::string& name, const std::vector<Point>& axes,
                   const std::function<double(const Point&)>& value, std::size_t cyclic) {
        text("*table\n").word(1).text("*").text(name).text("\n").word(0).word(static_cast<int>(axes.size()));
        for (std::size_t axis = 1; axis <= axes.size(); ++axis) {
            word(axis == cyclic ? 1 : 0);
        }
        body(axes, {}, value);
        return *this;
    }
    const std::string& path() const {
        std::ofstream(path_, std::ios::binary) << bytes_;
        return path_;
    }

  private:
    OldFile& raw(const void* from, std::size_t size) {
        bytes_.append(static_cast<const char*>(from), size);
        return *this;
    }
    void body(const std::vector<Point>& axes, Point at, const std::function<double(const Point&)>& value) {
        const Point& axis = axes[at.size()];
        const bool block = axes.size() - at.size() == 2;
        word(static_cast<int>(axis.size()));
        if (block) {
            word(static_cast<int>(axes.back().size()));
            for (const double node : axes.back()) {
                number(node);
            }
        }
        at.push_back(0.0);
        for (const double node : axis) {
            at.back() = node;
            number(node);
            if (!block) {
                body(axes, at, value);
                continue;
            }
            Point x = at;
            x.push_back(0.0);
            for (const double column : axes.back()) {
                x.back() = column;
                number(value(x));
            }
        }
    }
    std::string bytes_;
    std::string path_;
};

constexpr double resistance = 0.4;
constexpr double self = 4e-3;
constexpr double flux = 0.15;
constexpr double torque = 2.5;

void add_frame(OldFile& file, int accuracy_type) {
    file.text("*version\n").number(901.0);
    file.text("*control\n").word(0).key("motor_type").word(10000).key("accuracy_type").word(accuracy_type);
    file.key("number_of_poles").word(4).key("beta_zero").number(0.0);
    file.text("*parameter\n").word(0).word(1).key("RU").number(resistance);
    file.text("*settings\n").word(0).word(1).key("Winding_Pattern_Flag").text("i").word(0);
}

void expect_same_run(const std::string& old_file, ModelFile& present) {
    Calculator old_calc(old_file);
    Calculator calc(present);
    ASSERT_EQ(old_calc.status, 0);
    ASSERT_EQ(calc.status, 0);
    EXPECT_EQ(kzbcalcCheckMotorType(old_calc), 10000);
    for (KZB_CALC* handle : {static_cast<KZB_CALC*>(old_calc), static_cast<KZB_CALC*>(calc)}) {
        kzbcalcSetData(handle);
    }
    double largest = 0.0;
    for (int k = 0; k < 40; ++k) {
        for (KZB_CALC* handle : {static_cast<KZB_CALC*>(old_calc), static_cast<KZB_CALC*>(calc)}) {
            ASSERT_EQ(kzbcalcSetTime(h * k, handle), 0);
            ASSERT_EQ(kzbcalcSetDisplacement(1.3 * k, handle), 0);
            for (int phase = 1; phase <= 3; ++phase) {
                const double angle = 400.0 * h * k - 2.0 * std::numbers::pi / 3.0 * (phase - 1);
                ASSERT_EQ(kzbcalcSetVoltage(phase, 30.0 * std::cos(angle), handle), 0);
            }
            ASSERT_EQ(kzbcalcExecute(handle), 0);
        }
        for (int phase = 1; phase <= 3; ++phase) {
            EXPECT_EQ(kzbcalcGetCurrent(phase, old_calc), kzbcalcGetCurrent(phase, calc)) << k;
            largest = std::max(largest, std::abs(kzbcalcGetCurrent(phase, calc)));
        }
        EXPECT_EQ(kzbcalcGetTorque(old_calc), kzbcalcGetTorque(calc)) << k;
        kzbcalcUpdate(old_calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_GT(largest, 1.0);
    EXPECT_LT(largest, 1e6);
}

TEST(LegacyRun, harmonic_machine_runs_as_in_the_present_layout) {
    ModelFile present;
    rotary_frame(present, 3, resistance);
    add_harmonic(present, self, 0.0, flux, torque);

    OldFile file;
    add_frame(file, 3);
    const Point angles = every(5.0, 0.0, 180.0);
    file.table(
            "flux", {currents, betas, angles, three}, [](const Point& x) { return sine_flux(flux, x[2], x[3]); }, 3)
        .table("inductance", {currents, betas, angles, nine}, symmetric_matrix(self, 0.0), 3)
        .table("torque_ibeta", {betas, angles, currents}, constant(torque), 2);
    expect_same_run(file.path(), present);
}

// The d flux stands as a table in an old file; its first value is the one of the machine.
TEST(LegacyRun, ld_lq_machine_takes_its_flux_from_the_table) {
    ModelFile present;
    rotary_frame(present, 1, resistance);
    add_ld_lq(present, 3e-3, 5e-3, 0.2);

    OldFile file;
    add_frame(file, 1);
    file.table(
            "d_flux", {{0.0, 1.0}, {0.0, 1.0}}, [](const Point& x) { return 0.2 + x[0] + x[1]; }, 0)
        .table("d_inductance", {betas, currents}, constant(3e-3), 0)
        .table("q_inductance", {betas, currents}, constant(5e-3), 0);
    expect_same_run(file.path(), present);
}

TEST(LegacyRun, selection_of_the_application_has_nothing_to_load) {
    OldFile file;
    add_frame(file, 1);
    file.table("d_flux", {{0.0}, {0.0}}, constant(0.2), 0)
        .table("d_inductance", {betas, currents}, constant(3e-3), 0)
        .table("q_inductance", {betas, currents}, constant(5e-3), 0);
    testing::internal::CaptureStdout();
    const Calculator calc(file.path());
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "The table values have been already read in case of old formats files.\n");
    EXPECT_EQ(calc.status, 0);
}

}  // namespace
}  // namespace kzb_test::legacy_run_test
