#include "store/subcategory.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace kzb {

namespace {

constexpr const char* separators = ";,:";

// Path elements; a separator at an end or doubled makes no element, since no index belongs to it.
std::vector<std::string_view> elements_of(std::string_view path) {
    std::vector<std::string_view> elements;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(separators), path.size());
        if (end > 0) {
            elements.push_back(path.substr(0, end));
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return elements;
}

std::string join(const std::vector<std::string_view>& elements, std::size_t count, const int* indices) {
    std::string name;
    for (std::size_t i = 0; i < count; ++i) {
        name.append(elements[i]).append(";").append(std::to_string(indices[i])).append(";");
    }
    return name;
}

// The text need not stand at the front of a category's name: wherever it first occurs it is taken out.
std::set<std::string> pieces_behind(const KZB_STORE& store, const std::string& text) {
    std::set<std::string> found;
    for (const KZB_CATEGORY& category : store.categories) {
        const std::size_t at = category.name.find(text);
        if (at != std::string::npos) {
            const std::string rest = std::string(category.name).erase(at, text.size());
            found.insert(rest.substr(0, rest.find_first_of(separators)));
        }
    }
    return found;
}

}  // namespace

std::string subcategory_name(const char* path, const int* indices) {
    if (path == nullptr || indices == nullptr) {
        return {};
    }
    const std::vector<std::string_view> elements = elements_of(path);
    return join(elements, elements.size(), indices);
}

std::set<std::string> subcategory_indices(const KZB_STORE& store, const char* path, const int* indices) {
    if (path == nullptr) {
        return {};
    }
    const std::vector<std::string_view> elements = elements_of(path);
    if (elements.empty() || (indices == nullptr && elements.size() > 1)) {
        return {};
    }
    return pieces_behind(store, join(elements, elements.size() - 1, indices).append(elements.back()).append(";"));
}

std::set<std::string> child_subcategories(const KZB_STORE& store, const char* path, const int* indices) {
    const std::string name = subcategory_name(path, indices);
    return name.empty() ? std::set<std::string>() : pieces_behind(store, name);
}

}  // namespace kzb
