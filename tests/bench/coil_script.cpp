#include "coil_script.h"

#include <cmath>
#include <iterator>
#include <limits>

#include "draw.h"

namespace kzb_bench_test {
namespace {

double odd_number(std::mt19937_64& random) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double numbers[] = {0.0,      -0.0,      1e300,  -1e300, 1e-320,
                                  infinity, -infinity, 1e-300, 1e5,    std::numeric_limits<double>::quiet_NaN()};
    return numbers[random() % std::size(numbers)];
}

// Mostly of the size that a machine sees.
double number(std::mt19937_64& random, double least, double most, int odd_percent) {
    return pick(random, 0, 99) < odd_percent ? odd_number(random) : uniform(random, least, most);
}

double displacement(const CoilPair& pair, std::mt19937_64& random, int odd_percent) {
    return pair.has_torque() ? number(random, -400.0, 800.0, odd_percent) : number(random, -0.02, 0.02, odd_percent);
}

void odd_call(CoilPair& pair, std::mt19937_64& random, double& time, int odd) {
    const int n = pair.coils();
    const int phase = pick(random, 0, 9) == 0 ? pick(random, -1, n + 1) : pick(random, 1, n);
    switch (pick(random, 0, 24)) {
        case 0:
        case 1:
        case 2:
            time += pick(random, 0, 3) == 0 ? 0.0 : uniform(random, 1e-5, 1e-3);
            pair.set_time(time);
            break;
        case 3:
            pair.set_time(number(random, -1e-3, time, odd));
            break;
        case 4:
        case 5:
            pair.set_displacement(displacement(pair, random, odd));
            break;
        case 6:
        case 7:
            pair.set_voltage(phase, number(random, -50.0, 50.0, odd));
            break;
        case 8:
            pair.set_signal(phase, pick(random, -1, 2));
            break;
        case 9:
            pair.set_current(phase, number(random, -20.0, 20.0, odd));
            break;
        case 10:
        case 11:
        case 12:
        case 13:
        case 14:
            pair.execute();
            break;
        case 15:
        case 16:
            pair.update();
            break;
        case 17:
            pair.compare_torque();
            break;
        case 18:
            pair.compare_inductance(phase, pick(random, -1, n + 1));
            break;
        case 19:
            pair.set_correction(pick(random, 0, 6), number(random, -0.1, 1.5, odd));
            break;
        case 20:
            pair.set_temperature(pick(random, 0, 5), number(random, -10.0, 400.0, odd));
            break;
        case 21:
            pair.set_interpolation(pick(random, 0, 4));
            break;
        case 22:
            pair.set_initial_current(phase, number(random, -20.0, 20.0, odd));
            break;
        case 23:
            pair.set_resistance(number(random, -0.1, 5.0, odd));
            break;
        default:
            switch (pick(random, 0, 3)) {
                case 0:
                    pair.set_initial_time(number(random, -1e-4, 1e-3, odd));
                    break;
                case 1:
                    pair.set_initial_displacement(number(random, -30.0, 30.0, odd));
                    break;
                case 2:
                    pair.set_data();
                    break;
                default:
                    pair.switch_temperatures_on();
            }
    }
}

}  // namespace

void configure_at_random(CoilPair& pair, std::mt19937_64& random) {
    pair.set_interpolation(pick(random, 0, 4));
    for (int which = 0; which < 5; ++which) {
        if (pick(random, 0, 1) == 0) {
            pair.set_correction(which, uniform(random, 0.8, 1.2));
        }
    }
    for (int which = 5; which < 7; ++which) {
        if (pick(random, 0, 1) == 0) {
            pair.set_correction(which, pick(random, 0, 4) == 0 ? 0.0 : uniform(random, 30.0, 90.0));
        }
    }
    if (pick(random, 0, 1) == 0) {
        pair.set_resistance(uniform(random, 0.1, 5.0));
    }
    if (pick(random, 0, 1) == 0) {
        pair.switch_temperatures_on();
        pair.set_temperature(0, uniform(random, 250.0, 450.0));
        pair.set_temperature(3, uniform(random, 250.0, 450.0));
        pair.set_temperature(1, uniform(random, 280.0, 310.0));
        pair.set_temperature(4, uniform(random, 280.0, 310.0));
        pair.set_temperature(2, uniform(random, 3000.0, 5000.0));
        pair.set_temperature(5, uniform(random, -0.3, 0.0));
    }
}

void run_samples(CoilPair& pair, std::mt19937_64& random, int samples, bool by_current) {
    pair.set_data();
    if (pick(random, 0, 1) == 0) {
        for (int k = 1; k <= pair.coils(); ++k) {
            pair.set_initial_current(k, uniform(random, -5.0, 5.0));
        }
        pair.set_initial_time(1e-5);
        pair.set_initial_displacement(uniform(random, -0.1, 0.1));
    }
    const bool quick = pick(random, 0, 1) == 0;
    double time = pick(random, 0, 1) == 0 ? 0.0 : 1e-4;
    double at = displacement(pair, random, 0);
    for (int s = 0; s < samples; ++s) {
        pair.set_time(time);
        if (pick(random, 0, 9) != 0) {
            at += pair.has_torque() ? uniform(random, -1.0, 4.0) : uniform(random, -1e-3, 1e-3);
        }
        pair.set_displacement(at);
        for (int k = 1; k <= pair.coils(); ++k) {
            if (by_current) {
                pair.set_current(k, 10.0 * std::sin(0.2 * s + k) + uniform(random, -1.0, 1.0));
                continue;
            }
            pair.set_voltage(k, 20.0 * std::sin((quick ? 0.5 : 0.03) * s + k) + uniform(random, -1.0, 1.0));
            if (pick(random, 0, 20) == 0) {
                pair.set_signal(k, pick(random, -1, 2));
            }
        }
        for (int e = by_current ? 0 : pick(random, 1, 3); e > 0; --e) {
            pair.execute();
        }
        pair.compare_torque();
        pair.compare_results();
        if (pick(random, 0, 9) == 0) {
            pair.compare_inductance(pick(random, 1, pair.coils()), pick(random, 1, pair.coils()));
            pair.compare_results();
        }
        pair.update();
        if (pick(random, 0, 9) != 0) {
            time += 1e-4 * pick(random, 1, 3);
        }
        if (testing::Test::HasFailure()) {
            return;
        }
    }
    for (int r = 0; r <= pair.coils() + 1; ++r) {
        for (int c = 0; c <= pair.coils() + 1; ++c) {
            pair.compare_inductance(r, c);
        }
    }
    pair.compare_statistics();
}

void run_odd_calls(CoilPair& pair, std::mt19937_64& random, int calls) {
    double time = 0.0;
    const int bound_at = pick(random, 0, 3) == 0 ? pick(random, 0, 20) : 0;
    const int odd = pick(random, 0, 2) * 10;
    for (int call = 0; call < calls && !testing::Test::HasFailure(); ++call) {
        if (call == bound_at) {
            pair.set_data();
        }
        odd_call(pair, random, time, odd);
        pair.compare_results();
    }
    if (odd == 0) {
        pair.compare_statistics();
    }
}

}  // namespace kzb_bench_test
