// Damaged models: every value of a store replaced at random, records taken out, tables cut down. Each is refused or
// runs to its end; nothing of the results is asked but that the calls come back.
#include <algorithm>
#include <limits>
#include <random>

#include "circuit/generic/star_model.h"
#include "support/quiet.h"

namespace kzb_test {
namespace {

using kzb::PortGroup;

class Damage {
  public:
    explicit Damage(unsigned seed) : random_(seed) {}
    int pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
    bool one_of(int sides) { return pick(1, sides) == 1; }
    int integer() {
        constexpr int values[] = {0,
                                  -1,
                                  1,
                                  2,
                                  3,
                                  4,
                                  5,
                                  10,
                                  -50,
                                  99,
                                  1 << 20,
                                  std::numeric_limits<int>::max(),
                                  std::numeric_limits<int>::min()};
        return values[pick(0, static_cast<int>(std::size(values)) - 1)];
    }
    double number() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double values[] = {0.0,
                                     -0.0,
                                     1.0,
                                     -1.0,
                                     1e-300,
                                     1e300,
                                     -1e300,
                                     infinity,
                                     -infinity,
                                     1e-10,
                                     std::numeric_limits<double>::quiet_NaN(),
                                     360.0};
        return values[pick(0, static_cast<int>(std::size(values)) - 1)];
    }
    std::string text() {
        static const char* const values[] = {"",        "c",        "1 +",   "c = c + 1", "(((((((((", "0/0", "th",
                                             "sin(th)", "\xff\xfe", "c,c,c", "c ? c : c", "1e999",     "a b"};
        return values[pick(0, static_cast<int>(std::size(values)) - 1)];
    }

    // `share`: one value in so many.
    void values_of(KZB_STORE& store, int share) {
        for (int i = 0; i < kzb_get_category_num(&store); ++i) {
            const std::string category = kzb_get_category_name(i, &store);
            if (category == "control") {
                continue;
            }
            for (int k = 0; k < kzb_get_int_num(category.c_str(), &store); ++k) {
                if (one_of(share)) {
                    const std::string key = kzb_get_int_keyword(category.c_str(), k, &store);
                    kzb_put_int(category.c_str(), key.c_str(), integer(), &store);
                }
            }
            for (int k = 0; k < kzb_get_double_num(category.c_str(), &store); ++k) {
                if (one_of(share)) {
                    const std::string key = kzb_get_double_keyword(category.c_str(), k, &store);
                    kzb_put_double(category.c_str(), key.c_str(), number(), &store);
                }
            }
            for (int k = 0; k < kzb_get_string_num(category.c_str(), &store); ++k) {
                if (one_of(share)) {
                    const std::string key = kzb_get_string_keyword(category.c_str(), k, &store);
                    kzb_put_string(category.c_str(), key.c_str(), text().c_str(), &store);
                }
            }
            if (kzb_get_table_num(category.c_str(), &store) > 0 && one_of(share)) {
                table(category, store);
            }
        }
    }

  private:
    // Another shape, or nodes that are no grid.
    void table(const std::string& category, KZB_STORE& store) {
        if (one_of(2)) {
            std::vector<int> sizes(static_cast<std::size_t>(pick(1, 5)));
            for (int& size : sizes) {
                size = pick(1, 3);
            }
            kzb_create_table(category.c_str(), "table", static_cast<int>(sizes.size()), sizes.data(), &store);
        }
        const int dim = kzb_get_table_dim(category.c_str(), "table", &store);
        for (int axis = 1; axis <= dim; ++axis) {
            if (one_of(3)) {
                kzb_set_table_axis_value(category.c_str(), "table", axis, 0, number(), &store);
            }
            if (one_of(4)) {
                kzb_set_table_cyclic_flag(category.c_str(), "table", axis, pick(-1, 2), &store);
            }
        }
    }
    std::mt19937 random_;
};

void use_everything(kzb::Calc_Eq_generic& model) {
    int status = 0;
    const auto sources = static_cast<std::size_t>(model.count(PortGroup::sources));
    const auto motions = static_cast<std::size_t>(model.motion_count());
    for (int n = 0; n < 4; ++n) {
        model.step(std::vector<double>(sources, 5.0), std::vector<double>(motions, 0.1 * n), 1e-3 * n,
                   std::vector<double>(sources, 1.0), status);
        model.update();
        for (int id = 0; id < 5; ++id) {
            model.force(id);
            model.user_parameter(id);
            model.motion_upper_limit(id);
            model.coil_flux(id);
            model.probe_value(id);
        }
    }
    model.messages();
    model.port_by_name(PortGroup::coils, "c");
    model.motion_by_name("c");
}

// Outputs, losses and lists that the star alone does not hold.
void add_rest(GenericFile& file) {
    file.capacitor(20, 8, 9, 1e-6, "c");
    file.inductor(21, 8, 9, 1e-3);
    file.probe(22, 8, 9);
    file.put("num_user_specified_parameter", {{"num_user_specified_parameter", 2}});
    for (const char* const category : {"user_specified_parameter1", "user_specified_parameter2"}) {
        file.put(category, {{"table_id", 1},
                            {"output_port_id", 1},
                            {"reference_resolution", 0},
                            {"correction_expression", std::string("c")},
                            {"correction_variable", std::string("c")}});
    }
    file.record_table("output_list;output_table", {{{0.0, 1.0}, false}, places(2)}, [](const auto& x) { return x[0]; });
    file.table("ironloss", {{{0.0, 1.0}, false}, {{0.0, 1.0}, false}}, [](const auto& x) { return x[0]; });
    for (int i = 0; i < 2; ++i) {
        file.put("ironloss;0;axis_list;0;axis;" + std::to_string(i) + ";",
                 {{"axis_no", i + 1}, {"physical_type", 3}, {"reference_type", 2}, {"reference_id", 1}});
    }
    file.add("input_port_list;user_input", {{"id", 1}, {"loss_axis_no", 1}});
    file.add("correction_parameter_list;correction_parameter", {{"name", std::string("gain")}, {"value", 1.0}});
}

class GenericDamage : public testing::TestWithParam<int> {};

TEST_P(GenericDamage, is_refused_or_runs) {
    const kzb_test::QuietErrors quiet;
    int opened = 0;
    constexpr int stores = 120;
    for (int i = 0; i < stores; ++i) {
        Damage damage(static_cast<unsigned>(GetParam() * stores + i));
        GenericFile file;
        fill_star(file, damage.one_of(2), damage.pick(1, 3), true);
        add_rest(file);
        damage.values_of(file.store, damage.one_of(2) ? 60 : 8);
        kzb::Calc_Eq_generic model;
        model.set_interpolation(damage.one_of(2) ? "Linear" : damage.one_of(2) ? "Cubic" : "Spline4");
        model.initialize(file.store);
        model.set_iron_loss_enabled(true);
        opened += model.faults().empty() ? 1 : 0;
        use_everything(model);
    }
    // Not all are turned away at the door.
    EXPECT_GT(opened, 0);
    EXPECT_LT(opened, stores);
}

INSTANTIATE_TEST_SUITE_P(Seeds, GenericDamage, testing::Range(0, 8));

TEST(GenericDamage, huge_counts_are_bounded) {
    GenericFile file;
    fill_star(file, true, 1, true);
    file.put("num_user_specified_parameter", {{"num_user_specified_parameter", std::numeric_limits<int>::max()}});
    GenericRun run(file.store);
    EXPECT_LE(run.model.user_parameter_count(), 4096);
    use_everything(run.model);
}

}  // namespace
}  // namespace kzb_test
