// Reads the input as the description of a generic model and the CSV files of its tables, one behind the other; a line
// of
// "=" alone ends each. A description is refused with a message, or its model can be written in both forms, opens in a
// calculator and takes samples.
//
// The files of the tables are named "1" to "3".
#include "kzb/build_generic.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/command.h"
#include "scratch_file.h"
#include "silence.h"
#include "store/format/model_file.h"

namespace {

constexpr int samples = 4;

std::string_view take_file(std::string_view& rest) {
    const std::size_t end = rest.find("\n=\n");
    const std::string_view file = rest.substr(0, end == std::string_view::npos ? end : end + 1);
    rest.remove_prefix(std::min(rest.size(), file.size() + 2));
    return file;
}

void step(const char* path) {
    KZB_CALC* calc = nullptr;
    if (kzbcalcInitialize(path, 1, &calc) != 0) {
        std::abort();  // what the builder makes can be opened
    }
    kzbcalcSetStepSize(1e-4, calc);
    kzbcalcSetData(calc);
    std::vector<double> inputs(static_cast<std::size_t>(kzbcalcGetNumOfInputPortsForGenericModel(calc)), 1.0);
    std::vector<double> outputs(static_cast<std::size_t>(kzbcalcGetNumOfOutputPortsForGenericModel(calc)));
    for (int k = 0; k < samples; ++k) {
        kzbcalcSetTime(1e-4 * k, calc);
        kzbcalcSetInputValuesForGenericModel(inputs.data(), static_cast<int>(inputs.size()), calc);
        kzbcalcExecute(calc);
        kzbcalcGetOutputValuesForGenericModel(outputs.data(), static_cast<int>(outputs.size()), calc);
        kzbcalcUpdate(calc);
    }
    kzbcalcTerminate(calc);
}

void build(const std::string& description, const char* model) {
    using namespace kzb::tool;
    try {
        const GenericBuild build = build_generic(read_generic_description(description));
        kzb::write_ascii(*build.store, model);
        kzb_export_information(build.store.get(), model);
        kzb::write_binary(*build.store, model);
    } catch (const Failure& failure) {
        if (failure.what()[0] == '\0') {
            std::abort();  // a refusal has a text
        }
        return;
    }
    step(model);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    static const kzb_fuzz::ScratchPath folder("description");
    static const kzb_fuzz::ScratchPath model("built");
    std::filesystem::create_directory(folder.name());
    std::string_view rest = kzb_fuzz::text_of(data, size);
    kzb_fuzz::hold(folder.name() + "/description", take_file(rest));
    for (const char* name : {"/1", "/2", "/3"}) {
        kzb_fuzz::hold(folder.name() + name, take_file(rest));
    }
    build(folder.name() + "/description", model.path());
    return 0;
}
