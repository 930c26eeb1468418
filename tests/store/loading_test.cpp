// Which categories a selected application loads from the file.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "own_folder.h"
#include "store/store.h"
#include "test_store.h"

using kzb_test::TestStore;

namespace {

using Names = std::set<std::string>;

struct Loading {
    const char* motor;
    const char* application;
    Names categories;  // beside those that every application loads
};

const Loading loadings[] = {
    {"PMSM", "other", {"loss_table", "equivalent_resistance_table"}},
    {"PMSM", "LdLq", {"loss_table", "equivalent_resistance_table", "dq_inductance", "d_flux", "hysloss", "eddyloss"}},
    {"PMSM",
     "SimpleHarmonic",
     {"loss_table", "equivalent_resistance_table", "inductance", "mag_flux", "torque", "hysloss", "eddyloss"}},
    {"PMSM",
     "Harmonic",
     {"loss_table", "equivalent_resistance_table", "harmonic_inductance", "current_flux", "harmonic_torque",
      "pmsm_torque", "hysloss", "eddyloss", "user_specified_parameter_table"}},
    {"PMSM",
     "FluxIntegralDQTheta",
     {"loss_table", "equivalent_resistance_table", "current_table", "flux_table", "harmonic_torque", "hysloss",
      "eddyloss", "user_specified_parameter_table"}},
    {"2-PhaseStepping", "other", {"inductance", "mag_flux", "torque"}},
    {"LinearSolenoid", "other", {"inductance", "distance_flux", "distance_force"}},
    {"LinearSynchronous", "other", {"inductance", "distance_flux", "mag_flux", "distance_force"}},
    {"SR", "other", {"inductance", "torque"}},
    {"IM", "other", {"loss_table", "equivalent_resistance_table", "InductionParam", "InductionParam_HigherAccuracy"}},
    {"WFSM", "LdLq", {"inductance"}},
    {"WFSM",
     "Harmonic",
     {"harmonic_inductance", "current_flux", "harmonic_torque", "hysloss", "eddyloss",
      "user_specified_parameter_table"}},
    {"WFSM", "other", {}},
    {"Generic", "other", {}},
    {"pmsm", "LdLq", {}},
    {"", "", {}},
};

// Every category that any row names, and some that none does.
Names all_categories() {
    Names all{"control", "parameter", "correction", "information", "dq_torque", "ironloss", "Loss_table", ""};
    for (const Loading& row : loadings) {
        all.insert(row.categories.begin(), row.categories.end());
    }
    return all;
}

TEST(Loading, application_loads_its_row_and_what_all_need_and_nothing_else) {
    for (const Loading& row : loadings) {
        TestStore handle;
        KZB_STORE& store = *handle;
        store.motor = row.motor;
        store.application = row.application;
        Names expected = row.categories;
        expected.insert({"control", "parameter", "correction"});
        for (const std::string& category : all_categories()) {
            EXPECT_EQ(kzb::application_loads(store, category), expected.count(category) == 1)
                << row.motor << ' ' << row.application << ": " << category;
        }
    }
}

TEST(Loading, word_all_loads_every_category) {
    TestStore handle;
    KZB_STORE& store = *handle;
    store.motor = "ALL";
    for (const std::string& category : all_categories()) {
        EXPECT_TRUE(kzb::application_loads(store, category)) << category;
    }
}

class SelectedApplication : public kzb_test::OwnFolder {
  protected:
    // A file with one table of two nodes in each category.
    void write_model() {
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        const int size = 2;
        for (const std::string& category : all_categories()) {
            kzb_create_table(category.c_str(), "t", 1, &size, store);
            kzb_set_table_axis_value(category.c_str(), "t", 1, 1, 1.0, store);
            kzb_set_table_value(category.c_str(), "t", &last_, value_, store);
        }
        kzb_writer("model.kzb", store);
        kzb_finish(store);
    }
    // The categories whose table has its body.
    static Names loaded(KZB_STORE* store) {
        Names found;
        for (const std::string& category : all_categories()) {
            const int rows = kzb_get_table_num_rows(category.c_str(), "t", 1, store);
            EXPECT_TRUE(rows == 1 || rows == 2) << category;  // placeholder or body
            if (rows == 2) {
                EXPECT_EQ(kzb_get_table_value(category.c_str(), "t", &last_, store), value_) << category;
                found.insert(category);
            }
        }
        return found;
    }

  private:
    static constexpr int last_ = 1;
    static constexpr double value_ = 2.5;
};

TEST_F(SelectedApplication, generic_loads_only_what_all_need_and_all_loads_the_rest) {
    write_model();
    TestStore store;
    ASSERT_EQ(kzb_reader("model.kzb", store), 0);
    EXPECT_EQ(loaded(store), Names{});
    kzb_set_application("Generic", "", store);
    EXPECT_EQ(loaded(store), (Names{"control", "parameter", "correction"}));
    kzb_set_application("ALL", "", store);
    EXPECT_EQ(loaded(store), all_categories());
}

TEST_F(SelectedApplication, null_application_keeps_the_earlier_word) {
    write_model();
    TestStore store;
    ASSERT_EQ(kzb_reader("model.kzb", store), 0);
    kzb_set_application("WFSM", "LdLq", store);
    EXPECT_EQ(loaded(store), (Names{"control", "parameter", "correction", "inductance"}));
    kzb_set_application("PMSM", nullptr, store);  // still LdLq
    EXPECT_EQ(loaded(store), (Names{"control", "parameter", "correction", "inductance", "loss_table",
                                    "equivalent_resistance_table", "dq_inductance", "d_flux", "hysloss", "eddyloss"}));
}

}  // namespace
