// A model file put together as the bytes of its binary form: a store that is filled, written and torn down again would
// take a third of an execution's time.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "scratch_file.h"
#include "store/format/file_marks.h"
#include "table/table.h"

namespace kzb_fuzz {

class CategoryDraft {
  public:
    // A category of that name without entries. Its memory stays: an execution makes dozens of categories.
    void restart(std::string_view name) {
        name_ = name;
        for (Entries* const entries : {&ints_, &doubles_, &strings_, &tables_}) {
            entries->count = 0;
            entries->bytes.clear();
        }
    }
    const std::string& name() const { return name_; }
    CategoryDraft& integer(std::string_view key, int number) {
        return entry(ints_, key, kzb::type_int, [number](std::string& bytes) { put_word(bytes, number); });
    }
    CategoryDraft& number(std::string_view key, double number) {
        return entry(doubles_, key, kzb::type_double, [number](std::string& bytes) { put_word(bytes, number); });
    }
    CategoryDraft& text(std::string_view key, std::string_view text) {
        return entry(strings_, key, kzb::type_string, [text](std::string& bytes) { put_text(bytes, text); });
    }
    CategoryDraft& table(std::string_view key, const KZB_TABLE& table) {
        return entry(tables_, key, kzb::type_table, [&table](std::string& bytes) {
            put_word(bytes, table.dim);
            for (const int size : table.sizes) {
                put_word(bytes, size);
            }
            for (const int flag : table.cyclic) {
                put_word(bytes, flag);
            }
            put_block(bytes, table.total, table.values.data());
            for (std::size_t axis = 0; axis < table.sizes.size(); ++axis) {
                put_block(bytes, table.sizes[axis], table.axes[axis].data());
            }
        });
    }

    void put(std::string& bytes) const {
        bytes += '*';
        put_text(bytes, name_);
        for (const Entries* const entries : {&ints_, &doubles_, &strings_, &tables_}) {
            put_word(bytes, entries->count);
        }
        bytes += terminator;
        for (const Entries* const entries : {&ints_, &doubles_, &strings_, &tables_}) {
            bytes += entries->bytes;
        }
    }

  private:
    struct Entries {
        std::int32_t count = 0;
        std::string bytes;
    };
    static constexpr std::string_view terminator = ",#";

    template <class Word>
    static void put_word(std::string& bytes, Word word) {
        bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
    }
    static void put_text(std::string& bytes, std::string_view text) {
        put_word(bytes, static_cast<std::int32_t>(text.size()));
        bytes += text;
    }
    // An array that is missing has its count, and no numbers.
    static void put_block(std::string& bytes, int count, const double* values) {
        put_word(bytes, count);
        if (values != nullptr) {
            bytes.append(reinterpret_cast<const char*>(values), sizeof(double) * static_cast<std::size_t>(count));
        }
    }
    template <class Body>
    CategoryDraft& entry(Entries& entries, std::string_view key, std::int32_t type, Body&& put_body) {
        ++entries.count;
        put_text(entries.bytes, key);
        put_word(entries.bytes, type);
        put_body(entries.bytes);
        entries.bytes += terminator;
        return *this;
    }

    std::string name_;
    Entries ints_;
    Entries doubles_;
    Entries strings_;
    Entries tables_;
};

class ModelDraft {
  public:
    // A file without categories; the memory of the one before serves it.
    void restart() { count_ = 0; }
    // Appended when absent; stays where it is.
    CategoryDraft& category(std::string_view name) {
        for (std::size_t k = 0; k < count_; ++k) {
            if (categories_[k].name() == name) {
                return categories_[k];
            }
        }
        return append(name);
    }
    CategoryDraft& append(std::string_view name) {
        if (count_ == categories_.size()) {
            categories_.emplace_back();
        }
        CategoryDraft& added = categories_[count_++];
        added.restart(name);
        return added;
    }
    void write(const std::string& path) {
        bytes_ = kzb::binary_head;
        for (std::size_t k = 0; k < count_; ++k) {
            categories_[k].put(bytes_);
        }
        bytes_ += kzb::file_end;
        hold(path, bytes_);
    }

  private:
    std::deque<CategoryDraft> categories_;  // the first `count_` are in use
    std::size_t count_ = 0;
    std::string bytes_;
};

}  // namespace kzb_fuzz
