// Loss tables of generic models: axes by description, references, input ports.
#include "measured_store.h"

namespace {

using namespace kzb_test;

constexpr const char* axis_path = "ironloss;axis_list;axis";
constexpr const char* input_path = "input_port_list;user_input";
constexpr const char* motion_path = "motion_condition_list;motion_condition";
constexpr const char* coil_set_path = "element_set_list;coil_set";

class LossAxisDescription : public Measured {
  protected:
    LossAxisDescription() {
        kzb_put_int("control", "motor_type", 10008, store_);
        kzb_put_double("parameter", "RU", 1.0, store_);
        entry(motion_path, 0, "stator", 5);
        entry(motion_path, 1, "rotor", 6);
        entry(motion_path, 2, "rotor", 7);
        entry(coil_set_path, 0, "coils", 11);
        kzb_put_int("element_set_list;0;coil_set;0;", "type", 1, store_);
        entry(coil_set_path, 1, "typeless", 12);
        entry(coil_set_path, 2, "follower", 13);
        kzb_put_int("element_set_list;0;coil_set;2;", "type", 1, store_);
        kzb_put_int("element_set_list;0;coil_set;2;", "ref_coil_set_id", 1, store_);
    }
    void entry(const char* path, int index, const char* name, int id) {
        const int indices[2] = {0, index};
        kzb_put_subcategory_string(path, indices, "name", name, store_);
        kzb_put_subcategory_int(path, indices, "id", id, store_);
    }
    int of_axis(int n, const char* key) {
        const int indices[3] = {0, 0, n};
        return kzb_get_subcategory_int(axis_path, indices, key, store_);
    }
    bool has_axis(int n) {
        const int indices[3] = {0, 0, n};
        return kzb_has_subcategory(axis_path, indices, store_) == 1;
    }
    int of_input(int m, const char* key) {
        const int indices[2] = {0, m};
        return kzb_get_subcategory_int(input_path, indices, key, store_);
    }
    int input_count() {
        const int indices[2] = {0, 0};
        return kzb_get_subcategory_num(input_path, indices, store_);
    }
    void expect_axis(int n, int axis_no, int id, int reference_type, int physical_type) {
        EXPECT_EQ(of_axis(n, "axis_no"), axis_no);
        EXPECT_EQ(of_axis(n, "reference_id"), id);
        EXPECT_EQ(of_axis(n, "reference_type"), reference_type);
        EXPECT_EQ(of_axis(n, "physical_type"), physical_type);
    }
};

// The order of the categories is that of the reading, and of the saved file.
TEST_F(LossAxisDescription, axes_and_ports_come_before_the_table) {
    const int before = kzb_get_category_num(store_);
    EXPECT_EQ(add_iron_loss("1 5\n#reference_name=\"bus\",type=\"Voltage\",index=\"0\",periodic=\"0\"\n"), 0);
    ASSERT_EQ(kzb_get_category_num(store_), before + 3);
    EXPECT_STREQ(kzb_get_category_name(before, store_), "ironloss;0;axis_list;0;axis;0;");
    EXPECT_STREQ(kzb_get_category_name(before + 1, store_), "input_port_list;0;user_input;0;");
    EXPECT_STREQ(kzb_get_category_name(before + 2, store_), "ironloss");
}

TEST_F(LossAxisDescription, each_type_is_looked_up_in_its_list) {
    EXPECT_EQ(add_iron_loss("#reference_name=\"rotor\",type=\"Speed\",index=\"3\",periodic=\"0\"\n"
                            "#reference_name=\"coils\",type=\"Current\",index=\"0\",periodic=\"0\"\n"
                            "#reference_name=\"coils\",type=\"Phase\",index=\"1\",periodic=\"1\"\n"
                            "#reference_name=\"bus\",type=\"Voltage\",index=\"2\",periodic=\"0\"\n"
                            "1 0 48 100 2.5\n1 360 48 100 3.5\n"),
              0);
    EXPECT_EQ(error(), 0);
    expect_axis(0, 4, 6, 2, 3);  // of two motions of one name the first
    expect_axis(1, 1, 11, 1, 1);
    expect_axis(2, 2, 11, 1, 2);
    expect_axis(3, 3, -1, 0, 0);
    EXPECT_FALSE(has_axis(4));
    EXPECT_EQ(sizes("ironloss", "table"), (std::vector<int>{1, 2, 1, 1}));
    EXPECT_EQ(value("ironloss", "table", {0, 1, 0, 0}), 3.5);
    for (int axis = 1; axis <= 4; ++axis) {
        EXPECT_EQ(kzb_get_table_cyclic_flag("ironloss", "table", axis, store_), axis == 2 ? 1 : 0) << axis;
    }
    EXPECT_EQ(input_count(), 1);
    EXPECT_EQ(of_input(0, "id"), 1);
    EXPECT_EQ(of_input(0, "loss_axis_no"), 3);
}

TEST_F(LossAxisDescription, input_ports_are_appended_behind_those_present) {
    const int indices[2] = {0, 0};
    kzb_put_subcategory_int(input_path, indices, "id", 77, store_);
    const std::string text =
        "#reference_name=\"a\",type=\"A\",index=\"0\"\n#reference_name=\"b\",type=\"B\",index=\"1\"\n1 2 3\n";
    EXPECT_EQ(add_iron_loss(text), 0);
    EXPECT_EQ(input_count(), 3);
    EXPECT_EQ(of_input(0, "id"), 77);
    EXPECT_EQ(of_input(1, "id"), 2);
    EXPECT_EQ(of_input(1, "loss_axis_no"), 1);
    EXPECT_EQ(of_input(2, "id"), 3);
    EXPECT_EQ(of_input(2, "loss_axis_no"), 2);
}

// The present count is the next number, also where the numbers have a gap: the port of that number is taken.
TEST_F(LossAxisDescription, a_gap_in_the_input_ports_is_not_noticed) {
    for (const int m : {0, 2}) {
        const int indices[2] = {0, m};
        kzb_put_subcategory_int(input_path, indices, "id", 70 + m, store_);
    }
    EXPECT_EQ(add_iron_loss("#reference_name=\"a\",type=\"A\",index=\"0\"\n"
                            "#reference_name=\"b\",type=\"B\",index=\"1\"\n1 2 3\n"),
              0);
    EXPECT_EQ(input_count(), 2);
    EXPECT_EQ(of_input(2, "id"), 3);
    EXPECT_EQ(of_input(2, "loss_axis_no"), 2);
}

TEST_F(LossAxisDescription, a_description_counts_with_name_type_and_index) {
    EXPECT_EQ(add_iron_loss("#\n"
                            "#type=\"Voltage\",index=\"0\",periodic=\"1\"\n"
                            "#reference_name=\"\",type=\"Voltage\",index=\"0\"\n"
                            "#reference_name=\"a\",index=\"0\"\n"
                            "#reference_name=\"a\",type=\"Voltage\"\n"
                            "#reference_name=\"a\",type=\"Voltage\",index=\"-1\"\n"
                            "# reference_name = \"a\" , type=Voltage, other=\"x\", index=\"0\"\n1 2\n"),
              0);
    EXPECT_EQ(error(), 0);
    expect_axis(0, 1, -1, 0, 0);
    EXPECT_FALSE(has_axis(1));
    EXPECT_EQ(kzb_get_table_cyclic_flag("ironloss", "table", 1, store_), 0);
}

TEST_F(LossAxisDescription, without_descriptions_the_table_alone_is_added) {
    EXPECT_EQ(add_iron_loss("1 2 3\n"), 0);
    EXPECT_EQ(sizes("ironloss", "table"), (std::vector<int>{1, 1}));
    EXPECT_FALSE(has_axis(0));
    EXPECT_EQ(input_count(), 0);
}

TEST_F(LossAxisDescription, an_index_beyond_the_axes_is_put_without_a_flag) {
    EXPECT_EQ(add_iron_loss("#reference_name=\"a\",type=\"A\",index=\"2147483646\",periodic=\"1\"\n1 2\n"), 0);
    EXPECT_EQ(of_axis(0, "axis_no"), 2147483647);
    EXPECT_EQ(kzb_get_table_cyclic_flag("ironloss", "table", 1, store_), 0);
}

TEST_F(LossAxisDescription, a_reference_without_a_match_is_told) {
    const struct {
        const char* name;
        const char* type;
        int error;
    } rows[] = {{"coils", "Speed", 90026},    {"rotor", "Current", 90027},  {"Coils", "Phase", 90027},
                {"typeless", "Phase", 90028}, {"follower", "Phase", 90028}, {"typeless", "Current", 0},
                {"follower", "Current", 0},   {"none", "speed", 0}};
    for (const auto& row : rows) {
        const std::string line =
            std::string("#reference_name=\"") + row.name + "\",type=\"" + row.type + "\",index=\"0\"\n1 2\n";
        EXPECT_EQ(add_iron_loss(line), row.error == 0 ? 0 : 1) << line;
        EXPECT_EQ(error(), row.error) << line;
    }
}

TEST_F(LossAxisDescription, a_number_that_is_none_is_illegal) {
    for (const char* field : {"index=\"x\"", "index=\"0.5\"", "index=\"2147483648\"", "index=\"2147483647\"",
                              "index=\"0\",periodic=\"yes\""}) {
        EXPECT_EQ(add_iron_loss("#reference_name=\"a\",type=\"A\"," + std::string(field) + "\n1 2\n"), 1);
        EXPECT_EQ(error(), 90029) << field;
    }
}

TEST_F(LossAxisDescription, a_failure_leaves_the_store_as_it_was) {
    const int categories = kzb_get_category_num(store_);
    for (const char* rest :
         {"#reference_name=\"none\",type=\"Speed\",index=\"1\"\n1 2 3\n", "1 2\n1 2\n", "x\n", "1\n", ""}) {
        EXPECT_EQ(add_iron_loss("#reference_name=\"a\",type=\"A\",index=\"0\"\n" + std::string(rest)), 1) << rest;
        EXPECT_EQ(kzb_get_category_num(store_), categories) << rest;
    }
}

TEST_F(LossAxisDescription, the_first_point_sets_the_number_of_axes) {
    EXPECT_EQ(add_iron_loss("1 2 3\n1 2\n"), 1);
    EXPECT_EQ(error(), 90023);
    EXPECT_EQ(add_iron_loss("1\n"), 1);  // a value without coordinates
    EXPECT_EQ(error(), 90023);
    EXPECT_EQ(add_iron_loss(""), 1);
    EXPECT_EQ(error(), 90024);
}

TEST_F(LossAxisDescription, a_description_may_stand_anywhere_but_needs_its_line_feed) {
    EXPECT_EQ(add_iron_loss("1 2\n#reference_name=\"rotor\",type=\"Speed\",index=\"0\"\n2 3\n"
                            "#reference_name=\"none\",type=\"Speed\",index=\"0\""),
              0);
    EXPECT_TRUE(has_axis(0));
    EXPECT_FALSE(has_axis(1));
}

// 512 fields of one digit fill a line: 511 axes.
TEST_F(LossAxisDescription, as_many_axes_as_a_line_holds) {
    std::string line = "1";
    for (int i = 0; i < 510; ++i) {
        line.append(" 1");
    }
    EXPECT_EQ(add_iron_loss(line + "\n"), 0);
    EXPECT_EQ(kzb_get_table_dim("ironloss", "table", store_), 510);
    EXPECT_EQ(value("ironloss", "table", std::vector<int>(510, 0)), 1.0);
}

TEST_F(LossAxisDescription, many_descriptions_do_no_harm) {
    std::string text;
    for (int i = 0; i < 20000; ++i) {
        text.append("#reference_name=\"rotor\",type=\"")
            .append(i % 2 == 0 ? "Speed" : "Other")
            .append("\",index=\"0\"\n");
    }
    EXPECT_EQ(add_iron_loss(text + "1 2\n"), 0);
    EXPECT_EQ(of_axis(19999, "axis_no"), 1);
    EXPECT_EQ(input_count(), 10000);
}

}  // namespace
