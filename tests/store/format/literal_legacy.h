// A second reader of files of the older layout, written from the description of the layout alone with the calls of the
// C library: bytes and lines from a stream, fields with sscanf, one value at a time into a table.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "store/measured/literal_store.h"

namespace kzb_test::literal {

class LegacyReader {
  public:
    LegacyReader(Store& store, const char* path) : store_(store), path_(path) {}

    int binary() {
        file_ = std::fopen(path_, "rb");
        if (file_ == nullptr) {
            store_.error = 90002;
            return 1;
        }
        int result = 0;
        while (result == 0 && std::feof(file_) == 0) {
            std::string word;
            if (delimited('*', '\n', word) != 0) {
                store_.error = 90004;
                result = 1;
                break;
            }
            int failed = 0;
            if (word == "version") {
                failed = binary_version();
            } else if (word == "control") {
                failed = binary_control();
            } else if (word == "parameter") {
                failed = binary_parameter();
            } else if (word == "settings") {
                failed = binary_settings();
            } else if (word == "table") {
                failed = binary_table();
            }
            if (failed != 0) {
                store_.told.emplace_back("reading error in ReadCategoryParameterByBinaryModeForOldFileFormat");
                result = 1;
            }
        }
        std::fclose(file_);
        return result;
    }

    int ascii() {
        file_ = std::fopen(path_, "r");
        if (file_ == nullptr) {
            store_.error = 90002;
            return 1;
        }
        int result = 0;
        std::string line;
        while (result == 0 && next_line(line)) {
            if (line == "*version") {
                double version = 0;
                next_line(line);
                std::sscanf(line.c_str(), "%lf", &version);
                if (version >= 0 && version <= 1000) {
                    store_.version = version;
                    store_.put_double("version", "version", version);
                }
            } else if (line == "*control") {
                result = ascii_control();
                if (result != 0) {
                    store_.told.emplace_back("reading error in ReadCategoryParameterByAsciiModeForOldFileFormat");
                }
            } else if (line == "*parameter") {
                const int count = ascii_count();
                for (int i = 0; i < count && next_line(line); ++i) {
                    char quoted[128] = "";
                    double value = 0;
                    std::sscanf(line.c_str(), "%s %lf", quoted, &value);
                    store_.put_double("parameter", unquoted(quoted), value);
                }
            } else if (line == "*settings") {
                ascii_settings();
            } else if (line == "*table") {
                ascii_table();
            }
        }
        std::fclose(file_);
        return result;
    }

  private:
    // ------------------------------------------------------------------------------------------------ both forms
    std::string unquoted(const std::string& text) {
        const std::size_t first = text.find('"');
        if (first == std::string::npos) {
            store_.told.emplace_back("error at RemoveDoubleQuatation");
            return {};
        }
        const std::size_t second = text.find('"', first + 1);
        if (second == std::string::npos) {
            store_.told.emplace_back("error at RemoveDoubleQuatation");
            return text.substr(first + 1);
        }
        return text.substr(first + 1, second - first - 1);
    }

    void select_application(bool is_binary) {
        const int motor = store_.get_int("control", "motor_type");
        const int accuracy = store_.get_int("control", "accuracy_type");
        switch (motor) {
            case 10000:
                if (accuracy >= 1 && accuracy <= 3) {
                    motor_ = "PMSM";
                    application_ = accuracy == 1 ? "LdLq" : accuracy == 2 ? "SimpleHarmonic" : "Harmonic";
                } else if (is_binary) {
                    motor_ = "PMSM";
                    application_ = "SimpleHarmonic";
                }
                break;
            case 10001:
            case 10002:
            case 10003:
                motor_ = "2-PhaseStepping";
                break;
            case 10004:
                motor_ = "LinearSolenoid";
                break;
            case 10005:
                motor_ = "LinearSynchronous";
                break;
            default:
                store_.told.emplace_back("application is not found.");
        }
    }

