// Models with measured data read into them, for the tests that run machines with and without.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "interface/model_file.h"

namespace kzb_test {

// The model of `path` with the text read into it by `call`, as a file of its own.
class MeasuredModel {
  public:
    using StoreCall = int (*)(const char*, KZB_STORE*);

    MeasuredModel(const std::string& model, const std::string& text, StoreCall call) : path_(model + "_measured") {
        const std::string text_path = model + "_text";
        std::ofstream(text_path, std::ios::binary) << text;
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        EXPECT_EQ(kzb_reader(model.c_str(), store), 0);
        kzb_set_application("ALL", "", store);
        EXPECT_EQ(call(text_path.c_str(), store), 0);
        EXPECT_EQ(kzb_has_error(store), 0);
        kzb_writer(path_.c_str(), store);
        kzb_finish(store);
        std::filesystem::remove(text_path);
    }
    MeasuredModel(const MeasuredModel&) = delete;
    MeasuredModel& operator=(const MeasuredModel&) = delete;
    ~MeasuredModel() { std::filesystem::remove(path_); }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

inline std::string correction_file(const std::string& items) {
    return "$KZ_Correction_Start\n$KZ_Correction_Version,1.0\n$KZ_Correction_MotorType,PMSM\n" + items +
           "$KZ_Correction_End\n";
}
// `factor` at every current up to 1000 A and every phase.
inline std::string everywhere(const std::string& item, const std::string& factor) {
    return "$KZ_Correction_" + item + ",2,2\nphase,0,360\n0," + factor + "," + factor + "\n1000," + factor + "," +
           factor + "\n";
}

}  // namespace kzb_test
