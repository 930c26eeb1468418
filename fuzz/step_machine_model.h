// A small model file made of a fuzz input: the tables of one machine, some of them absent or of another shape, with
// axes and values that the input chooses. A file made of zeros alone is whole and sound.
#pragma once

#include <iterator>
#include <string>
#include <vector>

#include "choices.h"
#include "model_draft.h"
#include "table/table.h"

namespace kzb_fuzz {

constexpr int motor_types[] = {10000, 10003, 10004, 10005, 10006, 10007, 10010, 10011, 10012};
enum MachineBit : unsigned { pm = 1, sm = 2, sol = 4, lin = 8, im = 16, wf = 32, sr3 = 64, sr4 = 128, sr5 = 256 };

// What makes a table part of the file: the kinds of a permanent-magnet model, or an option.
enum Part : unsigned {
    always = 1,
    simple = 2,
    harmonic = 4,
    ld_lq = 8,
    flux_integral = 16,
    losses = 32,
    outputs = 64,
    accurate = 128
};

// Axes by letter: currents a (from 0) and s (signed), b phase in degrees, g angle in degrees, x position in m, p flux,
// d slip frequency, r speed, v voltage, f frequency. `components` nodes 0, 1, ... make the last axis.
struct TableShape {
    unsigned machines;
    unsigned parts;
    const char* category;
    const char* key;
    const char* axes;
    int components;
    double scale;
};

constexpr unsigned sr = sr3 | sr4 | sr5;
constexpr TableShape shapes[] = {
    {pm, ld_lq, "dq_inductance", "d_inductance", "ba", 0, 1e-3},
    {pm, ld_lq, "dq_inductance", "q_inductance", "ba", 0, 1e-3},
    {pm, simple, "inductance", "inductance", "ag", 9, 1e-3},
    {pm, simple, "mag_flux", "flux", "g", 3, 0.1},
    {pm, simple, "torque", "torque_ibeta", "bga", 0, 1.0},
    {pm, harmonic, "current_flux", "flux", "abg", 3, 0.1},
    {pm, harmonic, "harmonic_inductance", "inductance", "abg", 9, 1e-3},
    {pm, harmonic | flux_integral, "harmonic_torque", "torque_ibeta", "bga", 0, 1.0},
    {pm, flux_integral, "flux_table", "fd_noload", "g", 0, 0.1},
    {pm, flux_integral, "flux_table", "fq_noload", "g", 0, 0.1},
    {pm, flux_integral, "flux_table", "f0_noload", "g", 0, 0.1},
    {pm, flux_integral, "flux_table", "f0_ibeta", "abg", 0, 0.1},
    {pm, flux_integral, "current_table", "id", "ppg", 0, 10.0},
    {pm, flux_integral, "current_table", "iq", "ppg", 0, 10.0},
    {pm | im, losses, "loss_table", "iron_loss", "abrvf", 0, 10.0},
    {pm | im, losses, "equivalent_resistance_table", "copper_loss", "abrvf", 0, 0.1},
    {pm | wf, outputs, "user_specified_parameter_table", "user_specified_parameter_table1", "abg", 0, 1.0},
    {pm, losses, "hysloss", "hysloss1", "rba", 0, 10.0},
    {pm, losses, "eddyloss", "eddyloss1", "rba", 0, 10.0},
    {lin, always, "inductance", "inductance", "ax", 9, 1e-3},
    {lin, always, "mag_flux", "flux", "x", 3, 0.1},
    {lin, always, "distance_force", "force", "bxa", 0, 1.0},
    {lin, always, "distance_force", "attractive_force", "bxa", 0, 1.0},
    {sm, always, "inductance", "inductance", "ag", 16, 1e-3},
    {sm, always, "mag_flux", "flux", "g", 4, 0.1},
    {sm, always, "torque", "torque_ibeta", "sgs", 0, 1.0},
    {sol, always, "inductance", "inductance", "ax", 2, 1e-3},
    {sol, always, "distance_flux", "flux", "x", 2, 0.1},
    {sol, always, "distance_force", "force", "xs", 0, 1.0},
    {im, accurate, "InductionParam_HigherAccuracy", "R2_table", "da", 0, 0.5},
    {im, accurate, "InductionParam_HigherAccuracy", "L11_table", "da", 0, 0.2},
    {im, accurate, "InductionParam_HigherAccuracy", "L22_table", "da", 0, 0.2},
    {im, accurate, "InductionParam_HigherAccuracy", "M12_table", "da", 0, 0.1},
    {im, accurate, "InductionParam_HigherAccuracy", "M21_table", "da", 0, 0.1},
    {im, losses, "InductionParam_HigherAccuracy", "ironloss_table", "da", 0, 10.0},
    {wf, always, "current_flux", "flux", "abag", 4, 0.1},
    {wf, always, "harmonic_inductance", "inductance", "abag", 16, 1e-3},
    {wf, always, "harmonic_torque", "torque_ibeta", "abag", 0, 1.0},
    {wf, losses, "hysloss", "hysloss1", "rbaa", 0, 10.0},
    {wf, losses, "eddyloss", "eddyloss1", "rbaa", 0, 10.0},
    {sr3, always, "inductance", "inductance", "ag", 9, 1e-3},
    {sr4, always, "inductance", "inductance", "ag", 16, 1e-3},
    {sr5, always, "inductance", "inductance", "ag", 25, 1e-3},
    {sr, always, "torque", "torque_ibeta", "gs", 0, 1.0},
};

inline double first_node(char axis) {
    switch (axis) {
        case 'b':
            return -180.0;
        case 's':
        case 'p':
        case 'd':
            return -10.0;
        default:
            return 0.0;
    }
}

inline double last_node(char axis) {
    switch (axis) {
        case 'b':
            return 180.0;
        case 'g':
            return 360.0;
        case 'x':
            return 0.1;
        case 'r':
        case 'f':
            return 1e4;
        default:
            return 10.0;
    }
}

inline void fill_axis(KZB_TABLE* table, int axis, char kind, Input& in, bool odd) {
    const int rows = table->sizes[static_cast<std::size_t>(axis) - 1];
    for (int i = 0; i < rows; ++i) {
        const double part = rows == 1 ? 0.0 : static_cast<double>(i) / (rows - 1);
        const double node = kind == 'k' ? i : first_node(kind) + part * (last_node(kind) - first_node(kind));
        kzb::table_set_axis_value(table, axis, i, odd ? in.number() : node);
    }
}

inline void fill_values(KZB_TABLE* table, const TableShape& shape, Input& in, unsigned seed) {
    const auto total = static_cast<unsigned>(table->total);
    for (unsigned i = 0; i < total; ++i) {
        // Elements on the diagonal of a matrix stand out, so that most systems can be solved.
        const unsigned n = shape.components == 9 ? 3 : shape.components == 16 ? 4 : shape.components == 25 ? 5 : 0;
        const bool diagonal = n != 0 && i % (n * n) % (n + 1) == 0;
        const double ripple = static_cast<double>((i * 37U + seed * 11U) % 17U) / 17.0;
        table->values.data()[i] = shape.scale * (diagonal ? 5.0 + ripple : ripple);
    }
    if (seed >= 0xf0) {
        table->values.data()[in.byte() % total] = in.number();
    }
}

// By one byte: mostly as it should be; absent, without its last axis, or with nodes that the input gives.
inline void put_table(ModelDraft& model, const TableShape& shape, Input& in) {
    const unsigned fault = in.byte() % 16;
    const unsigned seed = in.byte();
    if (fault == 15) {
        return;
    }
    std::string axes = shape.axes;
    std::vector<int> sizes(axes.size(), 2 + static_cast<int>(seed % 3));
    sizes[0] = 2 + static_cast<int>(seed / 3 % 4);
    if (axes.size() > 2) {
        sizes.assign(axes.size(), 2);
    }
    if (shape.components != 0) {
        axes += 'k';
        sizes.push_back(shape.components);
    }
    if (fault == 14) {
        axes.pop_back();
        sizes.pop_back();
    }
    if (fault == 13) {
        sizes.back() = 1;
    }
    KZB_TABLE table;
    if (kzb::table_create(table, static_cast<int>(axes.size()), sizes.data()) != 0) {
        return;
    }
    for (std::size_t a = 0; a < axes.size(); ++a) {
        const int axis = static_cast<int>(a) + 1;
        fill_axis(&table, axis, axes[a], in, fault == 12 && a == seed % axes.size());
        if (axes[a] == 'g' && (seed & 1U) != 0) {
            kzb::table_set_cyclic_flag(&table, axis, 1);
        }
    }
    fill_values(&table, shape, in, seed);
    model.category(shape.category).table(shape.key, table);
}

inline void put_parameters(ModelDraft& model, unsigned parts, Input& in) {
    constexpr const char* numbers[] = {"turns_coil1", "turns_coil2",   "coef_flux",           "coef_torque",
                                       "coef_force",  "turns_in_coil", "turns_in_field_coil", "base_coil_temperature",
                                       "beta_zero"};
    for (const char* const key : numbers) {
        if (in.byte() >= 0xc0) {
            model.category("control").number(key, in.number());
        }
    }
    for (const char* const key : {"RU", "RF", "RA", "RA+"}) {
        model.category("parameter").number(key, in.byte() >= 0xf0 ? in.number() : 0.5);
    }
    model.category("control").number("electrical_length", in.byte() >= 0xf0 ? in.number() : 0.1);
    model.category("d_flux").number("d_flux", 0.1);
    for (const char* const key : {"R1", "R2", "X1", "X2", "b0", "g0"}) {
        model.category("InductionParam").number(key, in.byte() >= 0xf0 ? in.number() : 0.1);
    }
    model.category("information").number("rated_freqency", 50.0);
    if ((parts & losses) != 0) {
        for (const char* const category : {"hysloss", "eddyloss"}) {
            model.category(category).integer("numMat", static_cast<int>(in.choice(3)) + 1);
            model.category(category).integer("matID1", 1);
        }
    }
    if ((parts & outputs) != 0) {
        constexpr const char* count = "num_user_specified_parameter";
        model.category(count).integer(count, in.byte() >= 0xf0 ? in.index() : 1);
        model.category("user_specified_parameter1").integer("table_id", 1);
        model.category("user_specified_parameter1").integer("output_port_id", 1);
    }
}

// Parts of a file: those of its accuracy, and by the options losses, outputs, the tables of an induction machine, and
// the parts of every accuracy.
inline unsigned parts_of(unsigned accuracy, unsigned options) {
    constexpr unsigned kinds[] = {simple, ld_lq, simple, harmonic, harmonic | ld_lq, flux_integral, harmonic, harmonic};
    unsigned parts = always | kinds[accuracy];
    parts |= (options & 4U) == 0 ? accurate : 0U;
    parts |= (options & 8U) != 0 ? losses : 0U;
    parts |= (options & 16U) != 0 ? outputs : 0U;
    parts |= (options & 0xe0U) == 0xe0U ? simple | harmonic | ld_lq | flux_integral : 0U;
    return parts;
}

// Writes the file; what stood at `path` is gone.
inline void write_machine(Input& in, const std::string& path) {
    const unsigned machine = in.choice(std::size(motor_types));
    static ModelDraft model;
    model.restart();
    model.category("control").integer("motor_type", motor_types[machine]);
    const unsigned accuracy = in.choice(8);
    model.category("control").integer("accuracy_type", static_cast<int>(accuracy));
    const unsigned b = in.byte();
    model.category("control").integer("number_of_poles", b < 0xf0 ? 2 + 2 * static_cast<int>(b % 4) : in.index());
    const unsigned options = in.byte();
    model.category("control").integer("Winding_Pattern_Flag", static_cast<int>(options % 2));
    model.category("control").integer("current_type", static_cast<int>(options / 2 % 2));
    const unsigned parts = parts_of(accuracy, options);
    put_parameters(model, parts, in);
    for (const TableShape& shape : shapes) {
        if ((shape.machines & 1U << machine) != 0 && (shape.parts & parts) != 0) {
            put_table(model, shape, in);
        }
    }
    model.write(path);
}

}  // namespace kzb_fuzz
