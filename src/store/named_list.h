// Ordered list of named records with an index by name; the first of a name counts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kzb {

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept { return std::hash<std::string_view>{}(name); }
};

using NameIndex = std::unordered_map<std::string, std::uint32_t, NameHash, std::equal_to<>>;

template <class Value>
struct Named {
    std::string keyword;
    Value value{};
};

// Record has a member `keyword`.
template <class Record>
class NamedList {
  public:
    std::size_t size() const { return records_.size(); }
    bool empty() const { return records_.empty(); }
    Record& operator[](std::size_t i) { return records_[i]; }
    const Record& operator[](std::size_t i) const { return records_[i]; }
    auto begin() { return records_.begin(); }
    auto end() { return records_.end(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

    Record* find(std::string_view keyword) {
        const auto at = index_.find(keyword);
        return at == index_.end() ? nullptr : &records_[at->second];
    }
    const Record* find(std::string_view keyword) const { return const_cast<NamedList*>(this)->find(keyword); }

    // The record of that name, appended when absent. `keyword` may stand in this list: it is read no more once the list
    // has grown.
    Record& require(std::string_view keyword) {
        if (Record* found = find(keyword)) {
            return *found;
        }
        Record record{};
        record.keyword = keyword;
        records_.push_back(std::move(record));
        try {
            index_.emplace(records_.back().keyword, static_cast<std::uint32_t>(records_.size() - 1));
        } catch (...) {
            records_.pop_back();
            throw;
        }
        return records_.back();
    }

    void erase(std::string_view keyword) {
        const auto at = index_.find(keyword);
        if (at == index_.end()) {
            return;
        }
        const std::uint32_t position = at->second;
        index_.erase(at);
        records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(position));
        for (auto& entry : index_) {
            entry.second -= entry.second > position ? 1U : 0U;
        }
    }

    // Exchanges the names of two records, both present; each keeps its place.
    void swap_names(std::string_view first, std::string_view second) {
        const auto a = index_.find(first);
        const auto b = index_.find(second);
        if (a == index_.end() || b == index_.end()) {
            return;
        }
        std::swap(records_[a->second].keyword, records_[b->second].keyword);
        std::swap(a->second, b->second);
    }

  private:
    std::vector<Record> records_;
    NameIndex index_;
};

}  // namespace kzb
