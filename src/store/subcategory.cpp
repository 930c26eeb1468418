#include "store/subcategory.h"

#include <boost/algorithm/string.hpp>
#include <boost/lexical_cast.hpp>
#include <vector>

namespace kzb {

namespace {

constexpr const char* separators = ";,:";

// Path elements; a separator at an end or doubled makes no element, since no index belongs to it.
std::vector<std::string> elements_of(const char* path) {
    std::vector<std::string> elements;
    boost::algorithm::split(elements, path, boost::algorithm::is_any_of(separators));
    std::erase(elements, std::string());
    return elements;
}

std::string join(const std::vector<std::string>& elements, std::size_t count, const int* indices) {
    std::string name;
    for (std::size_t i = 0; i < count; ++i) {
        name += elements[i] + ';' + boost::lexical_cast<std::string>(indices[i]) + ';';
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
    const std::vector<std::string> elements = elements_of(path);
    return join(elements, elements.size(), indices);
}

std::set<std::string> subcategory_indices(const KZB_STORE& store, const char* path, const int* indices) {
    if (path == nullptr) {
        return {};
    }
    const std::vector<std::string> elements = elements_of(path);
    if (elements.empty() || (indices == nullptr && elements.size() > 1)) {
        return {};
    }
    return pieces_behind(store, join(elements, elements.size() - 1, indices) + elements.back() + ';');
}

std::set<std::string> child_subcategories(const KZB_STORE& store, const char* path, const int* indices) {
    const std::string name = subcategory_name(path, indices);
    return name.empty() ? std::set<std::string>() : pieces_behind(store, name);
}

}  // namespace kzb
