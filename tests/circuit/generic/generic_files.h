// Generic models for tests, made in memory: records of lists by their keys.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "circuit/generic/calc_eq_generic.h"
#include "store/record_list.h"
#include "store/store.h"

namespace kzb_test {

using FieldValue = std::variant<int, double, std::string>;
using Fields = std::initializer_list<std::pair<const char*, FieldValue>>;

struct GenericAxis {
    std::vector<double> nodes;
    bool cyclic = false;
};
using GenericFormula = std::function<double(const std::vector<double>&)>;

// Nodes 0, 1 .. count - 1.
inline GenericAxis places(int count) {
    GenericAxis axis;
    for (int i = 0; i < count; ++i) {
        axis.nodes.push_back(i);
    }
    return axis;
}

class GenericFile {
  public:
    GenericFile() {
        kzb::put_int(store, "control", "motor_type", 10008);
        kzb::put_int(store, "parameter", "dummy", 0);
    }

    void put(const std::string& category, Fields fields) {
        kzb::require_category(store, category);
        for (const auto& [key, value] : fields) {
            if (const int* const number = std::get_if<int>(&value)) {
                kzb::put_int(store, category, key, *number);
            } else if (const double* const real = std::get_if<double>(&value)) {
                kzb::put_double(store, category, key, *real);
            } else {
                kzb::put_string(store, category, key, std::get<std::string>(value));
            }
        }
    }
    // Appends a record to a list; its place.
    int add(const std::string& path, Fields fields, int outer = 0) {
        const int place = kzb::record_count(store, path, outer);
        put(kzb::record_name(path, outer, place), fields);
        return place;
    }

    void terminal(int id, int type, const std::string& name = "") {
        add("terminal_list;terminal", {{"id", id}, {"type", type}, {"name", name}});
    }
    // A terminal driven by an input port.
    void source(int id, int port, const std::string& name = "") {
        terminal(id, 1, name);
        add("input_port_list;source", {{"id", port}, {"terminal_id", id}});
    }
    void element(int id, int first, int second, int type_id) {
        add("element_list;element",
            {{"id", id}, {"1st_terminal_id", first}, {"2nd_terminal_id", second}, {"element_type_id", type_id}});
    }
    // An element type of one value, and a branch of the same id between two terminals, with the next port of its list.
    void part(int id, int first, int second, int type, const char* key, double value, const std::string& name = "") {
        add("element_type_list;element_type", {{"id", id}, {"type", type}, {"name", name}, {key, value}});
        element(id, first, second, id);
    }
    void resistor(int id, int first, int second, double ohm, const std::string& name = "") {
        part(id, first, second, -1, "resistance", ohm, name);
        port("resistor", id);
    }
    void inductor(int id, int first, int second, double henry, const std::string& name = "") {
        part(id, first, second, -3, "inductance", henry, name);
        port("coil_const", id);
    }
    void capacitor(int id, int first, int second, double farad, const std::string& name = "") {
        part(id, first, second, -2, "capacitance", farad, name);
        port("capacitor", id);
    }
    void probe(int id, int first, int second, const std::string& name = "") {
        part(id, first, second, -50, "value", 0.0, name);
        port("voltage_probe", id);
    }
    void coil(int id, int first, int second, double ohm, int group, int interacted, const std::string& name = "") {
        const int place =
            add("element_type_list;element_type",
                {{"id", id}, {"type", 1}, {"name", name}, {"resistance", ohm}, {"group_id", group}, {"turns", 1.0}});
        for (int j = 0; j < interacted; ++j) {
            add("element_type_list;element_type;interacted_coil", {{"id", j + 1}}, place);
        }
        element(id, first, second, id);
        port("coil_fem", id);
    }
    void port(const std::string& list, int component) {
        const std::string path = "output_port_list;" + list;
        const int number = kzb::record_count(store, path) + 1;
        add(path, {{"id", number}, {"component_id", component}});
    }

    void table(const std::string& category, const std::vector<GenericAxis>& axes, const GenericFormula& value) {
        std::vector<int> sizes;
        for (const GenericAxis& axis : axes) {
            sizes.push_back(static_cast<int>(axis.nodes.size()));
        }
        ASSERT_EQ(kzb::create_table(store, category, "table", static_cast<int>(sizes.size()), sizes.data()), 0);
        KZB_TABLE* const made = kzb::find_table(store, category, "table");
        for (std::size_t a = 0; a < axes.size(); ++a) {
            for (std::size_t i = 0; i < axes[a].nodes.size(); ++i) {
                kzb::table_set_axis_value(made, static_cast<int>(a) + 1, static_cast<int>(i), axes[a].nodes[i]);
            }
            kzb::table_set_cyclic_flag(made, static_cast<int>(a) + 1, axes[a].cyclic ? 1 : 0);
        }
        std::vector<int> index(axes.size(), 0);
        std::vector<double> point(axes.size());
        for (int n = 0; n < made->total; ++n) {
            for (std::size_t a = 0; a < axes.size(); ++a) {
                point[a] = axes[a].nodes[static_cast<std::size_t>(index[a])];
            }
            kzb::table_set_value(made, index.data(), value(point));
            for (std::size_t a = axes.size(); a-- > 0 && ++index[a] == sizes[a];) {
                index[a] = 0;
            }
        }
    }
    void record_table(const std::string& path, const std::vector<GenericAxis>& axes, const GenericFormula& value,
                      int place = 0) {
        table(kzb::record_name(path, 0, place), axes, value);
    }

    KZB_STORE store;
};

// A model stepped by hand: one sample is a step and its acceptance.
struct GenericRun {
    explicit GenericRun(KZB_STORE& store) : result(model.initialize(store)) {}

    int sample(double time, const std::vector<double>& inputs, const std::vector<double>& positions = {},
               const std::vector<double>& switches = {}) {
        const int done = model.step(inputs, positions, time,
                                    switches.empty() ? std::vector<double>(inputs.size(), 1.0) : switches, status);
        model.update();
        return done;
    }

    kzb::Calc_Eq_generic model;
    int result;
    int status = 0;
};

}  // namespace kzb_test
