// The results of every model are those of yesterday: hashes of a fixed set of runs, compared with hashes.txt.
//
// This is a lock against change that nobody meant, and the one place where the program's own output is the expectation:
// whether the results are right is for the other tests. The lines of hashes.txt are NAME HASH; after a change that is
// meant, KZB_WRITE_HASHES=FILE writes the new ones.
#include <gnu/libc-version.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "same_bits/plain_mathematics.h"
#include "same_bits/runs.h"

namespace kzb_test {
namespace {

constexpr const char* mathematics = "mathematics";

const std::map<std::string, std::string>& hashes() {
    static const std::map<std::string, std::string> read = [] {
        std::map<std::string, std::string> lines;
        std::ifstream file(KZB_SOURCE_DIR "/tests/same_bits/hashes.txt");
        for (std::string name, hash; file >> name >> hash;) {
            lines[name] = hash;
        }
        return lines;
    }();
    return read;
}

std::string text(std::uint64_t hash) {
    std::ostringstream out;
    out << std::hex << hash;
    return out.str();
}

void expect_hash(const std::string& name, std::uint64_t hash) {
    if (const char* const path = std::getenv("KZB_WRITE_HASHES")) {
        static std::ofstream written(path);
        ASSERT_TRUE(written.is_open()) << path;
        written << name << ' ' << text(hash) << std::endl;
        return;
    }
    const auto found = hashes().find(name);
    ASSERT_NE(found, hashes().end()) << "hashes.txt has no line for " << name << ", which gives " << text(hash);
    EXPECT_EQ(text(hash), found->second) << name;
}

bool other_c_library() {
    return std::string(gnu_get_libc_version()) != "2.36";
}

TEST(SameBits, mathematics_of_the_c_library_are_those_of_the_hashes) {
    if (other_c_library()) {
        GTEST_SKIP() << "the hashes are of the C library of Debian 12";
    }
    expect_hash(mathematics, mathematics_hash());
}

class SameBitsOf : public testing::TestWithParam<MachineRun> {
  protected:
    void SetUp() override {
        if (other_c_library()) {
            GTEST_SKIP() << "the hashes are of the C library of Debian 12";
        }
    }
};

std::string name_of(const testing::TestParamInfo<MachineRun>& each) {
    return each.param.name;
}

TEST_P(SameBitsOf, run_gives_the_same_results_twice_and_as_ever) {
    const MachineRun& run = GetParam();
    const RunFile file(run);
    const Bits first = results_of(run, file.path());
    // A machine that lives: currents, voltages and torque change at every sample.
    const std::set<std::uint64_t> different(first.words().begin(), first.words().end());
    EXPECT_GT(different.size(), static_cast<std::size_t>(3 * run.samples));
    EXPECT_EQ(first, results_of(run, file.path()));
    expect_hash(run.name, first.hash());
}

INSTANTIATE_TEST_SUITE_P(Models, SameBitsOf, testing::ValuesIn(all_runs()), name_of);

// Files of every shape of table.
std::vector<MachineRun> files() {
    std::vector<MachineRun> chosen;
    for (const char* const name :
         {"pmsm_harmonic", "pmsm_harmonic_phase_symmetry", "pmsm_harmonic_over_phase_currents", "pmsm_flux_integral",
          "linear_synchronous", "induction_tables", "wound_field", "reluctance_3", "stepping", "generic_coil_sets"}) {
        chosen.push_back(run_named(name));
    }
    return chosen;
}

class SameBitsOfStore : public SameBitsOf {};

TEST_P(SameBitsOfStore, lookups_and_transforms_give_the_same_results_twice_and_as_ever) {
    const RunFile file(GetParam());
    const Bits first = store_results(file.path());
    EXPECT_EQ(first, store_results(file.path()));
    expect_hash("store_of_" + GetParam().name, first.hash());
}

INSTANTIATE_TEST_SUITE_P(Files, SameBitsOfStore, testing::ValuesIn(files()), name_of);

}  // namespace
}  // namespace kzb_test

int main(int argc, char** argv) {
    kzb_test::use_plain_mathematics(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
