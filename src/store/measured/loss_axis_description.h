// What the axes of a generic model's iron loss table stand for, as the "#" lines of a loss file describe them:
//
//   #reference_name="rotor",type="Speed",index="0",periodic="0"
//
// A "Speed" axis names a motion condition, a "Current" or "Phase" axis a coil set; an axis of any other type is fed
// from an input port of its own.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "store/int_edits.h"
#include "store/store.h"

namespace kzb {

struct LossAxis {
    int index = 0;  // of the table's axis, from 0
    int periodic = 0;
    int reference_id = -1;
    int reference_type = 0;
    int physical_type = 0;
};

class LossAxisDescriptions {
  public:
    explicit LossAxisDescriptions(const KZB_STORE& store) : store_(store) {}

    // Reads one "#" line. 0, or the error: 90026 to 90028 for a name without a fitting entry, 90029 for a number that
    // is none. A line that names no axis is passed over.
    int read(std::string_view line);
    // Sets the cyclic flags of the table.
    void apply_flags(KZB_TABLE& table) const;
    // Puts the axes, and the input ports that they need, into the store.
    IntEdits edits(const KZB_STORE& store) const;

  private:
    struct Entry {
        int id = 0;
        int type = 0;
        int reference = 0;
    };
    // Entries of a list of subcategories by name, the first of each.
    using Entries = std::map<std::string, Entry, std::less<>>;

    Entries entries_of(const char* path) const;
    int resolve(std::string_view type, std::string_view name, LossAxis& axis);
    int resolve_coil_set(std::string_view name, LossAxis& axis);
    const Entry* find(Entries& entries, bool& listed, const char* path, std::string_view name);

    const KZB_STORE& store_;
    std::vector<LossAxis> axes_;
    Entries motions_;
    Entries coil_sets_;
    bool motions_listed_ = false;
    bool coil_sets_listed_ = false;
};

}  // namespace kzb
