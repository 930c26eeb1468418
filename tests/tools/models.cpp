#include "tools/models.h"

namespace kzb::test {

void write_model(const std::string& path, const std::function<void(KZB_STORE*)>& fill) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    fill(store);
    kzb_writer(path.c_str(), store);
    kzb_finish(store);
}

void put_table(KZB_STORE* store, const char* category, const char* key, const std::vector<std::vector<double>>& axes,
               const std::function<double(const std::vector<double>&)>& value) {
    std::vector<int> sizes;
    for (const auto& axis : axes) {
        sizes.push_back(static_cast<int>(axis.size()));
    }
    const int dim = static_cast<int>(sizes.size());
    kzb_create_table(category, key, dim, sizes.data(), store);
    for (int axis = 0; axis < dim; ++axis) {
        for (int i = 0; i < sizes[static_cast<std::size_t>(axis)]; ++i) {
            kzb_set_table_axis_value(category, key, axis + 1, i,
                                     axes[static_cast<std::size_t>(axis)][static_cast<std::size_t>(i)], store);
        }
    }
    std::vector<int> indices(axes.size(), 0);
    std::vector<double> point(axes.size());
    for (bool more = true; more;) {
        for (std::size_t axis = 0; axis < axes.size(); ++axis) {
            point[axis] = axes[axis][static_cast<std::size_t>(indices[axis])];
        }
        kzb_set_table_value(category, key, indices.data(), value(point), store);
        more = false;
        for (std::size_t axis = axes.size(); axis-- > 0 && !more;) {
            more = ++indices[axis] < sizes[axis];
            indices[axis] = more ? indices[axis] : 0;
        }
    }
}

void fill_constant_machine(KZB_STORE* store, const ConstantMachine& machine) {
    kzb_put_int("control", "motor_type", machine.motor_type, store);
    kzb_put_int("control", "accuracy_type", 1, store);
    kzb_put_int("control", "number_of_poles", machine.poles, store);
    kzb_put_double("control", "beta_zero", 0.0, store);
    kzb_put_int("control", "Winding_Pattern_Flag", 0, store);
    kzb_put_double("parameter", "RU", machine.resistance, store);
    kzb_put_string("information", "title", "constant machine", store);
    kzb_put_double("d_flux", "d_flux", machine.d_flux, store);
    const std::vector<std::vector<double>> axes = {{-180.0, 0.0, 180.0}, {0.0, machine.table_end}};
    put_table(store, "dq_inductance", "d_inductance", axes, [&](const auto&) { return machine.d_inductance; });
    put_table(store, "dq_inductance", "q_inductance", axes, [&](const auto&) { return machine.q_inductance; });
}

void write_constant_machine(const std::string& path, const ConstantMachine& machine) {
    write_model(path, [&machine](KZB_STORE* store) { fill_constant_machine(store, machine); });
}

}  // namespace kzb::test
