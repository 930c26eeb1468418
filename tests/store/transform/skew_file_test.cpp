// The kept tables are ordinary ones: they are written with the file, and a skew after reading starts from them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "KZBCalculator/kzb_store.h"
#include "store/format/model_file.h"
#include "synthetic_store.h"

namespace {

using namespace synthetic;

class SkewFile : public testing::Test {
  protected:
    SkewFile() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kzb_skew_XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        path_ = (folder_ / "skewed.kzb").string();
    }
    ~SkewFile() override { std::filesystem::remove_all(folder_); }

    // A skewed machine without harmonic_torque/torque_ibeta: its kept copy is empty.
    static void fill(KZB_STORE* store) {
        fill_control(*store, 10000, 4, 0.0);
        kzb::require_category(*store, "harmonic_torque");
        make_table(*store, "harmonic_inductance", "inductance", {{0}, {0}, {0}, {0}}, {0, 0, 0, 0},
                   [](const Point&) { return 1; });
        make_table(*store, "current_flux", "mag_flux", {range(0, 10, 360), {0, 1, 2}}, {1, 0},
                   [](const Point& x) { return x[0] * (360 - x[0]) + x[1]; });
        EXPECT_EQ(kzb_apply_skew(3, 0, 20.0, 0.0, 2, 0, "Linear", store), 0);
        ASSERT_EQ(kzb_get_table_dim("harmonic_torque", "torque_ibeta_org", store), 0);
    }

    // Values of whole numbers, which both forms hold in full.
    void expect_kept(KZB_STORE* store) {
        ASSERT_EQ(kzb_reader(path_.c_str(), store), 0);
        kzb_set_application("ALL", "", store);
        EXPECT_EQ(kzb_has_error(store), 0);
        EXPECT_EQ(kzb_get_table_dim("current_flux", "mag_flux_org", store), 2);
        EXPECT_EQ(nodes(*store, "current_flux", "mag_flux_org", 1), range(0, 10, 360));
        EXPECT_EQ(nodes(*store, "current_flux", "mag_flux_org", 2), range(0, 1, 2));
        EXPECT_EQ(cyclic_flags(*store, "current_flux", "mag_flux_org"), (std::vector<int>{1, 0}));
        for (int i = 0; i <= 36; ++i) {
            EXPECT_EQ(value(*store, "current_flux", "mag_flux_org", {i, 2}), 10 * i * (360 - 10 * i) + 2);
        }
        // Slices at 80 and 100: (22400 + 26000) / 2.
        EXPECT_NEAR(value(*store, "current_flux", "mag_flux", {9, 0}), 24200, 1e-9);

        EXPECT_EQ(kzb_has_parameter("harmonic_torque", "torque_ibeta_org", store), 1);
        EXPECT_EQ(kzb_get_table_dim("harmonic_torque", "torque_ibeta_org", store), 0);

        // Slices at 70 and 110 of the unskewed table: (20300 + 27500) / 2.
        EXPECT_EQ(kzb_apply_skew(3, 0, 40.0, 0.0, 2, 0, "Linear", store), 0);
        EXPECT_NEAR(value(*store, "current_flux", "mag_flux", {9, 0}), 23900, 1e-9);
        EXPECT_EQ(kzb_get_table_dim("harmonic_torque", "torque_ibeta_org", store), 0);
    }

    std::filesystem::path folder_;
    std::string path_;
};

TEST_F(SkewFile, binary_form_keeps_the_unskewed_tables) {
    KZB_STORE* first = nullptr;
    kzb_initialize(&first);
    fill(first);
    kzb_writer(path_.c_str(), first);
    kzb_finish(first);
    KZB_STORE* second = nullptr;
    kzb_initialize(&second);
    expect_kept(second);
    kzb_finish(second);
}

TEST_F(SkewFile, ascii_form_keeps_the_unskewed_tables) {
    KZB_STORE* first = nullptr;
    kzb_initialize(&first);
    fill(first);
    ASSERT_TRUE(kzb::write_ascii(*first, path_));
    kzb_finish(first);
    KZB_STORE* second = nullptr;
    kzb_initialize(&second);
    expect_kept(second);
    kzb_finish(second);
}

}  // namespace
