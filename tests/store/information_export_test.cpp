// The document of a generic model's ports and parameters, byte for byte.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <utility>
#include <variant>

#include "store/own_folder.h"
#include "store/test_store.h"

namespace {

using namespace kzb_test;

using Value = std::variant<int, double, const char*>;
using Fields = std::initializer_list<std::pair<const char*, Value>>;

class InformationExport : public OwnFolder {
  protected:
    void SetUp() override {
        OwnFolder::SetUp();
        kzb_put_int("control", "motor_type", 10008, store_);
        kzb_put_int("parameter", "any", 0, store_);
    }
    void put(const std::string& category, Fields fields) {
        for (const auto& [key, value] : fields) {
            if (const int* const number = std::get_if<int>(&value)) {
                kzb_put_int(category.c_str(), key, *number, store_);
            } else if (const double* const real = std::get_if<double>(&value)) {
                kzb_put_double(category.c_str(), key, *real, store_);
            } else {
                kzb_put_string(category.c_str(), key, std::get<const char*>(value), store_);
            }
        }
    }
    // Record `place` of a list "a;b".
    void record(const std::string& list, const std::string& name, int place, Fields fields) {
        put(list + ";0;" + name + ';' + std::to_string(place) + ';', fields);
    }
    void source(int place, int terminal) {
        record("input_port_list", "source", place, {{"id", place + 1}, {"terminal_id", terminal}});
    }
    void port(const char* list, int place) { record("output_port_list", list, place, {{"id", place + 1}}); }
    void element(int place, Fields fields) { record("element_type_list", "element_type", place, fields); }
    void motion(int place, Fields fields) { record("motion_condition_list", "motion_condition", place, fields); }
    void user_parameters(int count) { put("num_user_specified_parameter", {{"num_user_specified_parameter", count}}); }

