#include "store/record_list.h"

#include <algorithm>

#include "store/subcategory.h"

namespace kzb {
namespace {

// Indices of a path: 0 for the list, `outer` in a path of three elements, then the record's place.
struct Indices {
    int values[3];
    Indices(const std::string& path, int outer, int index)
        : values{0, std::count(path.begin(), path.end(), ';') > 1 ? outer : index, index} {}
};

}  // namespace

bool Record::has(const char* key) const {
    return category_ != nullptr && (category_->ints.find(key) != nullptr || category_->doubles.find(key) != nullptr ||
                                    category_->strings.find(key) != nullptr || category_->tables.find(key) != nullptr);
}

int Record::integer(const char* key) const {
    const auto* const found = category_ == nullptr ? nullptr : category_->ints.find(key);
    return found == nullptr ? 0 : found->value;
}

double Record::number(const char* key) const {
    const auto* const found = category_ == nullptr ? nullptr : category_->doubles.find(key);
    return found == nullptr ? 0.0 : found->value;
}

std::string Record::text(const char* key) const {
    const auto* const found = category_ == nullptr ? nullptr : category_->strings.find(key);
    return found == nullptr ? std::string() : found->value;
}

std::optional<double> Record::optional_number(const char* key) const {
    return has(key) ? std::optional<double>(number(key)) : std::nullopt;
}

std::string record_name(const std::string& path, int outer, int index) {
    return subcategory_name(path.c_str(), Indices(path, outer, index).values);
}

int record_count(const KZB_STORE& store, const std::string& path, int outer) {
    return static_cast<int>(subcategory_indices(store, path.c_str(), Indices(path, outer, 0).values).size());
}

Record record_at(const KZB_STORE& store, const std::string& path, int index, int outer) {
    return Record(find_category(store, record_name(path, outer, index)));
}

std::vector<Record> records_of(const KZB_STORE& store, const std::string& path, int outer) {
    std::string name = subcategory_front(path.c_str(), Indices(path, outer, 0).values);
    const std::size_t front = name.size();
    const std::size_t count = pieces_behind(store, name).size();
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        name.resize(front);
        name.append(std::to_string(i)).append(";");
        records.emplace_back(find_category(store, name));
    }
    return records;
}

}  // namespace kzb