    std::string category_of(const std::string& name, int dim) const {
        const bool harmonic = motor_ == "PMSM" && application_ == "Harmonic";
        const bool simple = motor_ == "PMSM" && application_ == "SimpleHarmonic";
        const bool stepping = motor_ == "2-PhaseStepping";
        const bool solenoid = motor_ == "LinearSolenoid";
        const bool linear = motor_ == "LinearSynchronous";
        if (name == "d_inductance" || name == "q_inductance") {
            return "dq_inductance";
        }
        if (name == "inductance") {
            return harmonic ? "harmonic_inductance" : "inductance";
        }
        if (name == "flux") {
            if (simple || linear || stepping) {
                return "mag_flux";
            }
            return harmonic ? "current_flux" : solenoid ? "distance_flux" : "flux";
        }
        if (name == "magflux") {
            return harmonic ? "current_flux" : "magflux";
        }
        if (name == "torque" || name == "torque_ibeta" || name == "force") {
            if (simple || stepping) {
                return "torque";
            }
            if (harmonic) {
                return dim >= 4 ? "pmsm_torque" : "harmonic_torque";
            }
            return linear || solenoid ? "distance_force" : name;
        }
        return name == "attractive_force" ? "distance_force" : name;
    }

    struct Head {
        int method = 0;
        std::string name;
        int type = 0;
        std::string shaft;
        int dim = 0;
        std::vector<int> cyclic;
        std::string category;
    };

    void put_head(Head& head) {
        head.category = category_of(head.name, head.dim);
        store_.require(head.category);
        if (head.method == 31000) {
            store_.put_string(head.category, "ShaftName", head.shaft);
        }
        store_.put_int(head.category, "reading_method", head.method);
        store_.put_int(head.category, "table_type", head.type);
    }

    void finish(const Head& head) {
        Table* table = made_ ? store_.table(head.category, head.name) : nullptr;
        if (table == nullptr) {
            return;
        }
        for (std::size_t a = 0; a < head.cyclic.size() && a < table->cyclic.size(); ++a) {
            table->cyclic[a] = head.cyclic[a];
        }
        if (head.category == "d_flux" && head.name == "d_flux") {
            store_.put_double("d_flux", "d_flux", table->values[0]);
        }
    }

    // The body of both forms. `sizes` and `nodes` of the outer axes are kept until the first block makes the table.
    struct Numbers {
        std::function<int()> size;                            // of an outer axis
        std::function<double()> node;                         // of an outer axis
        std::function<void(int&, int&)> shape;                // of a block
        std::function<std::vector<double>(std::size_t)> row;  // numbers of a block, one line
    };

    void body(const Head& head, const Numbers& in) {
        made_ = false;
        std::vector<int> sizes;
        std::vector<int> at;
        std::vector<double> pending;
        nested(head, in, 0, sizes, at, pending);
    }

    void nested(const Head& head, const Numbers& in, int axis, std::vector<int> sizes, std::vector<int> at,
                std::vector<double> nodes) {
        if (head.dim - axis > 2) {
            const int size = in.size();
            for (int i = 0; i < size; ++i) {
                auto deeper_sizes = sizes;
                auto deeper_at = at;
                auto deeper_nodes = nodes;
                deeper_sizes.push_back(size);
                deeper_at.push_back(i);
                deeper_nodes.push_back(in.node());
                nested(head, in, axis + 1, deeper_sizes, deeper_at, deeper_nodes);
            }
            return;
        }
        int rows = 0;
        int columns = 0;
        in.shape(rows, columns);
        if (!made_) {
            sizes.push_back(rows);
            sizes.push_back(columns);
            made_ = store_.create(head.category, head.name, sizes);
        }
        Table& table = *store_.table(head.category, head.name);
        for (std::size_t a = 0; a < nodes.size(); ++a) {
            store_.set_axis(table, static_cast<int>(a), at[a], nodes[a]);
        }
        const auto columns_count = static_cast<std::size_t>(columns);
        const std::vector<double> column_nodes = in.row(columns_count);
        for (int j = 0; j < columns; ++j) {
            store_.set_axis(table, head.dim - 1, j, column_nodes[static_cast<std::size_t>(j)]);
        }
        for (int i = 0; i < rows; ++i) {
            const std::vector<double> row = in.row(columns_count + 1);
            store_.set_axis(table, head.dim - 2, i, row[0]);
            auto index = at;
            index.push_back(i);
            index.push_back(0);
            for (int j = 0; j < columns; ++j) {
                index.back() = j;
                store_.set_value(table, index, row[static_cast<std::size_t>(j) + 1]);
            }
        }
    }

