// A small generic model made of a fuzz input: a circuit of a few parts, motions, tables in either form, expressions;
// numbers and links that are sound, or that the input chooses. A model made of zeros alone is whole and sound.
#pragma once

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "choices.h"
#include "model_draft.h"
#include "store/record_list.h"
#include "table/table.h"

namespace kzb_fuzz {

class GenericModel {
  public:
    GenericModel(ModelDraft& model, Input& in) : model_(model), in_(in) {}

    void put() {
        model_.category("control").integer("motor_type", 10008);
        model_.category("parameter").number("any", 0.0);
        put_terminals();
        put_parts();
        put_motions();
        if (in_.flag()) {
            put_table_axes();
        } else {
            put_coil_sets();
        }
        put_outputs();
        put_iron_loss();
    }

  private:
    // Each axis makes a lookup up to four times as dear, and a step makes one for each pair of coils in each of its
    // passes.
    static constexpr int most_axes = 3;
    static constexpr unsigned most_parts = 3;
    // Far more than there are.
    static constexpr int most_stated_outputs = 100;

    // Mostly the sound number.
    int link(int sound) {
        const unsigned b = in_.byte();
        return b < 0xf0 ? sound : in_.index();
    }
    double value(double sound) {
        const unsigned b = in_.byte();
        return b < 0xe0 ? sound : in_.number();
    }
    int coil_count() const { return static_cast<int>(coils_.size()); }
    int count(std::string_view path, int outer = 0) { return counts_[{path, outer}]; }

    // The next record of a list within the first record of another one, or within the `outer` one of a third.
    CategoryDraft& record(std::string_view path, int outer = 0) {
        std::string& name = name_;
        name.clear();
        std::size_t end = path.find(';');
        name.append(path.substr(0, end)).append(";0;");
        std::string_view rest = path.substr(end + 1);
        end = rest.find(';');
        if (end != std::string_view::npos) {
            name.append(rest.substr(0, end + 1)).append(std::to_string(outer)).append(";");
            rest.remove_prefix(end + 1);
        }
        name.append(rest).append(";").append(std::to_string(counts_[{path, outer}]++)).append(";");
        return model_.append(name);
    }

    void put_terminals() {
        sources_ = 1 + static_cast<int>(in_.choice(2));
        const int nodes = static_cast<int>(in_.choice(2));
        record("terminal_list;terminal").integer("id", 1).integer("type", link(2)).text("name", "ground");
        for (int k = 0; k < sources_; ++k) {
            record("terminal_list;terminal").integer("id", 2 + k).integer("type", 1).text("name", "source");
            record("input_port_list;source").integer("id", link(k + 1)).integer("terminal_id", link(2 + k));
        }
        for (int k = 0; k < nodes; ++k) {
            record("terminal_list;terminal").integer("id", 2 + sources_ + k).integer("type", link(0));
        }
        terminals_ = 1 + sources_ + nodes;
    }

    void put_parts() {
        constexpr int types[] = {1, -1, -3, -2, -50, 99};
        constexpr const char* lists[] = {"output_port_list;coil_fem",      "output_port_list;resistor",
                                         "output_port_list;coil_const",    "output_port_list;capacitor",
                                         "output_port_list;voltage_probe", nullptr};
        constexpr const char* keys[] = {"resistance", "resistance", "inductance", "capacitance", "none", "none"};
        const int parts = 1 + static_cast<int>(in_.choice(most_parts));
        for (int id = 1; id <= parts; ++id) {
            // The first is a coil; the last kind, which no element can name by its id, is rare.
            const unsigned kind = id == 1 ? 0U : in_.byte() >= 0xf0 ? 5U : in_.choice(5);
            const int place = count("element_type_list;element_type");
            CategoryDraft& type = record("element_type_list;element_type");
            type.integer("id", link(id)).integer("type", types[kind]).text("name", "part");
            type.number(keys[kind], value(kind == 3 ? 1e-3 : 0.5));
            if (kind == 0) {
                coils_.push_back(id);
                type.integer("group_id", link(id)).number("turns", value(1.0));
                for (unsigned j = in_.choice(2); j < 1; ++j) {
                    record("element_type_list;element_type;interacted_coil", place).integer("id", 1);
                }
            }
            record("element_list;element")
                .integer("id", link(id))
                .integer("1st_terminal_id", link(2 + static_cast<int>(in_.choice(4)) % std::max(terminals_ - 1, 1)))
                .integer("2nd_terminal_id", link(1 + static_cast<int>(in_.choice(5)) % terminals_))
                .integer("element_type_id", link(kind == 5 ? 0 : id));
            if (lists[kind] != nullptr) {
                const int port = count(lists[kind]) + 1;
                record(lists[kind]).integer("id", link(port)).integer("component_id", link(id));
            }
        }
    }

