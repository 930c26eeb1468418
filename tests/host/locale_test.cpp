// A host that writes one and a half as "1,5": results, files and texts are the same, and the host keeps its locale.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "host/host_process.h"
#include "same_bits/runs.h"
#include "support/environment.h"
#include "support/files.h"

namespace kzb_test {
namespace {

constexpr int samples = 6;

// Everything that the library writes as text, one file behind the other.
std::string texts(const MachineRun& run, const char* path) {
    const Folder folder;
    const WorkingIn place(folder.path());
    {
        const Environment debug("DORN_KZ_DEBUG_OUTPUT", "1");
        const Environment lookups("KZBFILEHANDLER_DEBUG_MODE", "1");
        const Environment iteration("DORN_KZ_DEBUG_ITR", "2.5e-7");
        results_of(run, path, 3);
    }
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(path, store);
    kzb_export_information(store, "information.xml");
    kzb_finish(store);
    std::string all;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        all += file.filename().string() + '\n' + read_file(file);
    }
    return all;
}

// Numbers of a correction file, which are text.
Bits corrected(const char* path) {
    const Folder folder;
    const std::string correction = (folder.path() / "correction.txt").string();
    std::ofstream(correction)
        << "$KZ_Correction_Start\n$KZ_Correction_MotorType,PMSM\n$KZ_Correction_Resistance,0.0625\n"
           "$KZ_Correction_End\n";
    Bits bits;
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    bits.add(kzb_reader(path, store));
    bits.add(kzb_read_correction_file(correction.c_str(), store));
    bits.add(kzb_has_error(store));
    bits.add(kzb_get_double("parameter", "RU", store));
    kzb_finish(store);
    return bits;
}

struct Seen {
    std::vector<Bits> results;
    std::vector<std::string> texts;
    bool operator==(const Seen&) const = default;
};

Seen see() {
    Seen seen;
    for (const MachineRun& run : all_runs()) {
        const RunFile file(run);
        seen.results.push_back(results_of(run, file.path(), samples));
    }
    for (const char* const name :
         {"pmsm_harmonic_everything", "pmsm_flux_integral", "induction_tables_cubic_everything",
          "induction_constants_everything", "wound_field_everything", "reluctance_3", "solenoid", "stepping",
          "generic_expressions_everything", "generic_coil_sets"}) {
        const RunFile file(run_named(name));
        seen.texts.push_back(texts(run_named(name), file.path()));
    }
    const RunFile file(run_named("pmsm_harmonic"));
    seen.results.push_back(corrected(file.path()));
    return seen;
}

// Of the plain "C" locale, made once.
const Seen& expected() {
    static const Seen seen = see();
    return seen;
}

std::string printed(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// The C runtime's locale, made by the system's own tool.
class CommaLocale {
  public:
    CommaLocale() {
        std::ofstream(folder_.path() / "comma") << "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"<U002E>\"\n"
                                                   "grouping 3;3\nEND LC_NUMERIC\n";
        const std::string made = (folder_.path() / "comma_LOCALE").string();
        const std::string command = "localedef -c -f ANSI_X3.4-1968 -i '" + (folder_.path() / "comma").string() +
                                    "' '" + made + "' > /dev/null 2>&1";
        if (std::system(command.c_str()) == -1) {
            return;
        }
        ::setenv("LOCPATH", folder_.path().c_str(), 1);
        set_ = std::setlocale(LC_NUMERIC, "comma_LOCALE") != nullptr;
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    bool set() const { return set_ && printed(1.5) == "1,5"; }

  private:
    Folder folder_;
    bool set_ = false;
};

TEST(HostLocale, comma_of_the_c_runtime_changes_nothing) {
    const Seen& plain = expected();
    ASSERT_NE(plain.texts[0].find('.'), std::string::npos);
    const CommaLocale locale;
    if (!locale.set()) {
        GTEST_SKIP() << "no locale with a decimal comma could be made";
    }
    EXPECT_TRUE(see() == plain);
    EXPECT_EQ(printed(1.5), "1,5");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "comma_LOCALE");
}

class Comma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(HostLocale, comma_of_the_language_changes_nothing) {
    const Seen& plain = expected();
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    const Seen seen = see();
    std::ostringstream host;
    host << 1234.5;
    std::locale::global(before);
    EXPECT_TRUE(seen == plain);
    EXPECT_EQ(host.str(), "1.234,5");
}

}  // namespace
}  // namespace kzb_test
