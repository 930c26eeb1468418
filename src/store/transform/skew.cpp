// Samples along the stack, and the skew of one table and of one scalar.
//
//   continuous:  position(s) = -angle/2 + s angle/(M - 1)
//   in steps:    position(s) = -angle/2 + (s steps / M in integers) angle/(steps - 1)
//   table(x)  =  mean over slices of  table_org(phase - pp d, position + d),  d = position_a(s) - position_b(s)
//
// The unskewed table or scalar is kept under its name with "_org"; every skew starts from it. The means are plain for
// one stepped side, else those of the trapezoid rule.
#include "store/transform/skew.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "store/store.h"
#include "store/transform/frame.h"
#include "store/transform/table_copy.h"

namespace kzb {
namespace {

constexpr int stepped = 3;
constexpr int most_samples = 24;
constexpr int samples_of_continuous = 12;

bool is_continuous(const SkewSide& side) {
    return side.type == 1 || side.type == 2;
}

// A single step has no spacing: the division by steps - 1 = 0 then gives a position that is not a number.
double position(const SkewSide& side, int s, int count) {
    if (is_continuous(side)) {
        return -0.5 * side.angle + s * (side.angle / (count - 1));
    }
    if (side.type == stepped) {
        const std::int64_t step = static_cast<std::int64_t>(s) * side.steps / count;
        return -0.5 * side.angle +
               static_cast<double>(step) * side.angle / static_cast<double>(std::int64_t{side.steps} - 1);
    }
    return 0.0;
}

double trapezoid_sum(const std::vector<double>& samples) {
    double sum = 0.0;
    for (std::size_t s = 0; s + 1 < samples.size(); ++s) {
        sum += 0.5 * (samples[s] + samples[s + 1]);
    }
    return sum;
}

double plain_sum(const std::vector<double>& samples) {
    double sum = 0.0;
    for (const double sample : samples) {
        sum += sample;
    }
    return sum;
}

bool one_stepped_side(const Skew& skew) {
    return (skew.a.type == stepped && skew.b.type == 0) || (skew.a.type == 0 && skew.b.type == stepped);
}

double mean_of(const std::vector<double>& samples, bool plain) {
    const auto count = static_cast<double>(samples.size());
    return plain ? plain_sum(samples) / count : trapezoid_sum(samples) / (count - 1);
}

// Kept: divided in integers, an odd pole count loses its half pair.
int pole_pairs(const KZB_STORE& store) {
    return get_int(store, "control", "number_of_poles") / 2;
}

// Samples the unskewed table around one of its points.
class SliceSampler {
  public:
    SliceSampler(std::string_view category, std::string_view key, int phase_axis, int position_axis, double pp,
                 std::vector<double> displacements)
        : lookup_(std::string(category), std::string(key)),
          phase_axis_(phase_axis),
          position_axis_(position_axis),
          pole_pairs_(pp),
          displacements_(std::move(displacements)),
          samples_(displacements_.size()) {}

    const std::vector<double>& at(KZB_STORE& store, const Method& method, std::vector<double>& point) {
        // An axis that the table lacks is not displaced.
        const int dim = static_cast<int>(point.size());
        double* phase = phase_axis_ >= 1 && phase_axis_ <= dim ? &point[at_axis(phase_axis_)] : nullptr;
        double* place = position_axis_ >= 1 && position_axis_ <= dim ? &point[at_axis(position_axis_)] : nullptr;
        const double phase_node = phase != nullptr ? *phase : 0.0;
        const double place_node = place != nullptr ? *place : 0.0;
        for (std::size_t s = 0; s < displacements_.size(); ++s) {
            const double d = displacements_[s];
            if (phase != nullptr) {
                *phase = phase_node - pole_pairs_ * d;
            }
            if (place != nullptr) {
                *place = place_node + d;
            }
            samples_[s] = lookup_.at(store, method, point.data(), dim);
        }
        return samples_;
    }

