// What surrounds the read of an old file: choice of the form, the steps behind, the selected application, a written
// copy. Expected values are those that the test puts into the files.
#include <gmock/gmock.h>

#include "KZBCalculator/kzb_store.h"
#include "store/format/file_source.h"
#include "store/format/legacy_bytes.h"
#include "store/format/legacy_file.h"

namespace kzb::test {
namespace {

using LegacyReading = LegacyFile;

// Every section, tables of two and three axes, cyclic flags, d_flux as a table.
template <class File>
File with_tables(File file) {
    file.table("d_flux", {0, 0}).block({5}, {{1, 0.125}, {2, 0.25}});
    file.table("q_inductance", {1, 0}).block({10, 20}, {{-1, 3, 4}, {1, 5, 6}});
    return file;
}
std::string whole_binary() {
    LegacyBytes file;
    file.version(901.0).control(10000, 1).key("turns_in_coil").float64(12.5).key("number_of_poles").int32(8);
    file.parameter(1).key("RU").float64(0.75).settings(2).key("n").raw("i").int32(3).key("t").raw("s").key("text");
    file = with_tables(file);
    file.table("torque", {0, 1, 0}).int32(2).float64(7).block({1}, {{1, 11}}).float64(8).block({1}, {{1, 12}});
    return file.str();
}
std::string whole_ascii() {
    LegacyText file;
    file.version("901").control(10000, 1).line("\"turns_in_coil\" 12.5").line("\"number_of_poles\" 8");
    file.parameter(1).line("\"RU\" 0.75").settings(2).line("\"n\" i 3").line("\"t\" s \"text\"");
    file = with_tables(file);
    file.table("torque", {0, 1, 0}).line("2").line("7").block({1}, {{1, 11}}).line("8").block({1}, {{1, 12}});
    return file.str();
}

void expect_same(const KZB_STORE& a, const KZB_STORE& b) {
    ASSERT_EQ(a.categories.size(), b.categories.size());
    for (std::size_t c = 0; c < a.categories.size(); ++c) {
        const KZB_CATEGORY& left = a.categories[c];
        const KZB_CATEGORY& right = b.categories[c];
        EXPECT_EQ(left.name, right.name);
        ASSERT_EQ(left.ints.size(), right.ints.size()) << left.name;
        ASSERT_EQ(left.doubles.size(), right.doubles.size()) << left.name;
        ASSERT_EQ(left.strings.size(), right.strings.size()) << left.name;
        ASSERT_EQ(left.tables.size(), right.tables.size()) << left.name;
        const auto same_entries = [](const auto& x, const auto& y) {
            for (std::size_t i = 0; i < x.size(); ++i) {
                EXPECT_EQ(x[i].keyword, y[i].keyword);
                EXPECT_EQ(x[i].value, y[i].value);
            }
        };
        same_entries(left.ints, right.ints);
        same_entries(left.doubles, right.doubles);
        same_entries(left.strings, right.strings);
        for (std::size_t t = 0; t < left.tables.size(); ++t) {
            const KZB_TABLE& x = left.tables[t];
            const KZB_TABLE& y = right.tables[t];
            EXPECT_EQ(x.keyword, y.keyword);
            EXPECT_EQ(x.sizes, y.sizes);
            EXPECT_EQ(x.cyclic, y.cyclic);
            ASSERT_EQ(x.total, y.total);
            EXPECT_TRUE(std::equal(x.values.data(), x.values.data() + x.total, y.values.data()));
            ASSERT_EQ(x.axes.size(), y.axes.size());
            for (std::size_t axis = 0; axis < x.axes.size(); ++axis) {
                ASSERT_EQ(x.axes[axis].size(), y.axes[axis].size());
                EXPECT_TRUE(
                    std::equal(x.axes[axis].data(), x.axes[axis].data() + x.axes[axis].size(), y.axes[axis].data()));
            }
        }
    }
}

TEST_F(LegacyReading, both_forms_of_one_file_give_the_same_store) {
    EXPECT_EQ(read(whole_binary()), 0);
    KZB_STORE other;
    std::swap(store_, other);
    EXPECT_EQ(read_ascii_file(whole_ascii()), 0);
    expect_same(store_, other);
}

TEST_F(LegacyReading, written_file_is_of_the_present_form_and_reads_back_equal) {
    for (const bool ascii : {false, true}) {
        const std::string old_file = write(ascii ? whole_ascii() : whole_binary(), "old.kzb");
        const std::string new_file = path("new.kzb");
        ascii ? setenv("KZB_READING_ASCII", "1", 1) : unsetenv("KZB_READING_ASCII");
        KZB_STORE* handle = nullptr;
        kzb_initialize(&handle);
        ASSERT_EQ(kzb_reader(old_file.c_str(), handle), 0);
        kzb_writer(new_file.c_str(), handle);
        kzb_finish(handle);
        unsetenv("KZB_READING_ASCII");
        EXPECT_EQ(slurp(new_file).substr(0, 12), "$DORN-KZb,#\n");

        KZB_STORE before;
        std::swap(store_, before);
        EXPECT_EQ(ascii ? read_ascii_file(slurp(old_file)) : read(slurp(old_file)), 0);
        std::swap(store_, before);
        EXPECT_EQ(read_path(new_file), 0);
        load();
        expect_same(store_, before);
        EXPECT_EQ(table("d_flux", "d_flux").values[0], 0.125);
        EXPECT_EQ(get_double(store_, "d_flux", "d_flux"), 0.125);
        EXPECT_EQ(table("dq_inductance", "q_inductance").cyclic, (std::vector<int>{1, 0}));
        EXPECT_TRUE(has_application(store_, "PMSM", "LdLq"));
        store_ = KZB_STORE();
    }
}

TEST_F(LegacyReading, selecting_an_application_prints_a_message_and_leaves_the_tables) {
    for (const bool ascii : {false, true}) {
        EXPECT_EQ(ascii ? read_ascii_file(whole_ascii()) : read(whole_binary()), 0);
        const double* values = table("dq_inductance", "q_inductance").values.data();
        captured([&] {
            kzb_set_application("PMSM", "LdLq", &store_);
            return 0;
        });
        EXPECT_EQ(out_, "The table values have been already read in case of old formats files.\n");
        EXPECT_EQ(err_, "");
        EXPECT_EQ(store_.error, 0);
        EXPECT_EQ(store_.motor, "PMSM");
        const KZB_TABLE& after = table("dq_inductance", "q_inductance");
        EXPECT_EQ(after.values.data(), values);
        EXPECT_EQ(numbers(after.values), (std::vector<double>{3, 4, 5, 6}));
        EXPECT_EQ(after.loaded, 0);
        EXPECT_EQ(after.file_position, 0);
    }
}

TEST_F(LegacyReading, d_flux_is_found_as_a_double_beside_its_table) {
    EXPECT_EQ(read(whole_binary()), 0);
    EXPECT_EQ(kzb_get_double("d_flux", "d_flux", &store_), 0.125);
    EXPECT_EQ(kzb_get_table_dim("d_flux", "d_flux", &store_), 2);
}

TEST_F(LegacyReading, steps_behind_the_read_run) {
    EXPECT_EQ(read(whole_binary()), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 0);
    LegacyBytes losses;
    losses.table("eddyloss", {0, 0}).block({1}, {{1, 1}});
    EXPECT_EQ(read(losses.table("hysloss", {0, 0}).block({1}, {{1, 1}}).str()), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 1);
    EXPECT_EQ(read_ascii_file(LegacyText().control(10000, 1).line("\"incomplete\" 0").str()), 0);
    EXPECT_EQ(store_.warning, 90033);
    EXPECT_EQ(read(LegacyBytes().version(-1.0).str()), 1);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 1);
}

// Its first version line is no double from 0 to 1000, or its first count none that the file can hold.
TEST_F(LegacyReading, ascii_file_tried_as_binary_fails_in_its_first_sections) {
    for (const char* version : {"900.5", "   900.5", "    9.0050000000e+02", "900.500000"}) {
        LegacyText file;
        two_axes(file.version(version).control(10000, 3).parameter(1).line("\"RU\" 1.5").table("flux", {0, 0}));
        EXPECT_EQ(read(file.str()), 1) << version;
        EXPECT_EQ(told(binary_fault), 1U) << version;
        EXPECT_TRUE(find_category(store_, "flux") == nullptr);
        EXPECT_EQ(read_ascii_file(file.str()), 0) << version;
        store_ = KZB_STORE();
    }
}

TEST_F(LegacyReading, binary_file_tried_as_ascii_does_no_harm) {
    read_ascii_file(whole_binary());
    EXPECT_FALSE(has_category(store_, "d_flux"));
    EXPECT_FALSE(has_category(store_, "dq_inductance"));
}

TEST_F(LegacyReading, closed_source_leaves_90002) {
    FileSource source(path("absent.kzb").c_str());
    for (const char* form : {"binary", "ascii"}) {
        store_.input_type = form;
        store_.error = 0;
        EXPECT_EQ(read_legacy_file(store_, source), 1);
        EXPECT_EQ(store_.error, 90002);
    }
}

TEST_F(LegacyReading, second_file_adds_to_the_first) {
    EXPECT_EQ(read(whole_binary()), 0);
    EXPECT_EQ(read(LegacyBytes().parameter(1).key("RA").float64(2.0).str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 0.75);
    EXPECT_EQ(get_double(store_, "parameter", "RA"), 2.0);
    EXPECT_EQ(numbers(table("dq_inductance", "q_inductance").values), (std::vector<double>{3, 4, 5, 6}));
}

}  // namespace
}  // namespace kzb::test
