// Numbers drawn at random for the comparisons.
#pragma once

#include <random>

namespace kzb_bench_test {

inline int pick(std::mt19937_64& random, int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
}

inline double uniform(std::mt19937_64& random, double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random);
}

}  // namespace kzb_bench_test
