// Every exported call in one form, so that a test can make each of them fail.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

// A call on an open calculator; texts and statuses as numbers.
struct CalculatorCall {
    std::string name;
    std::function<double(KZB_CALC*)> call;
};

// All but kzbcalcInitialize and kzbcalcTerminate, with values that a machine accepts.
const std::vector<CalculatorCall>& calculator_calls();

// What a store call does with the store when memory runs out.
enum class StoreChange {
    none,     // asks only
    whole,    // done, or the store is as it was
    partial,  // what was done so far stays
};

// The model that a store call works on.
enum class StoreModel { rotary, generic };

// A call on a loaded store; an absent text is 0, another 1.
struct StoreCall {
    std::string name;
    StoreModel model;
    StoreChange change;
    std::vector<double> failures;  // results that tell that it was not done
    std::function<double(KZB_STORE*)> call;
};

// Files that store calls read and write.
struct CallFiles {
    std::string model;
    std::string correction;
    std::string losses;
    std::string generic_losses;
    std::string copper_losses;
    std::string document;
};

// All but kzb_initialize and kzb_finish.
std::vector<StoreCall> store_calls(const CallFiles& files);

}  // namespace kzb_test
