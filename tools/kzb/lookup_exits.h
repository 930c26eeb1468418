// Where the lookups of a run left their tables: which axis, how often, how far.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "store/lookup_watch.h"
#include "store/store.h"

namespace kzb::tool {

struct AxisExit {
    std::string category;
    std::string key;
    int axis = 0;  // from 1
    bool above = false;
    std::uint64_t lookups = 0;
    double end = 0.0;       // the node that was passed
    double farthest = 0.0;  // coordinate
};

// Listens to the lookups of a store as long as it lives; the store must live longer.
class LookupExits : public LookupWatch {
  public:
    explicit LookupExits(KZB_STORE& store);
    ~LookupExits() override;
    LookupExits(const LookupExits&) = delete;
    LookupExits& operator=(const LookupExits&) = delete;

    void left_table(const KZB_TABLE& table, const double* coordinates, int count) override;
    // In the order of the store.
    std::vector<AxisExit> exits() const;

  private:
    struct Count {
        std::uint64_t lookups = 0;
        double farthest = 0.0;
    };
    KZB_STORE& store_;
    std::map<std::pair<const KZB_TABLE*, int>, Count> counts_;  // the axis, negative below its first node
};

}  // namespace kzb::tool
