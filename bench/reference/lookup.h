// One lookup: the category by name, the table by name, wrap, bracket, gather, reduction. Nothing is kept between calls.
#pragma once

#include "bench/reference/probe.h"
#include "bench/reference/store.h"

namespace kzb_reference {

// The store's front: phase folding, scheme by name, error code, statistics.
template <class Probe>
double kzb_get_table_interpolated_value(const char* category, const char* key, const double* values, const char* method,
                                        Store& store);

using Lookup = double (*)(const char* category, const char* key, const double* values, const char* method,
                          Store& store);

// One entry per scheme; 90006 for an absent keyword.
template <class Probe>
int table_lookup_linear(Category& category, const char* key, const double* x, double& result, double* timing);
template <class Probe>
int table_lookup_spline(Category& category, const char* key, const double* x, double& result, double* timing);
template <class Probe>
int table_lookup_cubic(Category& category, const char* key, const double* x, double& result, double* timing);
template <class Probe>
int table_lookup_spline6(Category& category, const char* key, const double* x, double& result, double* timing);
template <class Probe>
int table_lookup_spline4(Category& category, const char* key, const double* x, double& result, double* timing);

// Folds the coordinates of a table under phase symmetry; returns the factor of the result.
double fold_coordinates(const char* category, const char* key, double* x, Store& store);

struct Pair {
    std::int32_t lo;
    std::int32_t hi;
};

// The coordinate and bracket arrays of one call.
class Point {
  public:
    Point(const Table& table, const double* x);
    ~Point();
    Point(const Point&) = delete;
    Point& operator=(const Point&) = delete;

    bool wrapped() const { return wrapped_; }  // false: a coordinate has no place in its period
    int find_bracket(const Table& table);      // 0, 80001 or 80002
    const double* x() const { return x_; }
    const Pair* pairs() const { return pairs_; }

  private:
    double* x_;
    Pair* pairs_ = nullptr;
    bool wrapped_;
};

}  // namespace kzb_reference
