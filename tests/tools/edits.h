// Tests of the subcommands that edit a model: a folder with models in it, and what every refusal has in common.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {

struct StoreEnd {
    void operator()(KZB_STORE* store) const { kzb_finish(store); }
};
using OpenedStore = std::unique_ptr<KZB_STORE, StoreEnd>;

// The file with all its tables.
inline OpenedStore opened(const std::string& path) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    EXPECT_EQ(kzb_reader(path.c_str(), store), 0) << path;
    kzb_set_application("ALL", "", store);
    return OpenedStore(store);
}

inline double value_at(const OpenedStore& store, const char* category, const char* key,
                       const std::vector<int>& indices) {
    return kzb_get_table_value(category, key, indices.data(), store.get());
}

inline std::vector<double> nodes_of(const OpenedStore& store, const char* category, const char* key, int axis) {
    std::vector<double> nodes;
    for (int i = 0; i < kzb_get_table_num_rows(category, key, axis, store.get()); ++i) {
        nodes.push_back(kzb_get_table_axis_value(category, key, axis, i, store.get()));
    }
    return nodes;
}

class Edits : public testing::Test {
  protected:
    Finished kzb(const std::vector<std::string>& arguments) { return run_kzb(arguments, folder.path()); }

    // Runs a command that must do its work; its JSON report.
    nlohmann::json done(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const Finished finished = kzb(arguments);
        EXPECT_EQ(finished.code, 0) << finished.err;
        return finished.code == 0 ? nlohmann::json::parse(finished.out) : nlohmann::json();
    }

    // Runs a command that must refuse: its exit code, one line that names the fault, and every file as it was.
    void refused(const std::vector<std::string>& arguments, int code, const std::string& fault) {
        const std::vector<std::string> names = folder.names();
        std::vector<std::string> contents;
        for (const std::string& name : names) {
            contents.push_back(read_file(folder / name));
        }
        const Finished finished = kzb(arguments);
        EXPECT_EQ(finished.code, code) << testing::PrintToString(arguments) << finished.err;
        EXPECT_EQ(finished.out, "");
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, testing::HasSubstr(fault));
        ASSERT_EQ(folder.names(), names);
        for (std::size_t k = 0; k < names.size(); ++k) {
            EXPECT_EQ(read_file(folder / names[k]), contents[k]) << names[k];
        }
    }

    Folder folder;
};

}  // namespace kzb::test
