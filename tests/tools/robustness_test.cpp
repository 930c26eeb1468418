// Whatever the files hold: an exit code that the documentation names, never a crash, and examples that are accepted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <random>

#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using testing::AnyOf;

const std::string scenario_head = "drive = \"voltage\"\n";
const std::string scenario_tail = "[time]\nstep = 1e-4\nstop = 1e-3\n[sources]\nall = 1\n";

std::string damaged_model(std::string content, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    for (std::size_t k = 0, changes = 1 + below(4); k < changes && !content.empty(); ++k) {
        switch (below(4)) {
            case 0:
                content.resize(below(content.size()));
                break;
            case 1:
                content.insert(below(content.size()), content.substr(below(content.size()), below(64)));
                break;
            default:
                content[below(content.size())] = static_cast<char>(random());
                break;
        }
    }
    return content;
}

class Damaged : public testing::TestWithParam<const char*> {};

TEST_P(Damaged, a_model_file_ends_in_an_exit_code_and_leaves_no_half_output) {
    const Folder folder;
    write_constant_machine(folder / "good.kzb");
    ASSERT_EQ(run_kzb({"convert", "good.kzb", "good.kzb", "--form", GetParam()}, folder.path()).code, 0);
    write_file(folder / "s.toml", scenario_head + scenario_tail);
    const std::string good = read_file(folder / "good.kzb");
    std::mt19937 random(7);  // fixed: the same files in every run
    for (int k = 0; k < 30; ++k) {
        write_file(folder / "bad.kzb", damaged_model(good, random));
        const Finished info = run_kzb({"info", "--json", "bad.kzb"}, folder.path());
        EXPECT_THAT(info.code, AnyOf(0, 3)) << k << info.err;
        if (info.code == 0) {
            EXPECT_TRUE(nlohmann::json::accept(info.out)) << k;
        }
        const Finished convert = run_kzb({"convert", "bad.kzb", "copy.kzb", "--form", "binary"}, folder.path());
        EXPECT_THAT(convert.code, AnyOf(0, 1, 3)) << k << convert.err;
        EXPECT_EQ(std::filesystem::exists(folder / "copy.kzb"), convert.code == 0) << k;
        EXPECT_THAT(run_kzb({"run", "bad.kzb", "s.toml"}, folder.path()).code, AnyOf(0, 1, 3)) << k;
        EXPECT_THAT(run_kzb({"plot", "bad.kzb", "dq_inductance/d_inductance", "--out", "p.pdf"}, folder.path()).code,
                    2);
        std::filesystem::remove(folder / "copy.kzb");
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, Damaged, testing::Values("ascii", "binary"),
                         [](const auto& form) { return std::string(form.param); });

TEST(Robustness, a_damaged_scenario_ends_in_an_exit_code) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const std::string good = scenario_head + scenario_tail +
                             "[mechanics]\ntype = \"rotor\"\ninertia = 1e-3\nload = { type = \"dc\", value = 1 }\n";
    std::mt19937 random(11);
    for (int k = 0; k < 80; ++k) {
        write_file(folder / "s.toml", damaged_model(good, random));
        // A damaged number can make the run long; being ended is then no fault.
        const Finished finished = run_kzb_for({"run", "m.kzb", "s.toml"}, folder.path(), 0.5);
        EXPECT_THAT(finished.signal, AnyOf(0, SIGTERM)) << k;
        EXPECT_THAT(finished.code, AnyOf(-1, 0, 1, 3)) << k;
    }
}

TEST(Robustness, a_scenario_nested_without_end_is_refused) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    write_file(folder / "s.toml", "x = " + std::string(100000, '['));
    EXPECT_EQ(run_kzb({"run", "m.kzb", "s.toml"}, folder.path()).code, 3);
}

TEST(Robustness, a_header_without_a_key_is_refused_in_every_build) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    for (const char* const header : {"[?]\n", "[\n]\n", "[[,]]\n", "[\x07x]\n"}) {
        write_file(folder / "s.toml", header + scenario_head + scenario_tail);
        const Finished finished = run_kzb({"run", "m.kzb", "s.toml"}, folder.path());
        EXPECT_EQ(finished.code, 3) << header;
        EXPECT_THAT(finished.err, testing::HasSubstr("s.toml")) << header;
    }
}

// The blocks between ```toml and ``` of a document.
std::vector<std::string> examples_of(const std::string& document) {
    std::vector<std::string> blocks;
    const std::string begin = "```toml\n";
    for (std::size_t at = document.find(begin); at != std::string::npos; at = document.find(begin, at)) {
        at += begin.size();
        const std::size_t end = document.find("```", at);
        blocks.push_back(document.substr(at, end - at));
        at = end;
    }
    return blocks;
}

TEST(Robustness, every_example_of_the_scenario_document_is_a_valid_scenario) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    write_file(folder / "load.csv", "time_s,load_Nm\n0,0\n1,1\n");
    const auto examples = examples_of(read_file(std::string(KZB_SOURCE_DIR) + "/docs/scenario.md"));
    ASSERT_GE(examples.size(), 10u);
    for (const std::string& example : examples) {
        if (example.find("[slip]") != std::string::npos) {
            continue;  // of an induction machine with tables: the tests of those machines run it
        }
        std::string scenario = example;
        if (example.find("drive = ") == std::string::npos) {
            scenario = scenario_head + scenario;
        }
        if (example.find("[time]") == std::string::npos) {
            scenario += "[time]\nstep = 1e-5\nstop = 0.03\n";
        }
        if (example.find("[sources") == std::string::npos) {
            scenario += "[sources]\nall = 0\n";
        }
        write_file(folder / "s.toml", scenario);
        // 1 where the file of this test lacks what an example asks for: another accuracy, loss data.
        const Finished finished = run_kzb({"run", "m.kzb", "s.toml"}, folder.path());
        EXPECT_THAT(finished.code, AnyOf(0, 1)) << example << finished.err;
    }
}

}  // namespace
}  // namespace kzb::test