    // ----------------------------------------------------------------------------------------------- binary form
    int delimited(int open, int close, std::string& result) {
        result.clear();
        int c = 0;
        if (open != 0) {
            while ((c = std::fgetc(file_)) != open) {
                if (c == EOF) {
                    return 0;
                }
            }
        }
        while ((c = std::fgetc(file_)) != close) {
            if (c == EOF) {
                return 0;
            }
            if (c == '*' || result.size() == 255) {
                return 1;
            }
            result += static_cast<char>(c);
        }
        return 0;
    }
    std::int32_t int32() {
        std::int32_t value = 0;
        return std::fread(&value, sizeof value, 1, file_) == 1 ? value : 0;
    }
    double float64() {
        double value = 0;
        return std::fread(&value, sizeof value, 1, file_) == 1 ? value : 0;
    }
    std::string key() {
        std::string text;
        delimited('"', '"', text);
        return text;
    }

    int binary_version() {
        const double version = float64();
        if (!(version >= 0 && version <= 1000)) {
            return 1;
        }
        store_.version = version;
        store_.put_double("version", "version", version);
        return 0;
    }
    int binary_control() {
        static const std::vector<std::string> ints = {"motor_type", "number_of_poles", "number_of_splinetables",
                                                      "accuracy_type", "number_of_tables"};
        static const std::vector<std::string> doubles = {
            "beta_zero",   "coef_inertia1", "coef_inertia2", "coef_inductance", "coef_flux",  "coef_torque",
            "coef_magnet", "coef_material", "coef_mass1",    "coef_mass2",      "coef_force", "electrical_length"};
        static const std::vector<std::string> turns = {"turns_in_coil", "turns_coil2", "turns_coil1"};
        const auto in = [](const std::vector<std::string>& list, const std::string& name) {
            return std::find(list.begin(), list.end(), name) != list.end();
        };
        int32();
        for (int count = 0;; ++count) {
            const long before = std::ftell(file_);
            std::string name;
            const int failed = delimited('"', '"', name);
            const bool is_int = in(ints, name);
            const bool is_double = in(doubles, name);
            const bool is_turns = in(turns, name);
            if (failed != 0 || (!is_int && !is_double && !is_turns)) {
                std::fseek(file_, before, SEEK_SET);
                break;
            }
            if (count == 1000) {
                store_.error = 90003;
                return 1;
            }
            if (is_int) {
                store_.put_int("control", name, int32());
            } else if (is_turns && store_.version < 901.0) {
                store_.put_double("control", name, int32());
            } else {
                store_.put_double("control", name, float64());
            }
        }
        select_application(true);
        return 0;
    }
    int binary_parameter() {
        int32();
        const int count = int32();
        for (int i = 0; i < count; ++i) {
            const std::string name = key();
            store_.put_double("parameter", name, float64());
        }
        return count < 0 ? 1 : 0;
    }
    int binary_settings() {
        int32();
        const int count = int32();
        for (int i = 0; i < count; ++i) {
            const std::string name = key();
            const int type = std::fgetc(file_);
            if (type == 'i') {
                store_.put_int("settings", name, int32());
            } else if (type == 'd') {
                store_.put_double("settings", name, float64());
            } else if (type == 's') {
                store_.put_string("settings", name, key());
            }
        }
        return count < 0 ? 1 : 0;
    }
    int binary_table() {
        Head head;
        head.method = int32();
        delimited('*', '\n', head.name);
        head.type = int32();
        if (head.method == 31000) {
            head.shaft = key();
        }
        head.dim = int32();
        if (head.dim < 1) {
            return 1;
        }
        for (int a = 0; a < head.dim; ++a) {
            head.cyclic.push_back(int32());
        }
        put_head(head);
        Numbers in;
        in.size = [&] { return int32(); };
        in.node = [&] { return float64(); };
        in.shape = [&](int& rows, int& columns) {
            rows = int32();
            columns = int32();
        };
        in.row = [&](std::size_t count) {
            std::vector<double> row;
            for (std::size_t i = 0; i < count; ++i) {
                row.push_back(float64());
            }
            return row;
        };
        body(head, in);
        finish(head);
        return 0;
    }

    // ------------------------------------------------------------------------------------------------ ascii form
    bool next_line(std::string& line) {
        char buffer[128];
        if (std::fgets(buffer, sizeof buffer, file_) == nullptr) {
            return false;
        }
        line = buffer;
        if (!line.empty() && line.back() == '\n') {
            line.pop_back();
        }
        return true;
    }
    int line_int() {
        std::string line;
        int value = 0;
        next_line(line);
        std::sscanf(line.c_str(), "%d", &value);
        return value;
    }
    int ascii_count() {
        std::string line;
        next_line(line);
        return line_int();
    }