    std::string exported() {
        EXPECT_EQ(kzb_export_information(store_, "info.xml"), 0);
        EXPECT_EQ(kzb_has_error(store_), 0);
        return content("info.xml");
    }
    // The document of the given counts with the lists of `body` and no input file.
    static std::string document(const std::array<int, 6>& counts, const std::string& body, const char* path = "") {
        const char* const names[] = {"total_input_ports",         "elec_output_ports",     "vprobe_output_ports",
                                     "torque_force_output_ports", "ironloss_output_ports", "userparam_output_ports"};
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<GenericModelInfo>\n\t<filename><![CDATA[";
        text += std::string(path) + "]]></filename>\n\t<parameters>\n";
        for (std::size_t i = 0; i < counts.size(); ++i) {
            text +=
                std::string("\t\t<parameter type=\"") + names[i] + "\">" + std::to_string(counts[i]) + "</parameter>\n";
        }
        return text + "\t</parameters>\n" + body + "</GenericModelInfo>\n";
    }

    TestStore store_;
};

TEST_F(InformationExport, model_of_nothing_has_counts_alone) {
    EXPECT_EQ(exported(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
              "<GenericModelInfo>\n"
              "\t<filename><![CDATA[]]></filename>\n"
              "\t<parameters>\n"
              "\t\t<parameter type=\"total_input_ports\">0</parameter>\n"
              "\t\t<parameter type=\"elec_output_ports\">0</parameter>\n"
              "\t\t<parameter type=\"vprobe_output_ports\">0</parameter>\n"
              "\t\t<parameter type=\"torque_force_output_ports\">0</parameter>\n"
              "\t\t<parameter type=\"ironloss_output_ports\">0</parameter>\n"
              "\t\t<parameter type=\"userparam_output_ports\">0</parameter>\n"
              "\t</parameters>\n"
              "</GenericModelInfo>\n");
}

// Each kind of record a number of its own: sources 2, coils 3, motions 4; resistors 5, constant coils 6, capacitors 7;
// probes 8.
TEST_F(InformationExport, counts_sum_the_lists_of_their_ports) {
    for (int i = 0; i < 2; ++i) {
        record("input_port_list", "source", i, {{"id", 1}});
    }
    const std::pair<const char*, int> outputs[] = {
        {"coil_fem", 3}, {"resistor", 5}, {"coil_const", 6}, {"capacitor", 7}, {"voltage_probe", 8}};
    for (const auto& [list, count] : outputs) {
        for (int i = 0; i < count; ++i) {
            port(list, i);
        }
    }
    for (int i = 0; i < 4; ++i) {
        motion(i, {{"id", i + 1}});
    }
    kzb_put_int("ironloss", "table", 1, store_);
    user_parameters(-9);
    const std::string text = exported();
    const std::string head = document({2 + 3 + 4, 3 + 5 + 6 + 7, 8, 4, 1, -9}, "");
    EXPECT_EQ(text.substr(0, text.find("\t<entry")), head.substr(0, head.find("</GenericModelInfo>")));
}

TEST_F(InformationExport, whole_model_in_the_order_of_its_lists) {
    source(0, 11);
    source(1, 7);
    port("coil_fem", 0);
    port("resistor", 0);
    port("voltage_probe", 0);
    // Kinds mixed: each keeps the order of the file.
    element(0, {{"type", -3}, {"name", "Choke"}, {"inductance", 0.0025}});
    element(1, {{"type", 1},
                {"name", "Coil A"},
                {"resistance", 0.5},
                {"coef_flux", 1.25},
                {"coef_turns2", 40.0},
                {"base_temperature", 293.15},
                {"coef_temperature", 3810.0}});
    element(2, {{"type", -1}, {"name", "R1"}, {"resistance", 1e6}});
    element(3, {{"type", -50}, {"name", "Probe"}});
    element(4, {{"type", -2}, {"name", "C1"}, {"capacitance", 4.7e-6}});
    element(5, {{"type", 1},
                {"name", "Coil B"},
                {"resistance", 1.0 / 3.0},
                {"coef_flux", 1.0},
                {"coef_turns2", 0.0},
                {"base_temperature", 273.15},
                {"coef_temperature", -0.001}});
    element(6, {{"type", -1}, {"name", "R2"}, {"resistance", 1234567.0}});
    motion(0, {{"type", 1}, {"name", "Rotor"}, {"coef_force", 1.5}});
    motion(1, {{"type", 0}, {"name", "Plunger"}, {"coef_force", 1e-5}});
    motion(2, {{"type", -4}, {"name", "Other"}});
    const int size = 1;
    kzb_create_table("ironloss", "table", 1, &size, store_);
    user_parameters(2);
    put("user_specified_parameter1", {{"title", "Loss"}, {"coef_output_port", 2.0}, {"table_id", 5}});
    put("user_specified_parameter2", {{"title", "Field"}, {"coef_output_port", 0.1}});
    const auto item = [](const std::string& name, const std::string& value, const std::string& unit) {
        return "\t\t<item>\n\t\t\t<name><![CDATA[" + name + "]]></name>\n" +
               (value.empty() ? "" : "\t\t\t<value>" + value + "</value>\n") +
               (unit.empty() ? "" : "\t\t\t<unit>" + unit + "</unit>\n") + "\t\t</item>\n";
    };
    const auto list = [](const std::string& type, const std::string& items) {
        return "\t<entry type=\"" + type + "\">\n" + items + "\t</entry>\n";
    };
    const std::string body =
        list("InputSource", item("11", "", "") + item("7", "", "")) +
        list("FEMCoil_res", item("Coil A", "0.5", "Ohm") + item("Coil B", "0.333333", "Ohm")) +
        list("AdvancedFEMCoilCoef", item("Coil A", "1.25", "") + item("Coil B", "1", "")) +
        list("AdvancedTurnCoef", item("Coil A", "40", "") + item("Coil B", "0", "")) +
        list("AdvancedBaseTemp", item("Coil A", "20", "C") + item("Coil B", "0", "C")) +
        list("AdvancedTempCoef", item("Coil A", "3810", "ppm/C") + item("Coil B", "-0.001", "ppm/C")) +
        list("Resistance", item("R1", "1e+06", "Ohm") + item("R2", "1.23457e+06", "Ohm")) +
        list("Capacitance", item("C1", "4.7e-06", "F")) + list("Inductance", item("Choke", "0.0025", "H")) +
        list("MotionInitPos", item("Rotor", "0", "rad") + item("Plunger", "0", "m") + item("Other", "0", "rad")) +
        list("AdvancedTorqueCoef", item("Rotor", "1.5", "") + item("Plunger", "1e-05", "") + item("Other", "0", "")) +
        list("AdvancedUserOutputCoef", item("Loss", "2", "") + item("Field", "0.1", ""));
    EXPECT_EQ(exported(), document({2 + 1 + 3, 2, 1, 3, 1, 2}, body));
}

// One list written out, to hold the helper of the test above to the letter.
TEST_F(InformationExport, items_have_name_value_and_unit_on_lines_of_their_own) {
    source(0, -3);
    element(0, {{"type", -1}, {"name", "R"}, {"resistance", 2.5}});
    EXPECT_EQ(exported(), document({1, 0, 0, 0, 0, 0},
                                   "\t<entry type=\"InputSource\">\n"
                                   "\t\t<item>\n"
                                   "\t\t\t<name><![CDATA[-3]]></name>\n"
                                   "\t\t</item>\n"
                                   "\t</entry>\n"
                                   "\t<entry type=\"Resistance\">\n"
                                   "\t\t<item>\n"
                                   "\t\t\t<name><![CDATA[R]]></name>\n"
                                   "\t\t\t<value>2.5</value>\n"
                                   "\t\t\t<unit>Ohm</unit>\n"
                                   "\t\t</item>\n"
                                   "\t</entry>\n"));
}

TEST_F(InformationExport, absent_values_are_0_and_absent_names_empty) {
    element(0, {{"type", -2}});
    user_parameters(1);
    motion(0, {{"id", 1}});
    const std::string nameless = "\t\t<item>\n\t\t\t<name><![CDATA[]]></name>\n\t\t\t<value>0</value>\n";
    EXPECT_EQ(exported(), document({1, 0, 0, 1, 0, 1}, "\t<entry type=\"Capacitance\">\n" + nameless +
                                                           "\t\t\t<unit>F</unit>\n\t\t</item>\n\t</entry>\n"
                                                           "\t<entry type=\"MotionInitPos\">\n" +
                                                           nameless +
                                                           "\t\t\t<unit>m</unit>\n\t\t</item>\n\t</entry>\n"
                                                           "\t<entry type=\"AdvancedTorqueCoef\">\n" +
                                                           nameless +
                                                           "\t\t</item>\n\t</entry>\n"
                                                           "\t<entry type=\"AdvancedUserOutputCoef\">\n" +
                                                           nameless + "\t\t</item>\n\t</entry>\n"));
}

// Records are read by their place from 0 up to their number: one that is missing reads as nothing.
TEST_F(InformationExport, gap_in_a_list_reads_as_an_empty_record) {
    source(0, 5);
    source(4, 6);
    const std::string text = exported();
    EXPECT_NE(
        text.find("\t\t\t<name><![CDATA[5]]></name>\n\t\t</item>\n\t\t<item>\n\t\t\t<name><![CDATA[0]]></name>\n"),
        std::string::npos);
    EXPECT_EQ(text.find("[6]"), std::string::npos);
}

TEST_F(InformationExport, names_are_not_escaped) {
    element(0, {{"type", -1}, {"name", "a]]>b<&\"\n\t"}, {"resistance", 1.0}});
    EXPECT_NE(exported().find("\t\t\t<name><![CDATA[a]]>b<&\"\n\t]]></name>\n"), std::string::npos);
}

TEST_F(InformationExport, numbers_have_six_significant_digits) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> numbers[] = {
        {0.0, "0"},           {-0.0, "-0"},         {1.0, "1"},
        {0.1 + 0.2, "0.3"},   {123456.0, "123456"}, {1234567.0, "1.23457e+06"},
        {999999.5, "1e+06"},  {0.0001, "0.0001"},   {0.00001, "1e-05"},
        {-1e-300, "-1e-300"}, {1e300, "1e+300"},    {2.0 / 3.0, "0.666667"},
        {infinity, "inf"},    {-infinity, "-inf"},  {std::numeric_limits<double>::quiet_NaN(), "nan"},
    };
    int place = 0;
    for (const auto& [number, text] : numbers) {
        element(place++, {{"type", -1}, {"resistance", number}});
    }
    const std::string text = exported();
    std::size_t at = 0;
    for (const auto& [number, expected] : numbers) {
        at = text.find("<value>", at) + 7;
        EXPECT_EQ(text.substr(at, text.find('<', at) - at), expected);
    }
}

TEST_F(InformationExport, file_name_is_the_one_that_was_read) {
    {
        const TestStore written;
        kzb_put_int("control", "motor_type", 10008, written);
        kzb_put_int("parameter", "any", 0, written);
        kzb_put_int("input_port_list;0;source;0;", "terminal_id", 5, written);
        kzb_writer("model.kzb", written);
    }
    const TestStore read;
    ASSERT_EQ(kzb_reader("model.kzb", read), 0);
    EXPECT_EQ(kzb_export_information(read, "info.xml"), 0);
    const std::string text = content("info.xml");
    EXPECT_NE(text.find("\t<filename><![CDATA[model.kzb]]></filename>\n"), std::string::npos);
    EXPECT_NE(text.find("[5]"), std::string::npos);
}

TEST_F(InformationExport, any_kind_of_parameter_counts_as_the_iron_loss_table) {
    kzb_put_string("ironloss", "table", "not a table", store_);
    EXPECT_EQ(exported(), document({0, 0, 0, 0, 1, 0}, ""));
}

TEST_F(InformationExport, stated_number_of_user_parameters_is_told_even_when_negative_or_unbacked) {
    user_parameters(-1);
    EXPECT_EQ(exported(), document({0, 0, 0, 0, 0, -1}, ""));
    user_parameters(std::numeric_limits<int>::max());
    const std::string text = exported();
    EXPECT_NE(text.find("userparam_output_ports\">2147483647<"), std::string::npos);
    // Bounded: nothing stands behind the number.
    EXPECT_LT(text.size(), 1000000U);
}

TEST_F(InformationExport, other_models_are_refused_without_a_file) {
    kzb_put_int("control", "motor_type", 10000, store_);
    EXPECT_EQ(kzb_export_information(store_, "info.xml"), 1);
    EXPECT_EQ(kzb_has_error(store_), 0);
    EXPECT_FALSE(std::filesystem::exists("info.xml"));
    // An error that stands isn't touched.
    kzb_put_int("control", "motor_type", 10008, store_);
    EXPECT_EQ(kzb_export_information(store_, "absent/info.xml"), 1);
    kzb_put_int("control", "motor_type", 10000, store_);
    EXPECT_EQ(kzb_export_information(store_, "info.xml"), 1);
    EXPECT_EQ(kzb_has_error(store_), 90032);
    const TestStore empty;
    EXPECT_EQ(kzb_export_information(empty, "info.xml"), 1);
    EXPECT_EQ(kzb_export_information(nullptr, "info.xml"), 1);
    EXPECT_FALSE(std::filesystem::exists("info.xml"));
}

TEST_F(InformationExport, file_that_can_not_be_opened_is_error_90032) {
    for (const char* const path : {"absent/info.xml", "", static_cast<const char*>(nullptr)}) {
        kzb_reset_error(store_);
        EXPECT_EQ(kzb_export_information(store_, path), 1);
        EXPECT_EQ(kzb_has_error(store_), 90032);
    }
}

TEST_F(InformationExport, file_is_written_anew) {
    std::ofstream("info.xml") << std::string(100000, 'x');
    EXPECT_EQ(exported(), document({0, 0, 0, 0, 0, 0}, ""));
}

TEST_F(InformationExport, disk_that_is_full_is_silent) {
    EXPECT_EQ(kzb_export_information(store_, "/dev/full"), 0);
    EXPECT_EQ(kzb_has_error(store_), 0);
}

}  // namespace
