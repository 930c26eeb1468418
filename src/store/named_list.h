// Ordered list of named records, with an index by name once they are many; the first of a name counts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
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
    // Room for that many records.
    void reserve(std::size_t count) { records_.reserve(count); }
    Record& operator[](std::size_t i) { return records_[i]; }
    const Record& operator[](std::size_t i) const { return records_[i]; }
    auto begin() { return records_.begin(); }
    auto end() { return records_.end(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

    Record* find(std::string_view keyword) {
        const std::size_t at = place(keyword);
        return at == records_.size() ? nullptr : &records_[at];
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
            index_last();
        } catch (...) {
            records_.pop_back();
            throw;
        }
        return records_.back();
    }

    void erase(std::string_view keyword) {
        const std::size_t position = place(keyword);
        if (position == records_.size()) {
            return;
        }
        if (index_) {
            index_->erase(records_[position].keyword);
            for (auto& entry : *index_) {
                entry.second -= entry.second > position ? 1U : 0U;
            }
        }
        records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(position));
    }

    // Exchanges the names of two records, both present; each keeps its place.
    void swap_names(std::string_view first, std::string_view second) {
        const std::size_t a = place(first);
        const std::size_t b = place(second);
        if (a == records_.size() || b == records_.size()) {
            return;
        }
        if (index_) {
            std::swap(index_->find(first)->second, index_->find(second)->second);
        }
        std::swap(records_[a].keyword, records_[b].keyword);
    }

  private:
    static constexpr std::size_t most_unindexed = 8;

    // The number of records when absent.
    std::size_t place(std::string_view keyword) const {
        if (!index_) {
            const auto has_name = [keyword](const Record& record) { return record.keyword == keyword; };
            return static_cast<std::size_t>(std::find_if(begin(), end(), has_name) - begin());
        }
        const auto at = index_->find(keyword);
        return at == index_->end() ? records_.size() : at->second;
    }

    // All names are in the index, or none.
    void index_last() {
        if (index_) {
            index_->emplace(records_.back().keyword, static_cast<std::uint32_t>(records_.size() - 1));
        } else if (records_.size() > most_unindexed) {
            auto index = std::make_unique<NameIndex>();
            for (const Record& record : records_) {
                index->emplace(record.keyword, static_cast<std::uint32_t>(index->size()));
            }
            index_ = std::move(index);
        }
    }

    std::vector<Record> records_;
    std::unique_ptr<NameIndex> index_;  // null while the records are few
};

}  // namespace kzb
