// One lookup per scheme and 1 to 5 axes, four ways on the same points.
//
//   exported   kzb_get_table_interpolated_value
//   models     TableRef::at, as the models look up
//   bare       the plain reference without clocks and environment tests
//   clocks     the plain reference with them
//
// Surroundings: the store holds the fifteen categories of a Harmonic machine, and the table stands as "flux" in
// "current_flux", the sixth category, where the flux table of such a file stands. Axes have 13 to 37 nodes; over 4 and
// 5 axes the last one is the component axis of three phases. The point moves at every call, every axis by a twentieth
// of its cell (up and down its whole range), so that the cell changes every 20 calls; the component changes at every
// call. Beside it: points at random over the whole range.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "bench/program.h"
#include "bench/reference/lookup.h"
#include "bench/reference/sample_machine.h"
#include "store/lookup_front.h"

namespace {

constexpr const char* category = "current_flux";
constexpr const char* key = "flux";
constexpr int largest_dim = 5;
constexpr const char* schemes[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

struct Axis {
    int nodes;
    double first;
    double last;
    bool cyclic;
};

// Amplitude, current phase, position and component; over five axes three phase currents, position and component.
std::vector<Axis> axes_of(int dim) {
    const Axis amplitude{13, 0.0, 360.0, false};
    const Axis phase{37, -180.0, 180.0, true};
    const Axis position{31, 0.0, 90.0, true};
    const Axis current{13, -360.0, 360.0, false};
    const Axis component{3, 0.0, 2.0, false};
    switch (dim) {
        case 1:
            return {position};
        case 2:
            return {amplitude, phase};
        case 3:
            return {amplitude, phase, position};
        case 4:
            return {amplitude, phase, position, component};
        default:
            return {current, current, current, position, component};
    }
}

double node_of(const Axis& axis, int i) {
    return axis.first + (axis.last - axis.first) * i / (axis.nodes - 1);
}

double value_of(std::size_t flat) {
    return static_cast<double>(flat * 7919 % 10007) / 10007.0;
}

// The machine with the table in its place, in the reference and in the product.
class World {
  public:
    explicit World(int dim) : dim_(dim) {
        kzb_reference::SampleMachine machine;
        machine.loss_table = false;
        kzb_reference::make_sample_machine(machine, reference_);
        const std::vector<Axis> axes = axes_of(dim);
        std::vector<int> sizes;
        for (const Axis& axis : axes) {
            sizes.push_back(axis.nodes);
        }
        kzb_reference::Table& table = kzb_reference::kzb_create_table(category, key, dim, sizes.data(), reference_);
        for (int a = 0; a < dim; ++a) {
            const Axis& axis = axes[static_cast<std::size_t>(a)];
            table.cyclic[a] = axis.cyclic ? 1 : 0;
            for (int i = 0; i < axis.nodes; ++i) {
                kzb_reference::table_set_axis_value(table, a + 1, i, node_of(axis, i));
            }
        }
        for (int flat = 0; flat < table.total; ++flat) {
            table.values[flat] = value_of(static_cast<std::size_t>(flat));
        }
        copy_to_product();
    }
    ~World() { kzb_finish(product_); }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    int dim() const { return dim_; }
    kzb_reference::Store& reference() { return reference_; }
    KZB_STORE* product() { return product_; }

  private:
    void copy_to_product() {
        kzb_initialize(&product_);
        for (int c = 0; c < reference_.category_count; ++c) {
            const kzb_reference::Category& from = reference_.categories[c];
            for (int i = 0; i < from.int_count; ++i) {
                kzb_put_int(from.name, from.ints[i].keyword, from.ints[i].value, product_);
            }
            for (int i = 0; i < from.double_count; ++i) {
                kzb_put_double(from.name, from.doubles[i].keyword, from.doubles[i].value, product_);
            }
            for (int i = 0; i < from.string_count; ++i) {
                kzb_put_string(from.name, from.strings[i].keyword, from.strings[i].value, product_);
            }
            for (int i = 0; i < from.table_count; ++i) {
                copy_table(from.name, from.tables[i]);
            }
        }
    }
    void copy_table(const char* to_category, const kzb_reference::Table& table) {
        kzb_create_table(to_category, table.keyword, table.dim, table.sizes, product_);
        for (int a = 0; a < table.dim; ++a) {
            kzb_set_table_cyclic_flag(to_category, table.keyword, a + 1, table.cyclic[a], product_);
            for (int i = 0; i < table.sizes[a]; ++i) {
                kzb_set_table_axis_value(to_category, table.keyword, a + 1, i, table.axes[a][i], product_);
            }
        }
        std::vector<int> index(static_cast<std::size_t>(table.dim));
        for (int flat = 0; flat < table.total; ++flat) {
            for (int a = 0; a < table.dim; ++a) {
                index[static_cast<std::size_t>(a)] = flat / table.strides[a] % table.sizes[a];
            }
            kzb_set_table_value(to_category, table.keyword, index.data(), table.values[flat], product_);
        }
    }

    int dim_;
    kzb_reference::Store reference_;
    KZB_STORE* product_ = nullptr;
};

World& world_of(int dim) {
    static std::unique_ptr<World> worlds[largest_dim + 1];
    std::unique_ptr<World>& world = worlds[dim];
    if (!world) {
        world = std::make_unique<World>(dim);
    }
    return *world;
}

constexpr int point_count = 1440;  // whole ways up and down of every axis

// Points one behind the other, `dim` numbers each.
std::vector<double> moving_points(int dim) {
    const std::vector<Axis> axes = axes_of(dim);
    std::vector<double> points;
    for (int call = 0; call < point_count; ++call) {
        for (const Axis& axis : axes) {
            if (axis.nodes <= 9) {
                points.push_back(call % axis.nodes);
                continue;
            }
            const int way = 20 * (axis.nodes - 1);
            const int at = call % (2 * way);
            const double cells = ((at < way ? at : 2 * way - 1 - at) + 0.5) / 20.0;
            points.push_back(axis.first + (axis.last - axis.first) * cells / (axis.nodes - 1));
        }
    }
    return points;
}

std::vector<double> random_points(int dim) {
    std::mt19937_64 random(1);
    std::vector<double> points;
    for (int call = 0; call < point_count; ++call) {
        for (const Axis& axis : axes_of(dim)) {
            points.push_back(axis.nodes <= 9 ? static_cast<double>(random() % static_cast<unsigned>(axis.nodes))
                                             : std::uniform_real_distribution<double>(axis.first, axis.last)(random));
        }
    }
    return points;
}

template <class Look>
void measure(benchmark::State& state, const std::vector<double>& points, int dim, Look look) {
    const double* const first = points.data();
    const double* const end = first + points.size();
    const double* x = first;
    for (auto _ : state) {
        benchmark::DoNotOptimize(look(x));
        x += dim;
        if (x == end) {
            x = first;
        }
    }
}

enum class Way { exported, models, bare, clocks };

void lookup(benchmark::State& state, Way way, const char* scheme, int dim, bool random) {
    World& world = world_of(dim);
    const std::vector<double> points = random ? random_points(dim) : moving_points(dim);
    switch (way) {
        case Way::exported:
            measure(state, points, dim, [&](const double* x) {
                return kzb_get_table_interpolated_value(category, key, x, scheme, world.product());
            });
            break;
        case Way::models: {
            kzb::TableRef table(category, key);
            const kzb::Method method = kzb::Method::named(scheme);
            measure(state, points, dim, [&](const double* x) { return table.at(*world.product(), method, x, dim); });
            break;
        }
        case Way::bare:
            measure(state, points, dim, [&](const double* x) {
                return kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>(category, key, x, scheme,
                                                                                            world.reference());
            });
            break;
        case Way::clocks:
            measure(state, points, dim, [&](const double* x) {
                return kzb_reference::kzb_get_table_interpolated_value<kzb_reference::WithClocks>(
                    category, key, x, scheme, world.reference());
            });
            break;
    }
}

void register_all() {
    constexpr std::pair<Way, const char*> ways[] = {
        {Way::exported, "exported"}, {Way::models, "models"}, {Way::bare, "bare"}, {Way::clocks, "clocks"}};
    for (const char* scheme : schemes) {
        for (int dim = 1; dim <= largest_dim; ++dim) {
            for (const bool random : {false, true}) {
                for (const auto& [way, name] : ways) {
                    const std::string title = std::string("lookup/") + scheme + '/' + std::to_string(dim) + "_axes/" +
                                              (random ? "random/" : "moving/") + name;
                    benchmark::RegisterBenchmark(title.c_str(), lookup, way, scheme, dim, random);
                }
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return kzb_bench::run_registered(argc, argv);
}