    void put_motions() {
        motions_ = static_cast<int>(in_.choice(3));
        for (int id = 1; id <= motions_; ++id) {
            record("motion_condition_list;motion_condition")
                .integer("id", link(id))
                .integer("type", static_cast<int>(in_.choice(3)))
                .integer("flg_periodic", static_cast<int>(in_.choice(2)))
                .integer("forcetable_id", link(id))
                .integer("axis_no", link(id))
                .number("max_displacement", value(90.0))
                .number("coef_force", value(1.0))
                .text("name", "motion");
        }
    }

    std::string expression() {
        constexpr const char* pool[] = {"a",     "a+b*2", "",           "a^b",         "1/0",           "sqrt(-1)",
                                        "(((",   "a*",    "unknown",    "a>b ? a : b", "sin(a)/cos(b)", "-a^-b",
                                        "1e400", "a=b",   "min(a,b,1)", "rnd"};
        const unsigned b = in_.byte();
        if (b < 0xe0) {
            return pool[b % std::size(pool)];
        }
        // Any bytes, and nestings deeper than one would write (evaluate_expression has the really deep ones).
        if (b >= 0xf8) {
            const std::size_t depth = 5U * (b - 0xf7U);
            return std::string(depth, '(') + "a" + std::string(depth, ')');
        }
        std::string text;
        for (unsigned k = b - 0xe0; k > 0; --k) {
            text += static_cast<char>(in_.byte());
        }
        return text.substr(0, text.find('\0'));
    }
    void put_correction(CategoryDraft& record) {
        if (in_.byte() >= 0xc0) {
            record.text("correction_expression", expression()).text("correction_variable", in_.flag() ? "a" : "b");
        }
    }

    void put_table_axes() {
        axes_ = 1 + static_cast<int>(in_.choice(3));
        for (int id = 1; id <= axes_; ++id) {
            CategoryDraft& axis = record("table_axis_list;axis");
            axis.integer("id", link(id)).integer("type", static_cast<int>((in_.choice(4) + 1) % 4));
            axis.integer("reference_id", link(1)).text("definition", expression());
            put_correction(axis);
        }
        for (std::size_t k = 0; k < coils_.size(); ++k) {
            CategoryDraft& phase = record("flux_list;phase_list;phase");
            phase.integer("index", link(static_cast<int>(k))).integer("reference_id", link(coils_[k]));
            put_correction(phase);
        }
        record("input_parameter_list;input_parameter")
            .integer("type", link(3))
            .text("name", in_.flag() ? "b" : "a")
            .number("value", value(2.0));
        record("user_defined_equation_list;user_defined_equation")
            .integer("type", static_cast<int>(in_.choice(4)))
            .integer("reference_id", link(1))
            .text("name", "a");
        record("correction_parameter_list;correction_parameter").text("name", "b").number("value", value(1.0));
        record("torque_force_list;phase_list;phase").integer("index", link(0));
        put_correction(model_.category(kzb::record_name("torque_force_list;phase_list;phase", 0, 0)));
        put_table("flux_list;flux_table", 0, coil_count(), 0.1);
    }

    void put_coil_sets() {
        const int sets = static_cast<int>(in_.choice(4));
        axes_ = motions_;
        for (int id = 1; id <= sets; ++id) {
            const int type = link(static_cast<int>(in_.choice(2)) & (motions_ > 0 ? 1 : 0));
            const bool refers = type == 1 && in_.byte() >= 0xc0;
            const int place = count("element_set_list;coil_set");
            CategoryDraft& set = record("element_set_list;coil_set");
            set.integer("id", link(id)).integer("type", type).integer("motion_id", link(1));
            set.integer("flg_ref_coil", refers ? 1 : 0).integer("ref_coil_set_id", link(1));
            set.number("phase_initial", value(0.0)).integer("current_axis_no", link(++axes_));
            axes_ += type == 1 && !refers ? 1 : 0;
            set.integer("phase_axis_no", link(axes_));
            const unsigned coils = 1 + in_.choice(3);
            for (unsigned k = 0; k < coils; ++k) {
                record("element_set_list;coil_set;coil", place)
                    .integer("coil_id", link(coils_[in_.choice(static_cast<unsigned>(coils_.size()))]))
                    .number("phase_diff", value(120.0 * k));
            }
        }
        put_table("flux_list;flux_table", 0, coil_count(), 0.1);
        put_table("inductance_list;diff_inductance_table", 0, coil_count() * coil_count(), 1e-3);
    }

