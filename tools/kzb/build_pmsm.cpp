#include "kzb/build_pmsm.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "fmt/format.h"
#include "kzb/build_notes.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/output_file.h"
#include "store/format/model_file.h"
#include "store/store.h"

namespace kzb::tool {

namespace {

constexpr std::size_t pmsm_value_limit = 200'000'000;  // of one table

void require_size(const TableGrids& grids) {
    const std::size_t currents =
        std::max(grids.amplitude.nodes.size() * grids.phase.nodes.size() * 9, grids.flux_nodes * grids.flux_nodes);
    if (currents > pmsm_value_limit / grids.position.nodes.size()) {
        throw Failure(exit_usage, fmt::format("{} amplitudes, {} phases, {} positions, {} flux nodes: tables beyond {} "
                                              "values, expected coarser grids",
                                              grids.amplitude.nodes.size(), grids.phase.nodes.size(),
                                              grids.position.nodes.size(), grids.flux_nodes, pmsm_value_limit));
    }
}

}  // namespace

PmsmBuild build_pmsm(const PmsmOptions& options) {
    PmsmBuild build;
    build.machine = options.machine;
    build.machine.pole_pairs = 0.5 * options.model.number_of_poles;
    SourceOptions source_options = options.source;
    source_options.pole_pairs = build.machine.pole_pairs;
    static_cast<void>(accuracy_type_of(options.model.applications));  // refuse early

    build.source = read_source_map(CsvTable::read(options.map_path), source_options);
    const MachineMap map(build.source, build.machine);
    build.grids = make_grids(map, options.grids);
    require_size(build.grids);
    build.model = make_model(map, build.grids, options.model, options.map_path);
    build.notes = notes_of(build.source, map, build.grids, build.model.flux_range, options);
    return build;
}

std::vector<DeviationReport> compare_pmsm(KZB_STORE* store, const PmsmBuild& build, const PmsmOptions& options) {
    std::vector<DeviationReport> reports;
    for (const Application application : options.model.applications) {
        const auto compare = [&](bool means) {
            reports.push_back(
                compare_tables(store, application, build.source, build.grids, build.machine, options.method, means));
        };
        compare(false);
        if (application == Application::LdLq && build.source.has_positions) {
            compare(true);
        }
    }
    return reports;
}

StorePointer write_model(KZB_STORE* store, const std::string& path, const std::string& form) {
    OutputFile file(path);
    if (const auto write = form == "ascii" ? write_ascii : write_binary;
        !write(*store, file.temporary_path(), Writing::in_place)) {
        throw Failure(exit_run_failed, fmt::format("{}: cannot write: {}", path, std::strerror(errno)));
    }
    StorePointer written = open_store();
    if (kzb_reader(file.temporary_path().c_str(), written.get()) != 0) {
        throw Failure(exit_run_failed, fmt::format("{}: what was written cannot be read back", path));
    }
    kzb_set_application("ALL", "", written.get());
    file.commit();
    written->input_path = path;  // where the file stands now
    return written;
}

}  // namespace kzb::tool