    int ascii_control() {
        std::string line;
        next_line(line);
        for (int count = 0;; ++count) {
            const long before = std::ftell(file_);
            if (!next_line(line)) {
                break;
            }
            if (!line.empty() && line[0] == '*') {
                std::fseek(file_, before, SEEK_SET);
                break;
            }
            if (count == 1000) {
                store_.error = 90003;
                return 1;
            }
            char quoted[128] = "";
            char text[128] = "";
            double value = 0;
            std::sscanf(line.c_str(), "%s %lf", quoted, &value);
            const std::string name = unquoted(quoted);
            if (name == "motor_type" || name == "number_of_poles" || name == "accuracy_type") {
                store_.put_int("control", name, static_cast<int>(value));
            } else if (name == "coef_file_torque" || name == "coef_file_force") {
                std::sscanf(line.c_str(), "%s %s", quoted, text);
                store_.put_string("control", name, unquoted(text));
            } else {
                store_.put_double("control", name, value);
            }
        }
        select_application(false);
        return 0;
    }
    void ascii_settings() {
        const int count = ascii_count();
        std::string line;
        for (int i = 0; i < count && next_line(line); ++i) {
            char quoted[128] = "";
            char type[128] = "";
            char text[128] = "";
            int word = 0;
            double value = 0;
            std::sscanf(line.c_str(), "%s %s", quoted, type);
            const std::string name = unquoted(quoted);
            if (type[0] == 'i') {
                std::sscanf(line.c_str(), "%s %s %d", quoted, type, &word);
                store_.put_int("settings", name, word);
            } else if (type[0] == 's') {
                std::sscanf(line.c_str(), "%s %s %s", quoted, type, text);
                store_.put_string("settings", name, unquoted(text));
            } else if (type[0] == 'd') {
                std::sscanf(line.c_str(), "%s %s %lf", quoted, type, &value);
                store_.put_double("settings", name, value);
            }
        }
    }
    void ascii_table() {
        Head head;
        std::string line;
        head.method = line_int();
        next_line(line);
        char word[128] = "";
        std::sscanf(line.c_str(), "%s", word);
        head.name = word;
        head.name.erase(std::remove(head.name.begin(), head.name.end(), '*'), head.name.end());
        head.type = line_int();
        if (head.method == 31000) {
            next_line(line);
            char shaft[128] = "";
            std::sscanf(line.c_str(), "%s\n", shaft);
            head.shaft = unquoted(shaft);
        }
        head.dim = line_int();
        next_line(line);
        for (int a = 0; a < head.dim; ++a) {
            int flag = 0;
            const auto start = static_cast<std::size_t>(a) * 10;
            if (start < line.size()) {
                std::sscanf(line.c_str() + start, "%10d", &flag);
            }
            head.cyclic.push_back(flag);
        }
        put_head(head);
        if (head.dim < 2 || head.dim > 5) {
            store_.told.emplace_back("The values can not be read for this dimension table.");
            return;
        }
        std::vector<char> buffer;
        Numbers in;
        in.size = [&] { return line_int(); };
        in.node = [&] {
            std::string text;
            double value = 0;
            next_line(text);
            std::sscanf(text.c_str(), "%lf", &value);
            return value;
        };
        in.shape = [&](int& rows, int& columns) {
            std::string text;
            next_line(text);
            std::sscanf(text.c_str(), "%d %d", &rows, &columns);
            if (buffer.empty()) {
                buffer.resize(static_cast<std::size_t>(columns + 1) * 20 + 2);
            }
        };
        in.row = [&](std::size_t count) {
            std::vector<double> row;
            if (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file_) == nullptr) {
                buffer[0] = '\0';
            }
            const std::string text = buffer.data();
            for (std::size_t i = 0; i < count; ++i) {
                double value = 0;
                if (i * 20 < text.size()) {
                    std::sscanf(text.substr(i * 20, 20).c_str(), "%lf", &value);
                }
                row.push_back(value);
            }
            return row;
        };
        body(head, in);
        finish(head);
    }

    Store& store_;
    const char* path_;
    FILE* file_ = nullptr;
    std::string motor_;
    std::string application_;
    bool made_ = false;
};

}  // namespace kzb_test::literal
