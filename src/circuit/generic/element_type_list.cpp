#include <boost/make_shared.hpp>

#include "circuit/generic/generic_circuit.h"
#include "store/record_list.h"

namespace kzb {
namespace {

constexpr const char* path = "element_type_list;element_type";

boost::shared_ptr<KZLineElementType> read_fem_coil(const KZB_STORE& store, const Record& record, int place) {
    auto coil = boost::make_shared<KZFEMCoil>(record.integer("id"));
    coil->resistance = record.number("resistance");
    coil->group_id = record.integer("group_id");
    coil->turns = record.number("turns");
    coil->turns2 = record.optional_number("coef_turns2").value_or(coil->turns);
    coil->coef_flux = record.optional_number("coef_flux").value_or(coil->coef_flux);
    coil->base_temperature = record.optional_number("base_temperature").value_or(coil->base_temperature);
    // Without a coefficient the base temperature takes its place, as established.
    coil->coef_temperature = record.optional_number("coef_temperature").value_or(coil->base_temperature);
    // The records are only counted: the coils that interact are those of ids 1, 2 ..
    const int count = record_count(store, "element_type_list;element_type;interacted_coil", place);
    for (int j = 1; j <= count; ++j) {
        coil->interacted.push_back(j);
    }
    return coil;
}

boost::shared_ptr<KZLineElementType> read_element_type(const KZB_STORE& store, const Record& record, int place) {
    const int id = record.integer("id");
    switch (record.integer("type")) {
        case element_type_fem_coil:
            return read_fem_coil(store, record, place);
        case element_type_resistor:
            return boost::make_shared<KZConstantResistor>(id, record.number("resistance"));
        case element_type_capacitor:
            return boost::make_shared<KZConstantCapacitor>(id, record.number("capacitance"));
        case element_type_inductor:
            return boost::make_shared<KZConstantCoil>(id, record.number("inductance"));
        case element_type_probe:
            return boost::make_shared<KZVProbe>(id);
        default:
            return boost::make_shared<KZLineElementType>(0, static_cast<int>(element_type_none));
    }
}

}  // namespace

void KZElementTypeList::read(const KZB_STORE& store) {
    const int count = record_count(store, path);
    for (int place = 0; place < count; ++place) {
        const Record record = record_at(store, path, place);
        auto type = read_element_type(store, record, place);
        type->name = record.text("name");
        by_id_.add(type->id, all.size());
        switch (type->type) {
            case element_type_fem_coil:
                fem_coils.push_back(place);
                break;
            case element_type_resistor:
                resistors.push_back(place);
                break;
            case element_type_inductor:
                inductors.push_back(place);
                break;
            case element_type_capacitor:
                capacitors.push_back(place);
                break;
            default:
                break;
        }
        all.push_back(std::move(type));
    }
}

boost::shared_ptr<KZLineElementType> KZElementTypeList::find(int id) const {
    const std::ptrdiff_t place = by_id_.find(id);
    return place < 0 ? nullptr : all[static_cast<std::size_t>(place)];
}

}  // namespace kzb
