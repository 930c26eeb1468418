#include "store/subcategory.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kzb {

namespace {

constexpr std::string_view separators = ";,:";

constexpr auto is_separator = [](char c) { return c == separators[0] || c == separators[1] || c == separators[2]; };

// Takes the next element off the path; empty at its end. A separator at an end or doubled makes no element, since no
// index belongs to it.
std::string_view take_element(std::string_view& path) {
    const auto* const begin = std::find_if_not(path.begin(), path.end(), is_separator);
    const auto* const end = std::find_if(begin, path.end(), is_separator);
    path = std::string_view(end, static_cast<std::size_t>(path.end() - end));
    return {begin, static_cast<std::size_t>(end - begin)};
}

int element_count(std::string_view path) {
    int count = 0;
    while (!take_element(path).empty()) {
        ++count;
    }
    return count;
}

// Each element with a semicolon behind it, the first `indexed` of them with their index and another one.
std::string join(std::string_view path, int indexed, const int* indices) {
    std::string name;
    name.reserve(path.size() + 32);
    std::string_view element = take_element(path);
    for (int i = 0; !element.empty(); ++i, element = take_element(path)) {
        name.append(element).append(";");
        if (i < indexed) {
            name.append(std::to_string(indices[i])).append(";");
        }
    }
    return name;
}

}  // namespace

std::string subcategory_name(const char* path, const int* indices) {
    if (path == nullptr || indices == nullptr) {
        return {};
    }
    return join(path, element_count(path), indices);
}

std::string subcategory_front(const char* path, const int* indices) {
    return join(path, element_count(path) - 1, indices);
}

// The text need not stand at the front of a category's name: wherever it first occurs it is taken out.
std::vector<std::string> pieces_behind(const KZB_STORE& store, const std::string& text) {
    std::vector<std::string> found;
    for (const KZB_CATEGORY& category : store.categories) {
        const std::size_t at = category.name.find(text);
        if (at != std::string::npos) {
            const std::string_view name = category.name;
            std::string piece(name.substr(0, std::min(at, name.find_first_of(separators))));
            if (piece.size() == at) {
                const std::string_view rest = name.substr(at + text.size());
                piece.append(rest.substr(0, rest.find_first_of(separators)));
            }
            found.push_back(std::move(piece));
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<std::string> subcategory_indices(const KZB_STORE& store, const char* path, const int* indices) {
    if (path == nullptr) {
        return {};
    }
    const int elements = element_count(path);
    if (elements == 0 || (indices == nullptr && elements > 1)) {
        return {};
    }
    return pieces_behind(store, subcategory_front(path, indices));
}

std::vector<std::string> child_subcategories(const KZB_STORE& store, const char* path, const int* indices) {
    const std::string name = subcategory_name(path, indices);
    return name.empty() ? std::vector<std::string>() : pieces_behind(store, name);
}

}  // namespace kzb
