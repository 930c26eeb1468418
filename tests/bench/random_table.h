// Random tables and points for the comparison of the product with the plain reference, reproducible by seed.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "bench/reference/store.h"
#include "store/store.h"

namespace kzb_bench_test {

struct TableShape {
    int least_dim = 1;
    int most_dim = 5;
    int most_rows = 9;
    bool faults = false;  // missing grids, unordered and repeated nodes, values without a number
};

class RandomTable {
  public:
    RandomTable(std::mt19937_64& random, const TableShape& shape);
    // Random values over given axes.
    RandomTable(std::mt19937_64& random, std::vector<std::vector<double>> axes, std::vector<int> cyclic);

    // The same table in a reference store and as a record of the product.
    void put(const std::string& category, const std::string& key, kzb_reference::Store& store) const;
    void put(KZB_TABLE& table) const;
    void put(const std::string& category, const std::string& key, KZB_STORE& store) const;

    // Inside, on nodes, beside nodes by half and by double the tolerance, outside, periods away.
    std::vector<double> point(std::mt19937_64& random) const;
    int dim() const { return static_cast<int>(sizes_.size()); }
    std::string text() const;  // of the shape, for failure messages

  private:
    std::vector<double> make_axis(std::mt19937_64& random, int rows, bool faults) const;
    std::vector<int> sizes_;
    std::vector<int> cyclic_;
    std::vector<std::vector<double>> axes_;  // empty: no grid
    std::vector<double> values_;
};

}  // namespace kzb_bench_test
