// The calls of a generic model that a fuzz input makes.
#pragma once

#include <utility>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "choices.h"
#include "interface/generic_accessors.h"

namespace kzb_fuzz {

class GenericCalls {
  public:
    GenericCalls(Input& in, KZB_CALC* calc) : in_(in), calc_(calc) {}

    // Inputs of a sample, before its step.
    void give_inputs() {
        std::vector<double> values = numbers(kzbcalcGetNumOfInputPortsForGenericModel(calc_), false);
        kzbcalcSetInputValuesForGenericModel(values.data(), static_cast<int>(values.size()), calc_);
    }
    void take_outputs() {
        std::vector<double> values = numbers(kzbcalcGetNumOfOutputPortsForGenericModel(calc_), true);
        kzbcalcGetOutputValuesForGenericModel(values.data(), static_cast<int>(values.size()), calc_);
    }

    void call() {
        using namespace kzb_test;
        switch (in_.choice(10)) {
            case 0: {
                const GenericSetter& row = generic_setters[in_.choice(static_cast<unsigned>(generic_setters.size()))];
                const int id = in_.index();
                const double value = in_.number();
                // Two of the values are ints.
                row.set(id, row.refused == Refused::nothing && !(value > -1e9 && value < 1e9) ? 0.0 : value, calc_);
                break;
            }
            case 1:
                generic_getters[in_.choice(static_cast<unsigned>(generic_getters.size()))].get(in_.index(), calc_);
                break;
            case 2: {
                constexpr const char* names[] = {"part", "source", "motion", "ground", "", nullptr};
                const char* const name = names[in_.choice(6)];
                for (const GenericLookup& row : generic_lookups) {
                    row.find(name, calc_);
                }
                break;
            }
            case 3:
                give_inputs();
                break;
            case 4:
                take_outputs();
                break;
            case 5: {
                int values[6];
                for (int& value : values) {
                    value = in_.index();
                }
                kzbcalcSetParametersForGenericModel(values, in_.byte() < 0xf0 ? 6 : in_.index(), calc_);
                break;
            }
            case 6:
                set_table_values();
                break;
            case 7:
                set_factors();
                break;
            case 8:
                set_initial_values();
                break;
            default:
                write_labels();
                break;
        }
    }

  private:
    // No group of the model has more components: a count that is let through reads no further.
    static constexpr int room = 64;

    std::vector<double> numbers(int count, bool zero) {
        std::vector<double> values(count > 0 && count < 100000 ? static_cast<std::size_t>(count) : 0U);
        if (!zero) {
            for (double& value : values) {
                value = in_.is_empty() ? 1.0 : in_.number();
            }
        }
        return values;
    }
    int length() { return in_.byte() < 0xe0 ? static_cast<int>(in_.choice(4)) : in_.index(); }
    const double* array(std::vector<double>& values) {
        values = numbers(room, in_.flag());
        return in_.byte() == 0xff ? nullptr : values.data();
    }

    void set_table_values() {
        std::vector<double> a, b, c, d;
        int types[room];
        for (int& type : types) {
            type = in_.is_empty() ? 1 : in_.index();
        }
        kzbcalcSetTableValuesForGenericModel(types, length(), array(a), length(), array(b), length(), array(c),
                                             length(), array(d), length(), calc_);
    }
    void set_factors() {
        std::vector<double> a, b, c, d, e, f;
        kzbcalcSetCorrectionFactorsForGenericModel(array(a), length(), array(b), length(), array(c), length(), array(d),
                                                   length(), array(e), length(), array(f), length(), calc_);
    }
    void set_initial_values() {
        std::vector<double> a, b, c, d, e, f;
        kzbcalcSetInitialValuesForGenericModel(array(a), length(), array(b), length(), array(c), length(), array(d),
                                               length(), array(e), length(), array(f), length(), calc_);
    }
    // Once: it is the work of thousands of other calls.
    void write_labels() {
        if (std::exchange(has_labels_, true)) {
            return;
        }
        constexpr std::size_t size = 128;
        for (const bool inputs : {true, false}) {
            const int ports = inputs ? kzbcalcGetNumOfInputPortsForGenericModel(calc_)
                                     : kzbcalcGetNumOfOutputPortsForGenericModel(calc_);
            if (ports < 0 || ports > 10000) {
                continue;
            }
            std::vector<char> text(size * static_cast<std::size_t>(ports));
            std::vector<char*> buffers;
            for (std::size_t at = 0; at < text.size(); at += size) {
                buffers.push_back(text.data() + at);
            }
            (inputs ? kzbcalcGetInputLabelsForGenericModel : kzbcalcGetOutputLabelsForGenericModel)(
                buffers.data(), static_cast<int>(text.size()), calc_);
        }
    }

    Input& in_;
    KZB_CALC* calc_;
    bool has_labels_ = false;
};

}  // namespace kzb_fuzz
