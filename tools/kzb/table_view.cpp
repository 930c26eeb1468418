#include "kzb/table_view.h"

#include <algorithm>
#include <charconv>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/text.h"
#include "table/lookup.h"

namespace kzb::tool {

namespace {

[[noreturn]] void wrong(const std::string& text) {
    throw Failure(exit_usage, text);
}

std::optional<int> whole_number(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional<int>(value) : std::nullopt;
}

int axis_number(std::string_view text, const TableView& view, std::string_view option) {
    const std::optional<int> axis = whole_number(text);
    if (!axis || *axis < 1 || *axis > view.table->dim) {
        wrong(fmt::format("{}: \"{}\" is no axis of {}, expected 1 to {}", option, printable_line(text), view.name,
                          view.table->dim));
    }
    return *axis;
}

void choose_axes(TableView& view, std::string_view axes) {
    if (axes.empty()) {
        view.x = 1;
        if (view.table->dim > 1) {
            view.y = 2;
        }
        return;
    }
    const std::size_t comma = axes.find(',');
    view.x = axis_number(axes.substr(0, comma), view, "--axes");
    if (comma != std::string_view::npos) {
        view.y = axis_number(axes.substr(comma + 1), view, "--axes");
        if (*view.y == view.x) {
            wrong(fmt::format("--axes: axis {} twice, expected two different axes", view.x));
        }
    }
}

void hold(TableView& view, std::string_view text, std::vector<bool>& held) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        wrong(fmt::format("--at: \"{}\", expected AXIS=VALUE or AXIS=#INDEX", printable_line(text)));
    }
    const int axis = axis_number(text.substr(0, equals), view, "--at");
    if (axis == view.x || (view.y && axis == *view.y)) {
        wrong(fmt::format("--at: axis {} is one of the axes drawn", axis));
    }
    if (held[static_cast<std::size_t>(axis - 1)]) {
        wrong(fmt::format("--at: axis {} twice, expected one value for each axis", axis));
    }
    held[static_cast<std::size_t>(axis - 1)] = true;
    std::string_view value = text.substr(equals + 1);
    double& fixed = view.fixed[static_cast<std::size_t>(axis - 1)];
    const int count = view.nodes(axis);
    if (!value.empty() && value.front() == '#') {
        value.remove_prefix(1);
        const std::optional<int> index = whole_number(value);
        if (!index || *index < 0 || *index >= count) {
            wrong(fmt::format("--at: axis {} has no node #{}, expected #0 to #{}", axis, printable_line(value),
                              count - 1));
        }
        fixed = view.node(axis, *index);
        return;
    }
    const std::optional<double> number = finite_number(value);
    if (!number) {
        wrong(fmt::format("--at: \"{}\" is not a number", printable_line(value)));
    }
    const double first = view.node(axis, 0);
    const double last = view.node(axis, count - 1);
    const bool cyclic = view.table->cyclic[static_cast<std::size_t>(axis - 1)] > 0;
    if (!cyclic && (*number < std::min(first, last) || *number > std::max(first, last))) {
        wrong(fmt::format("--at: {} is outside axis {}, expected {} to {}", *number, axis, first, last));
    }
    fixed = *number;
}

}  // namespace

double TableView::node(int axis, int index) const {
    return table->axes[static_cast<std::size_t>(axis - 1)][static_cast<std::size_t>(index)];
}

double TableView::at(int x_index, int y_index) const {
    std::vector<double> point = fixed;
    point[static_cast<std::size_t>(x - 1)] = node(x, x_index);
    if (y) {
        point[static_cast<std::size_t>(*y - 1)] = node(*y, y_index);
    }
    // Where every coordinate is a node the stored value is meant, also on an axis with a single node.
    std::vector<int> indices(point.size());
    bool on_nodes = true;
    for (std::size_t axis = 0; axis < point.size(); ++axis) {
        const double* const first = table->axes[axis].data();
        const double* const last = first + table->axes[axis].size();
        const double* const found = std::find(first, last, point[axis]);
        on_nodes = on_nodes && found != last;
        indices[axis] = static_cast<int>(found - first);
    }
    if (on_nodes) {
        return table_value_at(*table, indices.data());
    }
    double result = KZB_NO_VALUE;
    double timing[timing_slots] = {};
    table_lookup(Scheme::linear, table, point.data(), result, timing, LookupSwitches{});
    return result;
}

TableView view_of(const KZB_TABLE& table, const std::string& name, const std::string& axes,
                  const std::vector<std::string>& held) {
    TableView view;
    view.table = &table;
    view.name = name;
    for (std::size_t axis = 0; axis < table.axes.size(); ++axis) {
        if (!table.axes[axis] || table.axes[axis].size() == 0) {
            throw Failure(exit_file, fmt::format("{}: axis {} has no nodes, it cannot be drawn", name, axis + 1));
        }
        view.fixed.push_back(table.axes[axis][0]);
    }
    if (table.dim < 1 || !table.values) {
        throw Failure(exit_file, fmt::format("{}: has no values, it cannot be drawn", name));
    }
    choose_axes(view, axes);
    std::vector<bool> axes_held(view.fixed.size());
    for (const std::string& text : held) {
        hold(view, text, axes_held);
    }
    return view;
}

}  // namespace kzb::tool
