#include "store/format/legacy_table.h"

#include <algorithm>

namespace kzb {

std::string put_legacy_head(KZB_STORE& store, const LegacyTableHead& head, const LegacyApplication& application) {
    std::string category(legacy_category(head.name, application, head.dim));
    require_category(store, category);
    if (head.reading_method == reading_method_with_shaft) {
        put_string(store, category, "ShaftName", head.shaft_name);
    }
    put_int(store, category, "reading_method", head.reading_method);
    put_int(store, category, "table_type", head.table_type);
    return category;
}

void finish_legacy_table(KZB_STORE& store, const std::string& category, const LegacyTableHead& head) {
    KZB_TABLE* table = find_table(store, category, head.name);
    if (table == nullptr) {
        return;
    }
    std::copy_n(head.cyclic.begin(), std::min(head.cyclic.size(), table->cyclic.size()), table->cyclic.begin());
    if (category == "d_flux" && head.name == "d_flux" && table->total > 0) {
        put_double(store, category, "d_flux", table->values[0]);
    }
}

}  // namespace kzb