    // Over the model's axes and rows of a last one; by one byte absent, of fewer axes, or with odd nodes or values.
    void put_table(const char* path, int place, int rows, double scale) {
        const std::string category = kzb::record_name(path, 0, place);
        const unsigned fault = in_.byte() % 16;
        if (fault == 15) {
            return;
        }
        std::vector<int> sizes(static_cast<std::size_t>(std::min(axes_, most_axes)), 2);
        sizes.push_back(std::max(rows, 1));
        if (fault == 14 && sizes.size() > 1) {
            sizes.erase(sizes.begin());
        }
        if (fault == 13) {
            sizes.back() = 1;
        }
        KZB_TABLE table;
        if (kzb::table_create(table, static_cast<int>(sizes.size()), sizes.data()) != 0) {
            return;
        }
        for (int axis = 1; axis <= static_cast<int>(sizes.size()); ++axis) {
            const bool last = axis == static_cast<int>(sizes.size());
            for (int i = 0; i < sizes[static_cast<std::size_t>(axis) - 1]; ++i) {
                const double node = last ? i : 100.0 * i - 50.0;
                kzb::table_set_axis_value(&table, axis, i, fault == 12 ? in_.number() : node);
            }
            kzb::table_set_cyclic_flag(&table, axis, fault == 11 && !last ? 1 : 0);
        }
        for (int i = 0; i < table.total; ++i) {
            table.values.data()[i] = fault == 10 ? in_.number() : scale * ((i * 37 + 11) % 17);
        }
        model_.category(category).table("table", table);
    }

    void put_outputs() {
        put_table("torque_force_list;torque_table", 0, std::max(motions_, 1), 1.0);
        constexpr const char* name = "num_user_specified_parameter";
        const int outputs = static_cast<int>(in_.choice(2));
        model_.category(name).integer(name, std::min(link(outputs), most_stated_outputs));
        for (int i = 1; i <= outputs; ++i) {
            CategoryDraft& output = model_.category("user_specified_parameter" + std::to_string(i));
            output.integer("table_id", link(i)).integer("output_port_id", link(i));
            output.integer("reference_resolution", static_cast<int>(in_.choice(2)));
            output.number("coef_output_port", value(1.0));
            put_correction(output);
        }
        for (int place = 0; place < outputs; ++place) {
            put_table("output_list;output_table", place, 2, 1.0);
        }
    }

    void put_iron_loss() {
        const int axes = static_cast<int>(in_.choice(3));
        if (axes == 0) {
            return;
        }
        for (int k = 1; k <= axes; ++k) {
            const int type = static_cast<int>(in_.choice(4));
            record("ironloss;axis_list;axis")
                .integer("axis_no", link(k))
                .integer("reference_type", type)
                .integer("physical_type", link(type == 2 ? 3 : type))
                .integer("reference_id", link(1));
            record("input_port_list;user_input").integer("id", link(k)).integer("loss_axis_no", link(k));
        }
        std::vector<int> sizes(static_cast<std::size_t>(std::clamp(link(axes), 1, 6)), 2);
        KZB_TABLE table;
        if (kzb::table_create(table, static_cast<int>(sizes.size()), sizes.data()) == 0) {
            for (int axis = 1; axis <= static_cast<int>(sizes.size()); ++axis) {
                kzb::table_set_axis_value(&table, axis, 0, value(0.0));
                kzb::table_set_axis_value(&table, axis, 1, value(100.0));
            }
            std::fill_n(table.values.data(), table.total, 3.0);
            model_.category("ironloss").table("table", table);
        }
    }

    ModelDraft& model_;
    Input& in_;
    std::string name_;  // of a record
    int sources_ = 0;
    int terminals_ = 0;
    std::vector<int> coils_;                                  // ids
    std::map<std::pair<std::string_view, int>, int> counts_;  // of records by list
    int motions_ = 0;
    int axes_ = 0;
};

// Writes the file; what stood at `path` is gone.
inline void write_generic(Input& in, const std::string& path) {
    static ModelDraft model;
    model.restart();
    GenericModel(model, in).put();
    model.write(path);
}

}  // namespace kzb_fuzz
