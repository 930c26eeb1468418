// kzb export-info: the XML document that tells a host what ports and parameters a generic model offers.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "kzb/circuit_netlist.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/model_file.h"
#include "kzb/output_file.h"
#include "store/information_export.h"

namespace kzb::tool {

namespace {

struct ExportInfoOptions {
    std::string file;
    std::string out;
};

void export_info(const ExportInfoOptions& options, const Context& context) {
    refuse_same_file(options.out, options.file, "the KZB file");
    const ModelFile model = read_model(options.file);
    if (!model.damage.empty()) {
        throw Failure(exit_file, fmt::format("{}: damaged: {}", options.file, model.damage.front()));
    }
    if (!has_application(*model.store, "Generic", "")) {
        const int motor_type = get_int(*model.store, "control", "motor_type");
        throw Failure(
            exit_file,
            motor_type == generic_motor_type
                ? fmt::format("{}: no category \"parameter\", expected it in a generic model", options.file)
                : fmt::format("{}: motor type {}, expected a generic model (10008)", options.file, motor_type));
    }
    const std::string document = information_document(*model.store);
    OutputFile out(options.out);
    out.write(document);
    out.commit();
    context.print(fmt::format("{}: {} bytes\n", options.out, document.size()));
}

}  // namespace

void add_export_info(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("export-info", "Write the XML document of a generic model's ports and parameters");
    const auto options = std::make_shared<ExportInfoOptions>();
    command->add_option("file", options->file, "KZB file")->required()->type_name("FILE");
    command->add_option("output", options->out, "File to write")->required()->type_name("OUT.xml");
    command->callback(
        [options, &context] { context.action = [options, &context] { export_info(*options, context); }; });
}

}  // namespace kzb::tool
