#include "faults/seeds.h"

#include <cstdio>

#include "interface/measured_text.h"

namespace kzb_test {
namespace {

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%20.10e", value);
    return text;
}

std::string block(const std::vector<double>& values) {
    char count[16];
    std::snprintf(count, sizeof count, "%10d,\n", static_cast<int>(values.size()));
    std::string text = count;
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += number(values[i]) + (i % 5 == 4 || i + 1 == values.size() ? "\n" : "");
    }
    return text;
}

std::string table_text(const char* category, const char* key, KZB_STORE* store) {
    const int dim = kzb_get_table_dim(category, key, store);
    std::string sizes;
    std::string flags;
    std::string grids;
    std::vector<int> rows;
    std::size_t total = 1;
    for (int axis = 1; axis <= dim; ++axis) {
        rows.push_back(kzb_get_table_num_rows(category, key, axis, store));
        total *= static_cast<std::size_t>(rows.back());
        sizes += std::to_string(rows.back()) + ",";
        flags += std::to_string(kzb_get_table_cyclic_flag(category, key, axis, store)) + ",";
        std::vector<double> nodes;
        for (int i = 0; i < rows.back(); ++i) {
            nodes.push_back(kzb_get_table_axis_value(category, key, axis, i, store));
        }
        grids += block(nodes);
    }
    std::vector<double> values;
    for (std::size_t flat = 0; flat < total; ++flat) {
        std::vector<int> at(rows.size());
        std::size_t rest = flat;
        for (std::size_t a = rows.size(); a-- > 0;) {
            at[a] = static_cast<int>(rest) % rows[a];
            rest /= static_cast<std::size_t>(rows[a]);
        }
        values.push_back(kzb_get_table_value(category, key, at.data(), store));
    }
    return std::string(key) + ",table," + std::to_string(dim) + "," + sizes + flags + "\n" + block(values) + grids +
           ",#\n";
}

// A machine of three small tables, or of one with `rows` positions.
void fill_small(ModelFile& file, int rows) {
    rotary_frame(file, 1, 0.5);
    file.text("information", "title", "machine")
        .table("dq_inductance", "d_inductance", {betas, currents}, constant(2e-3))
        .table("dq_inductance", "q_inductance", {betas, currents}, constant(3e-3))
        .number("d_flux", "d_flux", 0.1)
        .table("dq_torque", "torque_ibeta", {betas, every(1.0, 1.0, rows)}, constant(1.5), {1})
        .table("hysloss", "hysloss1", {currents, currents}, constant(3.0))
        .table("eddyloss", "eddyloss1", {currents, currents}, constant(7.0))
        .integer("hysloss", "numMat", 1)
        .integer("hysloss", "matID1", 1)
        .integer("eddyloss", "matID1", 1);
}

// With more rows in the binary form, where a number takes less.
std::vector<Seed> both_forms(const Folder& folder, const std::string& name, int ascii_rows, int binary_rows) {
    ModelFile ascii;
    ModelFile binary;
    fill_small(ascii, ascii_rows);
    fill_small(binary, binary_rows);
    write_file(folder / (name + "_ascii"), ascii_form(ascii.store()));
    write_file(folder / (name + "_binary"), read_file(binary.path()));
    return {{name + " ascii", folder / (name + "_ascii")}, {name + " binary", folder / (name + "_binary")}};
}

// Another table for an older binary file: a square of values with a node for each row and column.
std::string older_table(const std::string& name) {
    constexpr int side = 11;
    std::string bytes = "*table\n";
    add_word(bytes, 1);
    bytes += "*" + name + "\n";
    for (const int head : {2, 2, 0, 0, side, side}) {  // type, axes, their cyclic flags, rows, columns
        add_word(bytes, head);
    }
    for (int i = 0; i < side + side * (1 + side); ++i) {  // nodes of the columns; of each row its node and values
        add_word(bytes, 1.0 * i);
    }
    return bytes;
}

}  // namespace

std::string ascii_form(KZB_STORE* store) {
    std::string text = "$DORN-KZa,#\n";
    for (int c = 0; c < kzb_get_category_num(store); ++c) {
        const char* const category = kzb_get_category_name(c, store);
        const int counts[] = {kzb_get_int_num(category, store), kzb_get_double_num(category, store),
                              kzb_get_string_num(category, store), kzb_get_table_num(category, store)};
        text += std::string("*") + category + ",";
        for (const int count : counts) {
            text += std::to_string(count) + ",";
        }
        text += "#\n";
        for (int i = 0; i < counts[0]; ++i) {
            const std::string key = kzb_get_int_keyword(category, i, store);
            text += key + ",int," + std::to_string(kzb_get_int(category, key.c_str(), store)) + ",#\n";
        }
        for (int i = 0; i < counts[1]; ++i) {
            const std::string key = kzb_get_double_keyword(category, i, store);
            text += key + ",double," + number(kzb_get_double(category, key.c_str(), store)) + ",#\n";
        }
        for (int i = 0; i < counts[2]; ++i) {
            const std::string key = kzb_get_string_keyword(category, i, store);
            const std::string value = kzb_get_string(category, key.c_str(), store);
            text += key + ",string," + std::to_string(value.size()) + ",\"" + value + "\",#\n";
        }
        for (int i = 0; i < counts[3]; ++i) {
            text += table_text(category, kzb_get_table_keyword(category, i, store), store);
        }
    }
    return text + "$end_of_kzb_file,#\n";
}

std::vector<Seed> model_seeds(const Folder& folder) {
    std::vector<Seed> seeds = both_forms(folder, "small", 12, 40);
    const std::string older = std::string(KZB_SOURCE_DIR) + "/fuzz/seeds/read_model/";
    seeds.push_back({"older ascii", older + "legacy_ascii.kzb", true});
    write_file(folder / "older_binary", read_file(older + "legacy_binary.kzb") + older_table("hysloss"));
    seeds.push_back({"older binary", folder / "older_binary"});
    return seeds;
}

std::vector<Seed> large_seeds(const Folder& folder) {
    return both_forms(folder, "large", 16000, 40000);
}

std::vector<Seed> measured_seeds(const Folder& folder) {
    std::string correction;
    for (const char* const factor : {"1.25", "0.75", "1.5", "1.0"}) {
        for (const char* const item : {"Torque", "Inductance", "MagFlux", "Ironloss"}) {
            correction += everywhere(item, factor) + everywhere(item, "0.5");
        }
    }
    write_file(folder / "correction", correction_file(correction));
    std::string losses = "$ amplitude phase speed voltage carrier loss\n";
    std::string described =
        "#reference_name=\"shaft\",type=\"Speed\",index=\"0\",periodic=\"0\"\n"
        "#reference_name=\"winding set\",type=\"Current\",index=\"1\",periodic=\"0\"\n"
        "#reference_name=\"bus\",type=\"Voltage\",index=\"2\",periodic=\"0\"\n";
    constexpr int loss_points = 80;
    constexpr int described_points = 160;
    for (int i = 0; i < described_points; ++i) {
        const std::string point = std::to_string(i / 8) + " " + std::to_string(i / 4 % 2) + " " + std::to_string(i % 4);
        losses += i < loss_points ? point + " 300 10000 2.5\n" : std::string();
        described += point + " 1.25\n";
    }
    write_file(folder / "losses", losses);
    write_file(folder / "described", described);
    return {{"correction", folder / "correction"}, {"losses", folder / "losses"}, {"described", folder / "described"}};
}

}  // namespace kzb_test