  private:
    static std::size_t at_axis(int axis) { return static_cast<std::size_t>(axis - 1); }

    TableRef lookup_;
    int phase_axis_;
    int position_axis_;
    double pole_pairs_;
    std::vector<double> displacements_;
    std::vector<double> samples_;
};

// True when an index vector of the unskewed table addresses the target as well.
bool same_shape(const KZB_TABLE* table, const std::vector<int>& sizes) {
    return table != nullptr && table->values && table->sizes == sizes;
}

}  // namespace

int skew_sample_count(const Skew& skew) {
    const SkewSide& a = skew.a;
    const SkewSide& b = skew.b;
    int count = 0;
    if (is_continuous(a) || is_continuous(b) || (a.type == stepped && b.type == stepped && a.steps != b.steps)) {
        count = samples_of_continuous;
        count = a.type == stepped ? std::max(count, a.steps) : count;
        count = b.type == stepped ? std::max(count, b.steps) : count;
    } else if (a.type == stepped) {
        count = a.steps;
    } else if (b.type == stepped) {
        count = b.steps;
    }
    return std::min(count, most_samples);
}

std::vector<double> skew_displacements(const Skew& skew, int count) {
    std::vector<double> displacements;
    for (int s = 0; s < count; ++s) {
        displacements.push_back(position(skew.a, s, count) - position(skew.b, s, count));
    }
    return displacements;
}

int skew_table(KZB_STORE& store, std::string_view category, std::string_view key, int phase_axis, int position_axis,
               const Skew& skew, const Method& method) {
    const int count = skew_sample_count(skew);
    if (count < 2) {
        return 1;
    }
    const std::string org = std::string(key) + "_org";
    // The unskewed table is kept once, also when it is absent and the copy an empty one.
    if (!has_parameter(store, category, org) && copy_table(store, category, key, org) != 0) {
        return 1;
    }
    const KZB_TABLE* source = find_table(store, category, org);
    if (source == nullptr || source->dim <= 0 || !source->values) {
        return 1;
    }
    std::vector<std::vector<double>> grids;
    for (int axis = 1; axis <= source->dim; ++axis) {
        grids.push_back(nodes_of(store, source, axis));
    }
    KZB_TABLE* target = find_table(store, category, key);
    const bool direct = same_shape(target, source->sizes);
    const std::vector<int> sizes = source->sizes;
    Cells cells(target, sizes.size());
    SliceSampler sampler(category, org, phase_axis, position_axis, pole_pairs(store), skew_displacements(skew, count));
    const bool plain = one_stepped_side(skew);
    std::vector<int> indices(sizes.size(), 0);
    std::vector<double> point(sizes.size());
    std::size_t flat = 0;
    do {
        for (std::size_t a = 0; a < sizes.size(); ++a) {
            point[a] = grids[a][static_cast<std::size_t>(indices[a])];
        }
        const double value = mean_of(sampler.at(store, method, point), plain);
        if (direct) {
            target->values[flat] = value;
        } else {
            cells.set(indices, value);
        }
        ++flat;
    } while (next_point(indices, sizes));
    return 0;
}

int skew_scalar(KZB_STORE& store, std::string_view category, std::string_view key, const Skew& skew) {
    const std::string org = std::string(key) + "_org";
    if (!has_parameter(store, category, org)) {
        put_double(store, category, org, get_double(store, category, key));
    }
    const int count = skew_sample_count(skew);
    if (count < 2) {
        return 1;
    }
    const double F = get_double(store, category, org);
    const int M = count / 2;
    std::vector<double> cosines;
    for (const double d : skew_displacements(skew, M)) {
        cosines.push_back(std::cos(radians(pole_pairs(store) * d)));
    }
    double R = M == 1 ? F * cosines[0] : trapezoid_sum(cosines) * (F / (M - 1));
    if (count % 2 != 0) {
        R += F / count;
    }
    put_double(store, category, key, R);
    return 0;
}

}  // namespace kzb
