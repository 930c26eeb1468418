#include "models/user_parameters.h"

#include <algorithm>
#include <string>

namespace kzb {
namespace {

constexpr const char* count_name = "num_user_specified_parameter";
constexpr const char* table_name = "user_specified_parameter_table";
// A count above this must have a category per parameter behind it.
constexpr std::size_t unbacked_parameters = 4096;

// A table stands in a category of its own name; in files that hold all of them in one category, there.
TableRef table_of(const KZB_STORE& store, int id) {
    const std::string name = table_name + std::to_string(id);
    return {has_category(store, name) ? name : table_name, name};
}

}  // namespace

void UserParameters::bind(const KZB_STORE& store) {
    on_ = true;
    const auto stated = static_cast<std::size_t>(std::max(get_int(store, count_name, count_name), 0));
    const std::size_t count = std::min(stated, std::max(store.categories.size(), unbacked_parameters));
    count_ = static_cast<int>(count);
    values_.assign(count, 0.0);
    dim_ = table_of(store, 1).dim(store);
    revision_ = 0;
}

void UserParameters::resolve(const KZB_STORE& store) {
    revision_ = store.revision;
    entries_.clear();
    for (int k = 1; k <= count_; ++k) {
        const std::string category = "user_specified_parameter" + std::to_string(k);
        entries_.push_back(
            {table_of(store, get_int(store, category, "table_id")), get_int(store, category, "output_port_id")});
    }
}

void UserParameters::update(KZB_STORE& store, const Method& method, const double* point, int count) {
    if (revision_ != store.revision) {
        resolve(store);
    }
    for (Entry& entry : entries_) {
        const double value = entry.table.at(store, method, point, count);
        if (entry.port >= 1 && entry.port <= count_) {
            values_[static_cast<std::size_t>(entry.port - 1)] = value;
        }
    }
}

}  // namespace kzb
