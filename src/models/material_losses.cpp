#include "models/material_losses.h"

#include <algorithm>
#include <string>

#include "store/table_calls.h"

namespace kzb {
namespace {

// Materials beyond this need an id of their own in the file; a count without any backing is cut here.
constexpr std::size_t unbacked_materials = 1024;

double first_node(KZB_STORE& store, TableRef& ref, int axis) {
    const KZB_TABLE* const table = ref.table(store);
    const auto a = static_cast<std::size_t>(axis - 1);
    if (table != nullptr && a < table->axes.size() && table->axes[a].size() > 0) {
        return table->axes[a][0];
    }
    return axis_value_or_error(store, ref.category(), ref.key(), axis, 0);
}

}  // namespace

void MaterialLosses::resolve(const KZB_STORE& store) {
    revision_ = store.revision;
    materials_.clear();
    const KZB_CATEGORY* const category = find_category(store, "hysloss");
    const std::size_t backed = category == nullptr ? 0 : category->ints.size();
    const auto stated = static_cast<std::size_t>(std::max(get_int(store, "hysloss", "numMat"), 0));
    const std::size_t count = std::min(stated, std::max(backed, unbacked_materials));
    materials_.reserve(count);
    for (std::size_t k = 1; k <= count; ++k) {
        const std::string id = std::to_string(get_int(store, "hysloss", "matID" + std::to_string(k)));
        materials_.push_back({{"eddyloss", "eddyloss" + id}, {"hysloss", "hysloss" + id}});
    }
}

IronLoss MaterialLosses::sum(KZB_STORE& store, const Method& method, const double* point, int count, int amplitude_axis,
                             double amplitude, double correction) {
    if (revision_ != store.revision) {
        resolve(store);
    }
    IronLoss total;
    for (Material& material : materials_) {
        double eddy = material.eddy.at(store, method, point, count);
        double hysteresis = material.hysteresis.at(store, method, point, count);
        const double smallest = first_node(store, material.eddy, amplitude_axis);
        if (smallest > amplitude) {
            const double share = amplitude / smallest;
            eddy *= share;
            hysteresis *= share;
        }
        total.eddy += correction * eddy;
        total.hysteresis += correction * hysteresis;
    }
    return total;
}

}  // namespace kzb
