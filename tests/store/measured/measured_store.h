// A store and texts that it reads as measured data; the files are gone with the test.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "store/test_store.h"

namespace kzb_test {

class Measured : public testing::Test {
  protected:
    Measured() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kzb_measured_XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    ~Measured() override { std::filesystem::remove_all(folder_); }

    std::string file(std::string_view text) {
        const std::string path = folder_ + "/" + std::to_string(count_++);
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    int correct(std::string_view text) { return kzb_read_correction_file(file(text).c_str(), store_); }
    int add_iron_loss(std::string_view text) { return kzb_add_loss_table(file(text).c_str(), store_); }
    int error() { return kzb_has_error(store_); }

    double value(const char* category, const char* key, const std::vector<int>& at) {
        return kzb_get_table_value(category, key, at.data(), store_);
    }
    std::vector<int> sizes(const char* category, const char* key) {
        std::vector<int> result;
        for (int axis = 1; axis <= kzb_get_table_dim(category, key, store_); ++axis) {
            result.push_back(kzb_get_table_num_rows(category, key, axis, store_));
        }
        return result;
    }
    std::vector<double> nodes(const char* category, const char* key, int axis) {
        std::vector<double> result;
        for (int i = 0; i < kzb_get_table_num_rows(category, key, axis, store_); ++i) {
            result.push_back(kzb_get_table_axis_value(category, key, axis, i, store_));
        }
        return result;
    }
    std::vector<double> values(const char* key) {  // of a correction
        std::vector<double> result;
        const std::vector<int> size = sizes("correction", key);
        for (int row = 0; row < size[0]; ++row) {
            for (int column = 0; column < size[1]; ++column) {
                result.push_back(value("correction", key, {row, column}));
            }
        }
        return result;
    }

    TestStore store_;
    std::string folder_;

  private:
    int count_ = 0;
};

// A correction file of a permanent-magnet machine around its items.
inline std::string correction_file(const std::string& items) {
    return "$KZ_Correction_Start\n$KZ_Correction_Version,1.0\n$KZ_Correction_MotorType,PMSM\n" + items +
           "$KZ_Correction_End\n";
}

// A block of one row and one column: `factor` at current 10 A and phase 20 degrees.
inline std::string one_factor(const std::string& item, const std::string& factor) {
    return "$KZ_Correction_" + item + ",1,1\nlabel,20\n10," + factor + "\n";
}

}  // namespace kzb_test
