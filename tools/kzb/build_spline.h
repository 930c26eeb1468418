// Interpolating cubic splines in Hermite form: value and slope at each node, a cubic in between.
//
//   s(x) = y0 h00(t) + h m0 h10(t) + y1 h01(t) + h m1 h11(t),   t = (x - x0) / h
//
// The slopes m follow from a continuous second derivative,
//   m[i-1]/h[i-1] + 2 m[i] (1/h[i-1] + 1/h[i]) + m[i+1]/h[i] = 3 (D[i-1]/h[i-1] + D[i]/h[i]),   D = chord slopes,
// with a parabola in each end segment (m[0] + m[1] = 2 D[0]) of an open spline and periodic otherwise. A straight line
// is reproduced to rounding. Boost.Math has open splines on even grids only, neither periodic nor tensor ones.
#pragma once

#include <cstddef>
#include <vector>

namespace kzb::tool {

// Slopes at the nodes of an open spline; x ascending, at least two nodes (two: the chord).
std::vector<double> spline_slopes(const std::vector<double>& x, const std::vector<double>& y);

// Spline of period `period` through (x[i], y[i]); x ascending within one period, at least three nodes.
class PeriodicSpline {
  public:
    PeriodicSpline(std::vector<double> x, std::vector<double> y, double period);
    double at(double x) const;
    double slope_at(double x) const;

  private:
    struct Segment {
        std::size_t index;
        double t;
        double h;
    };
    Segment segment_of(double x) const;
    std::vector<double> x_;  // with the closing node
    std::vector<double> y_;
    std::vector<double> m_;
    double period_;
};

struct SurfaceValue {
    double f = 0.0;
    double fx = 0.0;  // df/dx
    double fy = 0.0;
};

// Tensor product spline over a rectangle. Beyond the edge it goes on linearly from the nearest point of the rectangle.
class BicubicSurface {
  public:
    BicubicSurface() = default;
    // values: y fastest.
    BicubicSurface(const std::vector<double>& x, const std::vector<double>& y, std::vector<double> values);
    SurfaceValue at(double x, double y) const;

  private:
    // Value, first and mixed derivatives inside the rectangle.
    struct Inner {
        double f, fx, fy, fxy;
    };
    Inner inner(double x, double y) const;
    std::vector<double> x_, y_;
    std::vector<double> f_, fx_, fy_, fxy_;
};

}  // namespace kzb::tool
