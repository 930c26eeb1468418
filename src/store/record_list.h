// Records of a list in the store: one category per record, named by a path and its place.
//
// A path "list;record" has records {0, i}, a path of three elements records {0, outer, i}. What is absent reads as 0,
// 0.0 or the empty text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/store.h"

namespace kzb {

class Record {
  public:
    explicit Record(const KZB_CATEGORY* category) : category_(category) {}

    bool has(const char* key) const;
    int integer(const char* key) const;
    double number(const char* key) const;
    std::string text(const char* key) const;
    // The number, when the record has the key in any kind.
    std::optional<double> optional_number(const char* key) const;

  private:
    const KZB_CATEGORY* category_;
};

// The flat name of a record's category; `outer` stands only in a path of three elements.
std::string record_name(const std::string& path, int outer, int index);

// Number of records, the distinct places in the store.
int record_count(const KZB_STORE& store, const std::string& path, int outer = 0);
Record record_at(const KZB_STORE& store, const std::string& path, int index, int outer = 0);
// Records 0 .. count - 1.
std::vector<Record> records_of(const KZB_STORE& store, const std::string& path, int outer = 0);

}  // namespace kzb
