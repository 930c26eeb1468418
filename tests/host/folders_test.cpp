// Where files lie and where they may not: a working directory that takes none, paths with blanks and foreign letters.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "KZBCalculator/kzb_store.h"
#include "host/host_process.h"
#include "same_bits/runs.h"
#include "support/environment.h"
#include "support/files.h"

namespace kzb_test {
namespace {

constexpr int samples = 5;

// No one whom the system lets write anywhere.
bool give_up_rights() {
    constexpr unsigned nobody = 65534;
    return ::getuid() != 0 || (::setresgid(nobody, nobody, nobody) == 0 && ::setresuid(nobody, nobody, nobody) == 0);
}

// A run with every file that the environment can ask for.
int run_with_all_files(const MachineRun& run, const char* path, const Bits& expected) {
    const Environment debug("DORN_KZ_DEBUG_OUTPUT", "1");
    const Environment time("KZB_OUTPUT_ELAPSED_TIME", "1");
    const Environment lookups("KZBFILEHANDLER_DEBUG_MODE", "1");
    return results_of(run, path, samples) == expected ? 0 : 1;
}

// A write to `target` that can't succeed.
void write_to(const char* path, const char* target) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(path, store);
    kzb_writer(target, store);
    kzb_export_information(store, target);
    kzb_finish(store);
}

TEST(Folders, read_only_working_directory_harms_no_run) {
    for (const char* const name : {"pmsm_harmonic", "induction_tables", "wound_field", "generic_parts"}) {
        const MachineRun& run = run_named(name);
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), samples);
        const Folder folder;
        std::ofstream(folder.path() / "older.kzb") << "older";
        std::filesystem::permissions(folder.path() / "older.kzb", std::filesystem::perms(0444));
        std::filesystem::permissions(folder.path(), std::filesystem::perms(0555));
        EXPECT_EQ(in_a_process([&] {
                      if (!give_up_rights()) {
                          return 2;
                      }
                      const WorkingIn place(folder.path());
                      write_to(file.path(), "new.kzb");
                      write_to(file.path(), "older.kzb");
                      return run_with_all_files(run, file.path(), expected);
                  }),
                  0)
            << name;
        EXPECT_EQ(read_file(folder.path() / "older.kzb"), "older");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    }
}

TEST(Folders, working_directory_that_is_gone_harms_no_run) {
    const MachineRun& run = run_named("pmsm_harmonic");
    const RunFile file(run);
    const Bits expected = results_of(run, file.path(), samples);
    EXPECT_EQ(in_a_process([&] {
                  const Folder folder;
                  std::filesystem::current_path(folder.path());
                  std::filesystem::remove(folder.path());
                  write_to(file.path(), "new.kzb");
                  return run_with_all_files(run, file.path(), expected);
              }),
              0);
}

TEST(Folders, path_may_hold_blanks_and_foreign_letters) {
    const Folder folder;
    const std::filesystem::path place = folder.path() / "two words" / "Größe \xe9 モータ 'quoted' %s";
    std::filesystem::create_directories(place);
    for (const char* const name : {"pmsm_harmonic", "generic_parts"}) {
        const MachineRun& run = run_named(name);
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), samples);
        const std::string copy = (place / (run.name + " ä %n.kzb")).string();
        const std::string again = (place / "again ж.kzb").string();
        std::filesystem::copy_file(file.path(), copy);
        EXPECT_EQ(results_of(run, copy.c_str(), samples), expected);
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        EXPECT_EQ(kzb_reader(copy.c_str(), store), 0);
        kzb_set_application("ALL", "", store);
        const bool generic = run.name == "generic_parts";  // others have no such document
        EXPECT_EQ(kzb_export_information(store, (place / "information ö.xml").c_str()), generic ? 0 : 1);
        kzb_writer(again.c_str(), store);
        kzb_finish(store);
        EXPECT_EQ(results_of(run, again.c_str(), samples), expected);
        EXPECT_EQ(read_file(place / "information ö.xml") != "", generic);
        // The report of the statistics names the file as it is called.
        const WorkingIn working(place);
        const Environment time("KZB_OUTPUT_ELAPSED_TIME", "1");
        results_of(run, copy.c_str(), 1);
        EXPECT_NE(read_file("KZBtime.txt").find("*** " + copy + " ***"), std::string::npos);
    }
}

}  // namespace
}  // namespace kzb_test
