// A model file in the temporary directory that goes away with the object.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

#include "bench/reference/store.h"

namespace kzb_bench_test {

class ModelFile {
  public:
    explicit ModelFile(const kzb_reference::Store& store) {
        static int made = 0;
        path_ = (std::filesystem::temp_directory_path() /
                 ("kzb_bench_" + std::to_string(getpid()) + "_" + std::to_string(made++) + ".kzb"))
                    .string();
        written_ = kzb_reference::write_model_file(path_.c_str(), store);
    }
    ~ModelFile() { std::filesystem::remove(path_); }
    ModelFile(const ModelFile&) = delete;
    ModelFile& operator=(const ModelFile&) = delete;

    bool written() const { return written_; }
    const char* path() const { return path_.c_str(); }

  private:
    std::string path_;
    bool written_ = false;
};

}  // namespace kzb_bench_test
