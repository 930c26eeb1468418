#include "kzb/build_machine_map.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr double edge_tolerance = 1e-9;  // part of the axis

bool is_zero(double x, const std::vector<double>& axis) {
    return std::fabs(x) <= edge_tolerance * (axis.back() - axis.front());
}

// Values of one current over position, as a function of theta in degrees.
class OverPosition {
  public:
    // `alternates`: the values change sign from one period of the map to the next (zero sequence flux, period 60
    // or 180).
    OverPosition(const SourceMap& map, std::vector<double> line, bool alternates)
        : spline_(nodes(map, alternates), values(std::move(line), alternates),
                  alternates ? 2.0 * map.period : map.period) {}
    double at(double theta) const { return spline_.at(theta); }

  private:
    static std::vector<double> nodes(const SourceMap& map, bool alternates) {
        std::vector<double> theta = map.theta;
        if (alternates) {
            for (const double t : map.theta) {
                theta.push_back(t + map.period);
            }
        }
        return theta;
    }
    static std::vector<double> values(std::vector<double> line, bool alternates) {
        if (alternates) {
            const std::size_t n = line.size();
            for (std::size_t k = 0; k < n; ++k) {
                line.push_back(-line[k]);
            }
        }
        return line;
    }
    PeriodicSpline spline_;
};

std::vector<double> mirrored_axis(const std::vector<double>& iq) {
    std::vector<double> axis;
    for (std::size_t j = iq.size() - 1; j > 0; --j) {
        axis.push_back(-iq[j]);
    }
    axis.insert(axis.end(), iq.begin(), iq.end());
    return axis;
}

}  // namespace

MachineMap::MachineMap(const SourceMap& source, const MachineOptions& options)
    : options_(options), id_(source.id), iq_(source.iq) {
    require_usable(source);
    if (options.mirror == Mirror::iq) {
        iq_ = mirrored_axis(source.iq);
        iq_[source.iq.size() - 1] = 0.0;
    }
    const std::vector<double> rest = torque_rest(source, options.pole_pairs, torque_source_);
    const bool alternates = source.has_positions && (source.period == 60.0 || source.period == 180.0);
    const std::vector<std::vector<double>> fields{
        resampled(source, source.psi_d, 1.0, false), resampled(source, source.psi_q, -1.0, false),
        resampled(source, source.psi_0, 1.0, alternates), resampled(source, rest, -1.0, false)};

    const std::size_t planes = source.has_positions ? options_.position_count : 1;
    planes_.reserve(planes);
    for (std::size_t k = 0; k < planes; ++k) {
        planes_.push_back(plane_of(fields, k));
    }
    std::vector<std::vector<double>> means;
    for (const std::vector<double>& field : fields) {
        std::vector<double> mean(field.size() / planes);
        for (std::size_t n = 0; n < mean.size(); ++n) {
            const auto line = field.begin() + static_cast<std::ptrdiff_t>(n * planes);
            mean[n] =
                std::accumulate(line, line + static_cast<std::ptrdiff_t>(planes), 0.0) / static_cast<double>(planes);
        }
        means.push_back(std::move(mean));
    }
    mean_ = {{id_, iq_, means[0]}, {id_, iq_, means[1]}, {id_, iq_, means[2]}, {id_, iq_, means[3]}};
}

void MachineMap::require_usable(const SourceMap& source) const {
    if (options_.mirror == Mirror::iq && !is_zero(source.iq.front(), source.iq)) {
        throw Failure(exit_file, fmt::format("{}: --mirror iq: q current starts at {:g} A, expected 0 and up only",
                                             source.name, source.iq.front()));
    }
    const auto holds_zero = [&](const char* name, const std::vector<double>& axis) {
        if (axis.front() > 0.0 && !is_zero(axis.front(), axis)) {
            throw Failure(exit_file, fmt::format("{}: {} starts at {:g} A, expected a map that holds zero current",
                                                 source.name, name, axis.front()));
        }
        if (axis.back() < 0.0 && !is_zero(axis.back(), axis)) {
            throw Failure(exit_file, fmt::format("{}: {} ends at {:g} A, expected a map that holds zero current",
                                                 source.name, name, axis.back()));
        }
    };
    holds_zero("d current", source.id);
    holds_zero("q current", source.iq);
}

