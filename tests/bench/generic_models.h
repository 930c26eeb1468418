// Generic models made at random: circuits of every kind of part, both forms of the tables, corrections, losses.
#pragma once

#include <random>
#include <vector>

#include "bench/reference/generic_machine.h"

namespace kzb_bench_test {

class GenericDice {
  public:
    explicit GenericDice(unsigned seed) : random_(seed) {}
    std::mt19937_64& engine() { return random_; }
    int pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
    bool one_of(int sides) { return pick(1, sides) == 1; }
    double uniform(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }
    // Mostly of ordinary size; now and then zero, huge, infinite or no number.
    double number(double size);
    // 1 .. count in some order.
    std::vector<int> order(int count);

  private:
    std::mt19937_64 random_;
};

// What a script needs to know of a model.
struct GenericShape {
    int sources = 0;
    int motions = 0;
    std::vector<double> limits;  // of the motions by id
    int user_inputs = 0;
    bool table_axes_form = false;
};

GenericShape make_random_generic(GenericDice& dice, kzb_reference::Store& store);

}  // namespace kzb_bench_test
