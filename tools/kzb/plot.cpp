// kzb plot: a table as curves or as a heat map, drawn by gnuplot.
#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/entry_name.h"
#include "kzb/gnuplot.h"
#include "kzb/model_file.h"
#include "kzb/table_view.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct PlotOptions {
    std::string file;
    std::string table;
    std::string out;
    std::string axes;
    std::vector<std::string> held;
    std::string kind = "curves";
    int curves = 12;
};

constexpr int plot_height = 700;

const KZB_TABLE& table_named(const KZB_STORE& store, const PlotOptions& options) {
    const std::string& name = options.table;
    const std::optional<EntryName> found = find_entry(
        name, [&store](const EntryName& entry) { return find_table(store, entry.category, entry.key) != nullptr; });
    if (found) {
        return *find_table(store, found->category, found->key);
    }
    if (name.find('/') == std::string::npos) {
        throw Failure(exit_usage, fmt::format("{}: no table name, expected CATEGORY/KEY", printable_line(name)));
    }
    std::string known;
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            known += fmt::format("{}{}/{}", known.empty() ? "" : ", ", category.name, table.keyword);
        }
    }
    throw Failure(exit_usage, fmt::format("{}: no table {}, expected one of {}", options.file, printable_line(name),
                                          known.empty() ? "none: the file has no table" : printable_line(known)));
}

std::string title_of(const TableView& view) {
    std::string title = view.name;
    for (int axis = 1; axis <= view.table->dim; ++axis) {
        if (axis != view.x && (!view.y || axis != *view.y)) {
            title += fmt::format(", axis {} = {}", axis, view.fixed[static_cast<std::size_t>(axis - 1)]);
        }
    }
    return title;
}

double drawable(double value) {
    return value == KZB_NO_VALUE ? std::nan("") : value;
}

// The nodes of the family axis that get a curve: all, or evenly spread ones with the first and the last.
std::vector<int> family_of(const TableView& view, int limit) {
    if (!view.y) {
        return {0};
    }
    const int count = view.nodes(*view.y);
    std::vector<int> chosen;
    if (count <= limit) {
        for (int i = 0; i < count; ++i) {
            chosen.push_back(i);
        }
        return chosen;
    }
    warn(fmt::format("{}: axis {} has {} nodes, {} of them drawn (see --curves)", view.name, *view.y, count, limit));
    for (int i = 0; i < limit; ++i) {
        chosen.push_back(
            limit == 1 ? 0 : static_cast<int>(std::lround(static_cast<double>(i) * (count - 1) / (limit - 1))));
    }
    return chosen;
}

std::string curves_script(const TableView& view, int limit) {
    const std::vector<int> family = family_of(view, limit);
    GnuplotData data("data");
    for (int i = 0; i < view.nodes(view.x); ++i) {
        std::vector<double> cells = {view.node(view.x, i)};
        for (const int member : family) {
            cells.push_back(drawable(view.at(i, member)));
        }
        data.row(cells);
    }
    std::string script = data.text();
    script += fmt::format(
        "set title {}\nset xlabel 'axis {}'\nset ylabel {}\nset grid\nset key outside right\nset autoscale "
        "noextend\nplot ",
        gnuplot_text(title_of(view)), view.x, gnuplot_text(view.table->keyword));
    for (std::size_t k = 0; k < family.size(); ++k) {
        const std::string label =
            view.y ? gnuplot_text(fmt::format("axis {} = {}", *view.y, view.node(*view.y, family[k]))) : "''";
        script += fmt::format("{}$data using 1:{} with linespoints pointtype 7 pointsize 0.4 title {}",
                              k == 0 ? "" : ", ", k + 2, label);
    }
    return script + "\n";
}

std::string heatmap_script(const TableView& view) {
    if (!view.y || view.nodes(view.x) < 2 || view.nodes(*view.y) < 2) {
        throw Failure(exit_usage, fmt::format("{}: a heat map takes two axes of at least two nodes each", view.name));
    }
    GnuplotData data("data");
    for (int i = 0; i < view.nodes(view.x); ++i) {
        for (int j = 0; j < view.nodes(*view.y); ++j) {
            data.row({view.node(view.x, i), view.node(*view.y, j), drawable(view.at(i, j))});
        }
        data.blank();
    }
    return data.text() + fmt::format(
                             "set title {}\nset xlabel 'axis {}'\nset ylabel 'axis {}'\nset cblabel {}\nset autoscale "
                             "noextend\nset pm3d map "
                             "interpolate 0,0\nunset key\nsplot $data using 1:2:3 with pm3d\n",
                             gnuplot_text(title_of(view)), view.x, *view.y, gnuplot_text(view.table->keyword));
}

void plot(const PlotOptions& options, const Context& context) {
    image_form_of(options.out);
    const ModelFile model = read_model(options.file);
    for (const std::string& line : model.damage) {
        warn(fmt::format("{}: {}", options.file, printable_line(line)));
    }
    const TableView view = view_of(table_named(*model.store, options), options.table, options.axes, options.held);
    run_gnuplot(options.out, plot_width, plot_height,
                options.kind == "curves" ? curves_script(view, options.curves) : heatmap_script(view));
    context.print(fmt::format("{}: {}\n", options.out, printable_line(title_of(view))));
}

}  // namespace

void add_plot(CLI::App& app, Context& context) {
    CLI::App* plot_app = app.add_subcommand("plot", "Draw a table as curves or as a heat map (needs gnuplot)");
    const auto options = std::make_shared<PlotOptions>();
    plot_app->add_option("file", options->file, "KZB file")->required()->type_name("FILE");
    plot_app->add_option("table", options->table, "Table as CATEGORY/KEY")->required()->type_name("TABLE");
    plot_app->add_option("--out,-o", options->out, "Image to write, .png or .svg")->required()->type_name("IMAGE");
    plot_app->add_option("--axes", options->axes, "Axes drawn, from 1: X, or X,Y (default 1,2)")->type_name("X[,Y]");
    plot_app->add_option("--at", options->held, "Hold an axis at a value or at a node by index from 0 (default: #0)")
        ->type_name("AXIS=VALUE|AXIS=#INDEX")
        ->allow_extra_args(false);  // one per option: a file name may follow
    plot_app->add_option("--kind", options->kind, "Kind of plot (default curves)")
        ->check(CLI::IsMember({"curves", "heatmap"}));
    plot_app->add_option("--curves", options->curves, "Most curves to draw (default 12)")->check(CLI::Range(1, 1000));
    plot_app->callback([options, &context] { context.action = [options, &context] { plot(*options, context); }; });
}

}  // namespace kzb::tool