// The field over (id, iq of the finished map, position node), position fastest; zeros for an empty field.
std::vector<double> MachineMap::resampled(const SourceMap& source, const std::vector<double>& field, double mirror_sign,
                                          bool alternates) {
    const std::size_t positions = source.has_positions ? options_.position_count : 1;
    std::vector<double> result(id_.size() * iq_.size() * positions, 0.0);
    if (field.empty()) {
        return result;
    }
    const bool mirror = options_.mirror == Mirror::iq;
    const std::size_t zero = mirror ? source.iq.size() - 1 : 0;  // index of the first source row in iq_
    const auto place = [&](std::size_t i, std::size_t j, std::size_t k) {
        return (i * iq_.size() + j) * positions + k;
    };
    for (std::size_t i = 0; i < source.id.size(); ++i) {
        for (std::size_t j = 0; j < source.iq.size(); ++j) {
            const auto first = field.begin() + static_cast<std::ptrdiff_t>(source.index(i, j, 0));
            std::vector<double> line(first, first + static_cast<std::ptrdiff_t>(source.theta.size()));
            if (!source.has_positions) {
                result[place(i, zero + j, 0)] = line[0];
                if (mirror && j > 0) {
                    result[place(i, zero - j, 0)] = mirror_sign * line[0];
                } else if (mirror && &field == &source.psi_q) {
                    mirror_residual_ = std::max(mirror_residual_, std::fabs(2.0 * line[0]));
                }
                continue;
            }
            const OverPosition over(source, std::move(line), alternates);
            for (std::size_t k = 0; k < positions; ++k) {
                const double value = over.at(theta_deg(k));
                const double image = mirror ? mirror_sign * over.at(-theta_deg(k)) : 0.0;
                result[place(i, zero + j, k)] = value;
                if (mirror && j > 0) {
                    result[place(i, zero - j, k)] = image;
                } else if (mirror && &field == &source.psi_q) {
                    mirror_residual_ = std::max(mirror_residual_, std::fabs(value - image));
                }
            }
        }
    }
    return result;
}

MachineMap::Plane MachineMap::plane_of(const std::vector<std::vector<double>>& fields, std::size_t k) const {
    const std::size_t points = id_.size() * iq_.size();
    const auto surface = [&](const std::vector<double>& field) {
        const std::size_t positions = field.size() / points;
        std::vector<double> plane(points);
        for (std::size_t n = 0; n < points; ++n) {
            plane[n] = field[n * positions + k];
        }
        return BicubicSurface(id_, iq_, std::move(plane));
    };
    return {surface(fields[0]), surface(fields[1]), surface(fields[2]), surface(fields[3])};
}

double MachineMap::theta_deg(std::size_t k) const {
    return options_.beta_zero + 360.0 * static_cast<double>(k) / static_cast<double>(options_.position_count);
}

bool MachineMap::covers(double id, double iq) const {
    const auto within = [](double x, const std::vector<double>& axis) {
        const double tolerance = edge_tolerance * (axis.back() - axis.front());
        return x >= axis.front() - tolerance && x <= axis.back() + tolerance;
    };
    return within(id, id_) && within(iq, iq_);
}

MachinePoint MachineMap::at(double id, double iq, std::size_t k) const {
    return point_of(planes_.size() == 1 ? planes_[0] : planes_[k % planes_.size()], id, iq);
}

MachinePoint MachineMap::point_of(const Plane& plane, double id, double iq) const {
    const SurfaceValue d = plane.psi_d.at(id, iq);
    const SurfaceValue q = plane.psi_q.at(id, iq);
    const SurfaceValue zero = plane.psi_0.at(id, iq);
    const double rest = plane.rest.at(id, iq).f;
    return {d.f,  q.f,  zero.f,  d.fx,    d.fy,
            q.fx, q.fy, zero.fx, zero.fy, 1.5 * options_.pole_pairs * (d.f * iq - q.f * id) + rest};
}

}  // namespace kzb::tool
