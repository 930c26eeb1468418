// Tables that act beside an application's own: losses by material or whole, and parameters that the user stated.
#include "fmt/format.h"
#include "kzb/sound_table.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

constexpr int most_told = 20;  // of one kind; a count in a broken file may be anything

struct Place {
    std::string category;
    std::string key;
};

// False when the table is absent.
bool check_dim(const KZB_STORE& store, const Place& place, int low, int high, std::string_view what,
               Findings& findings) {
    const int dim = table_dim(store, place.category, place.key);
    if (dim == 0) {
        findings.error("table-absent", {place.category, place.key, ""}, fmt::format("absent, expected by {}", what));
    } else if (dim < low || dim > high) {
        findings.error("table-dim", {place.category, place.key, ""},
                       low == high ? fmt::format("{} axes, expected {} by {}", dim, low, what)
                                   : fmt::format("{} axes, expected {} to {} by {}", dim, low, high, what));
    }
    return dim != 0;
}

void check_materials(const Examined& model, Findings& findings) {
    const KZB_STORE& store = model.store;
    for (const auto& [category, other] : {std::pair{"hysloss", "eddyloss"}, std::pair{"eddyloss", "hysloss"}}) {
        if (has_category(store, category) && !has_category(store, other)) {
            findings.error("loss-tables", {other, "", ""}, fmt::format("absent, expected beside {}", category));
            return;
        }
    }
    if (!has_category(store, "hysloss")) {
        return;
    }
    const int count = get_int(store, "hysloss", "numMat");
    if (count < 1) {
        findings.warning("loss-tables", {"hysloss", "numMat", ""},
                         fmt::format("{} materials, so no iron loss; expected 1 or more", count));
    }
    const int dim = model.motor_type == 10007 ? 4 : 3;
    for (int k = 1, absent = 0; k <= count && absent < most_told; ++k) {
        const std::string id_key = fmt::format("matID{}", k);
        if (!has_parameter(store, "hysloss", id_key)) {
            findings.error("loss-tables", {"hysloss", id_key, ""},
                           fmt::format("absent, expected for each of {} materials", count));
            return;
        }
        const int id = get_int(store, "hysloss", id_key);
        for (const char* category : {"eddyloss", "hysloss"}) {
            const bool found = check_dim(store, {category, fmt::format("{}{}", category, id)}, dim, dim,
                                         fmt::format("material {}", k), findings);
            absent += found ? 0 : 1;
        }
    }
}

}  // namespace

void check_loss_tables(const Examined& model, Findings& findings) {
    const KZB_STORE& store = model.store;
    const int type = model.motor_type;
    if (type == 10000 || type == 10005 || type == 10007) {
        check_materials(model, findings);
    }
    if (type == 10000 || type == 10005 || type == 10006) {
        if (has_category(store, "loss_table")) {
            check_dim(store, {"loss_table", "iron_loss"}, type == 10006 ? 5 : 1, 5, "the iron loss", findings);
        }
        if (has_category(store, "equivalent_resistance_table")) {
            check_dim(store, {"equivalent_resistance_table", "copper_loss"}, 5, 5, "the copper loss", findings);
        }
    }
    const KZB_CATEGORY* corrections = find_category(store, "correction");
    for (const char* key : {"inductance", "torque", "mag-flux", "total-flux", "ironloss"}) {
        if (corrections != nullptr && corrections->tables.find(key) != nullptr) {
            check_dim(store, {"correction", key}, 2, 2, "a correction", findings);
        }
    }
}

void check_user_parameters(const Examined& model, Findings& findings) {
    const KZB_STORE& store = model.store;
    const int type = model.motor_type;
    const std::string together = "user_specified_parameter_table";
    const std::string counted = "num_user_specified_parameter";
    if ((type != 10000 && type != 10007) || !has_category(store, together)) {
        return;
    }
    const int count = get_int(store, counted, counted);
    if (count < 1) {
        findings.warning("user-parameters", {counted, counted, ""},
                         fmt::format("{} parameters though there are tables, expected 1 or more", count));
    }
    for (int k = 1, faults = 0; k <= count && faults < most_told; ++k) {
        const std::string category = fmt::format("user_specified_parameter{}", k);
        if (!has_parameter(store, category, "table_id") || !has_parameter(store, category, "output_port_id")) {
            findings.error(
                "user-parameters", {category, "", ""},
                fmt::format("no table_id or no output_port_id, expected both for each of {} parameters", count));
            return;
        }
        const int port = get_int(store, category, "output_port_id");
        if (port < 1 || port > count) {
            findings.error("user-parameters", {category, "output_port_id", ""},
                           fmt::format("{}, expected 1 to {}", port, count));
            ++faults;
        }
        const std::string table = together + std::to_string(get_int(store, category, "table_id"));
        // A table stands in a category of its own name; in files that hold all of them in one category, there.
        const Place place{has_category(store, table) ? table : together, table};
        const int low = type == 10007 ? 4 : 3;
        faults += check_dim(store, place, low, 4, fmt::format("parameter {}", k), findings) ? 0 : 1;
    }
}

}  // namespace kzb::tool
