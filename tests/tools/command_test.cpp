// The command line as a whole: help, version, exit codes, one line per error.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <map>

#include "KZBCalculator/kzbcalc.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::vector<std::string> subcommands = {"info", "convert", "plot", "run",      "get",
                                              "set",  "correct", "loss", "transform"};

TEST(Command, help_is_on_stdout_with_exit_code_0_for_every_subcommand) {
    const Finished whole = run_kzb({"--help"});
    EXPECT_EQ(whole.code, 0);
    EXPECT_EQ(whole.err, "");
    for (const std::string& name : subcommands) {
        EXPECT_THAT(whole.out, HasSubstr(name));
        const Finished one = run_kzb({name, "--help"});
        EXPECT_EQ(one.code, 0) << name;
        EXPECT_THAT(one.out, HasSubstr("Usage: kzb " + name)) << name;
        EXPECT_EQ(one.err, "") << name;
    }
}

TEST(Command, version_is_that_of_the_library) {
    const Finished finished = run_kzb({"--version"});
    EXPECT_EQ(finished.code, 0);
    EXPECT_THAT(finished.out, StartsWith(std::string("kzb ") + kzbcalcVersion()));
}

TEST(Command, wrong_usage_is_exit_code_2_and_one_line_that_names_the_fault) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{}, "subcommand"},
        {{"inform", "x.kzb"}, "no subcommand \"inform\", expected one of info, convert"},
        {{"build"}, "a subcommand is missing, expected one of pmsm, im, "},
        {{"build", "xm"}, "no subcommand \"xm\", expected one of pmsm, im, "},
        {{"--colour"}, "subcommand"},
        {{"info"}, "file"},
        {{"info", "--colour", "x.kzb"}, "--colour"},
        {{"convert", "a.kzb", "b.kzb"}, "--form"},
        {{"convert", "a.kzb", "b.kzb", "--form", "text"}, "text"},
        {{"plot", "a.kzb", "c/k"}, "--out"},
        {{"plot", "a.kzb", "c/k", "--out", "a.pdf"}, "expected a name that ends in .png or .svg"},
        {{"plot", "a.kzb", "c/k", "--out", "a.png", "--kind", "pie"}, "pie"},
        {{"run", "a.kzb"}, "scenario"},
        {{"run", "a.kzb", "s.toml", "--out", "-", "--json"}, "stdout"},
    };
    for (const auto& [arguments, fault] : cases) {
        const Finished finished = run_kzb(arguments);
        EXPECT_EQ(finished.code, 2) << fault;
        EXPECT_EQ(finished.out, "") << fault;
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, HasSubstr(fault));
    }
}

TEST(Command, a_file_that_is_no_KZB_file_is_exit_code_3_and_one_line_that_names_it) {
    const Folder folder;
    write_file(folder / "garbage.kzb", "\x01\x02 no model *at all");
    write_file(folder / "empty.kzb", "");
    write_file(folder / "head-only.kzb", "$DORN-KZb,#\n");
    write_file(folder / "wrong-head.kzb", "$DORN-KZx,#\n");
    const std::map<std::string, std::string> cases = {{"missing.kzb", "No such file"},
                                                      {".", "directory"},
                                                      {"garbage.kzb", "expected \"$DORN-KZ\" at its start"},
                                                      {"empty.kzb", "expected \"$DORN-KZ\" at its start"},
                                                      {"head-only.kzb", "expected a whole file"},
                                                      {"wrong-head.kzb", "The input file is broken"}};
    for (const auto& [name, fault] : cases) {
        for (const auto& arguments :
             std::vector<std::vector<std::string>>{{"info", name},
                                                   {"info", "--json", name},
                                                   {"convert", name, "copy.kzb", "--form", "binary"},
                                                   {"plot", name, "a/b", "--out", "p.png"},
                                                   {"run", name, "s.toml"}}) {
            const Finished finished = run_kzb(arguments, folder.path());
            EXPECT_EQ(finished.code, 3) << arguments[0] << ' ' << name;
            EXPECT_EQ(finished.out, "");
            EXPECT_EQ(line_count(finished.err), 1) << finished.err;
            EXPECT_THAT(finished.err, HasSubstr("kzb: error: " + name + ": "));
            EXPECT_THAT(finished.err, HasSubstr(fault));
        }
    }
    EXPECT_EQ(folder.names().size(), 4u) << "nothing may be written";
}

TEST(Command, a_file_name_with_a_line_feed_still_gives_one_line) {
    const Finished finished = run_kzb({"info", "no\nfile\xff.kzb"});
    EXPECT_EQ(finished.code, 3);
    EXPECT_EQ(line_count(finished.err), 1) << finished.err;
    EXPECT_THAT(finished.err, HasSubstr("no file\xef\xbf\xbd.kzb: cannot be opened"));
}

TEST(Command, a_terminal_gets_colours_unless_NO_COLOR_is_set) {
    EXPECT_THAT(run_kzb_on_terminal({"info", "none.kzb"}, ".", {{"NO_COLOR", ""}}).err, HasSubstr("\x1b[31merror"));
    const Finished plain = run_kzb_on_terminal({"info", "none.kzb"}, ".", {{"NO_COLOR", "1"}});
    EXPECT_EQ(plain.code, 3);
    EXPECT_EQ(plain.err.find('\x1b'), std::string::npos);
    EXPECT_THAT(plain.err, StartsWith("kzb: error: none.kzb: "));
}

TEST(Command, long_work_shows_a_bar_on_a_terminal_alone) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const std::string scenario = "drive = \"voltage\"\n[sources]\nall = 0\n[record]\noutputs = [\"i\"]\n[time]\n";
    write_file(folder / "long.toml", scenario + "step = 1e-6\nstop = 1e3\n");
    write_file(folder / "short.toml", scenario + "step = 1e-3\nstop = 1e-2\n");
    const Finished finished = run_kzb_on_terminal({"run", "m.kzb", "long.toml"}, folder.path(), {}, " %");
    EXPECT_EQ(finished.signal, SIGTERM) << "at the first bar";
    EXPECT_THAT(finished.err, HasSubstr("run ["));
    EXPECT_EQ(run_kzb_on_terminal({"run", "m.kzb", "short.toml"}, folder.path()).err, "");
}

TEST(Command, a_result_that_stdout_does_not_take_is_exit_code_1) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const std::string model = folder / "m.kzb";
    const std::string messages = folder / "err";
    const std::string command = std::string(KZB_PROGRAM) + " info " + model + " > /dev/full 2> " + messages;
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_THAT(read_file(messages), HasSubstr("standard output"));
}

TEST(Command, started_without_stdout_and_stderr_no_message_ends_in_the_output_file) {
    const Folder folder;
    const std::string model = folder / "m.kzb";
    const std::string copy = folder / "copy.kzb";
    const std::string expected = folder / "expected.kzb";
    write_model(model, [](KZB_STORE* store) {
        kzb_put_string("c", "s", "\xf0\x9f\x98\x80", store);  // makes the library print at reading
    });
    ASSERT_EQ(run_kzb({"convert", model, expected, "--form", "binary"}).code, 0);
    const std::string command = std::string(KZB_PROGRAM) + " convert " + model + " " + copy + " --form binary >&- 2>&-";
    ASSERT_TRUE(WIFEXITED(std::system(command.c_str())));
    EXPECT_EQ(read_file(copy), read_file(expected));
}

}  // namespace
}  // namespace kzb::test
