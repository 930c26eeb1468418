// What a build tells of its result: the file, the axes of its tables, and how far the tables are from their source; as
// text and as JSON.
#pragma once

#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "kzb/build_grids.h"
#include "kzb/json.h"

namespace kzb::tool {

// The largest and the mean square difference of one quantity.
struct PointDeviation {
    std::string quantity;
    std::string unit;
    double largest = 0.0;
    double scale = 0.0;   // largest magnitude of the quantity
    std::string at = {};  // where the largest deviation lies
    double squares = 0.0;
    std::size_t points = 0;

    // `where` is asked for a new largest deviation only.
    void add(double told, double wanted, const std::function<std::string()>& where);
    double rms() const { return points == 0 ? 0.0 : std::sqrt(squares / static_cast<double>(points)); }
};

struct OutcomeAxis {
    std::string name;  // "current"
    std::string unit;  // "A"
    TableAxis axis;
};

struct Outcome {
    std::string path;
    std::string motor;  // "SR"
    int motor_type = 0;
    std::vector<OutcomeAxis> axes;
    std::vector<std::string> notes;
    std::string against;  // "points of the map"
    std::string method;   // of the lookups
    std::size_t out_of_table = 0;
    std::vector<PointDeviation> deviations;
};

std::string text_of(const Outcome& outcome);
Json json_of(const Outcome& outcome);

// Lookups of a written model, counting those that leave their table.
class OutcomeLookup {
  public:
    OutcomeLookup(KZB_STORE* store, std::string method) : store_(store), method_(std::move(method)) {}
    double at(const char* category, const char* key, const std::vector<double>& where);
    double with(const char* method, const char* category, const char* key, const std::vector<double>& where);
    std::size_t out_of_table() const { return out_of_table_; }

  private:
    KZB_STORE* store_;
    std::string method_;
    std::size_t out_of_table_ = 0;
};

}  // namespace kzb::tool
