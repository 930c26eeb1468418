// Where old tables go: every row of the mapping, and what it rests on, the motor and accuracy type of `control`.
#include "store/format/legacy_mapping.h"

#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

struct Application {
    int motor_type;
    int accuracy_type;
};
constexpr Application ld_lq{10000, 1};
constexpr Application simple{10000, 2};
constexpr Application harmonic{10000, 3};
constexpr Application stepping{10002, 0};
constexpr Application solenoid{10004, 0};
constexpr Application synchronous{10005, 0};
constexpr Application unknown{10006, 3};
const std::vector<Application> all{ld_lq, simple, harmonic, stepping, solenoid, synchronous, unknown};

struct Row {
    std::vector<std::string> names;
    std::vector<Application> applications;
    int dim;
    std::string category;  // empty: the old name
};

const std::vector<Row> mapped_rows{
    {{"d_inductance", "q_inductance"}, all, 2, "dq_inductance"},
    {{"inductance"}, {harmonic}, 3, "harmonic_inductance"},
    {{"inductance"}, {ld_lq, simple, stepping, solenoid, synchronous, unknown}, 3, "inductance"},
    {{"flux"}, {simple, synchronous, stepping}, 2, "mag_flux"},
    {{"flux"}, {harmonic}, 4, "current_flux"},
    {{"flux"}, {solenoid}, 2, "distance_flux"},
    {{"flux"}, {ld_lq, unknown}, 2, "flux"},
    {{"magflux"}, {harmonic}, 2, "current_flux"},
    {{"magflux"}, {ld_lq, simple, stepping, solenoid, synchronous, unknown}, 2, "magflux"},
    {{"torque", "torque_ibeta", "force"}, {simple, stepping}, 2, "torque"},
    {{"torque", "torque_ibeta", "force"}, {simple, stepping}, 4, "torque"},
    {{"torque", "torque_ibeta", "force"}, {harmonic}, 2, "harmonic_torque"},
    {{"torque", "torque_ibeta", "force"}, {harmonic}, 3, "harmonic_torque"},
    {{"torque", "torque_ibeta", "force"}, {harmonic}, 4, "pmsm_torque"},
    {{"torque", "torque_ibeta", "force"}, {harmonic}, 5, "pmsm_torque"},
    {{"torque", "torque_ibeta", "force"}, {synchronous, solenoid}, 2, "distance_force"},
    {{"torque", "torque_ibeta", "force"}, {ld_lq, unknown}, 2, ""},
    {{"attractive_force"}, all, 2, "distance_force"},
    {{"mag_flux", "hysloss", "Flux", "torque2", "x"}, all, 2, ""},
};

class LegacyMapping : public LegacyFile {
  protected:
    // One table with one value, nodes 1; the outer sizes are 1.
    static std::string binary(const Application& application, const std::string& name, int dim) {
        LegacyBytes file;
        file.control(application.motor_type, application.accuracy_type)
            .table(name, std::vector<int>(static_cast<std::size_t>(dim), 0));
        for (int a = 2; a < dim; ++a) {
            file.int32(1).float64(1.0);
        }
        return file.block({1}, {{1, 42}}).str();
    }
    static std::string ascii(const Application& application, const std::string& name, int dim) {
        LegacyText file;
        file.control(application.motor_type, application.accuracy_type)
            .table(name, std::vector<int>(static_cast<std::size_t>(dim), 0));
        for (int a = 2; a < dim; ++a) {
            file.line("1").line("1.0");
        }
        return file.block({1}, {{1, 42}}).str();
    }
    void expect_place(const std::string& bytes, bool as_ascii, const std::string& category, const std::string& name) {
        store_ = KZB_STORE();
        EXPECT_EQ(as_ascii ? read_ascii_file(bytes) : read(bytes), 0);
        const KZB_TABLE* found = find_table(store_, category, name);
        ASSERT_NE(found, nullptr) << name << " not in " << category;
        EXPECT_EQ(numbers(found->values), std::vector<double>{42});
        EXPECT_EQ(store_.categories.size(), 3U);  // control, the table's, information
    }
};

TEST_F(LegacyMapping, every_row_holds_in_both_forms) {
    for (const Row& row : mapped_rows) {
        for (const std::string& name : row.names) {
            for (const Application& application : row.applications) {
                SCOPED_TRACE(name + " " + std::to_string(application.motor_type) + " " +
                             std::to_string(application.accuracy_type));
                const std::string category = row.category.empty() ? name : row.category;
                expect_place(binary(application, name, row.dim), false, category, name);
                expect_place(ascii(application, name, row.dim), true, category, name);
            }
        }
    }
}

TEST_F(LegacyMapping, all_stepping_motor_types_are_one_application) {
    for (const int motor_type : {10001, 10002, 10003}) {
        expect_place(binary({motor_type, 3}, "flux", 2), false, "mag_flux", "flux");
    }
}

TEST_F(LegacyMapping, other_accuracy_type_is_simple_harmonic_in_binary_and_nothing_in_ascii) {
    for (const int accuracy_type : {0, 4, -1}) {
        expect_place(binary({10000, accuracy_type}, "flux", 2), false, "mag_flux", "flux");
        expect_place(ascii({10000, accuracy_type}, "flux", 2), true, "flux", "flux");
        EXPECT_EQ(told("application is not found."), 0U);
    }
}

TEST_F(LegacyMapping, table_without_a_control_section_keeps_its_name) {
    LegacyBytes file;
    EXPECT_EQ(read(two_axes(file.table("flux", {0, 0})).str()), 0);
    expect_two_axes(table("flux", "flux"));
}

// The record is that of the file, not the application selected in the store.
TEST_F(LegacyMapping, selected_application_of_the_store_has_no_part) {
    store_.motor = "LinearSolenoid";
    EXPECT_EQ(read(binary(harmonic, "flux", 4)), 0);
    EXPECT_NE(find_table(store_, "current_flux", "flux"), nullptr);
    EXPECT_EQ(store_.motor, "LinearSolenoid");
}

TEST_F(LegacyMapping, category_of_tables_is_shared) {
    LegacyBytes file;
    two_axes(file.control(10004, 0).table("force", {0, 0}));
    EXPECT_EQ(read(two_axes(file.table("attractive_force", {1, 0})).str()), 0);
    EXPECT_EQ(find_category(store_, "distance_force")->tables.size(), 2U);
    expect_two_axes(table("distance_force", "force"));
    expect_two_axes(table("distance_force", "attractive_force"));
}

}  // namespace
}  // namespace kzb::test
