// Two passes over the file: the first finds the grid, the second fills the table.
//
// Kept: the end of the file is tested before a line is used, so a last line without line feed is not read.
#include "store/measured/loss_table_file.h"

#include <string_view>
#include <utility>
#include <vector>

#include "store/measured/loss_axis_description.h"
#include "store/measured/loss_grid.h"
#include "store/measured/loss_point.h"
#include "store/measured/text_lines.h"
#include "store/motor_type.h"

namespace kzb {

namespace {

constexpr std::size_t line_limit = 1023;  // a longer line counts as several
constexpr std::size_t fixed_form_axes = 5;

constexpr int not_opened = 90015;
constexpr int wrong_axis_count = 90023;
constexpr int points_missing = 90024;
constexpr int not_for_this_model = 90025;
constexpr int illegal_format = 90029;
constexpr int not_a_number = 90031;

struct Target {
    const char* category;
    const char* key;
    bool described;  // "#" lines describe the axes; else five axes
};

// Walks the lines that hold something: calls `described` with each "#" line of the described form and `point` with the
// numbers of each data line, until one of them returns an error. Returns that error, or 0 at the end.
template <class Described, class Point>
int walk(TextLines& lines, bool has_descriptions, Described&& described, Point&& point) {
    std::vector<double> numbers;
    while (lines.next(line_limit)) {
        const std::string_view line = lines.line();
        if (line.starts_with('$')) {
            continue;
        }
        if (lines.ended()) {
            break;
        }
        int error = 0;
        if (has_descriptions && line.starts_with('#')) {
            error = described(line);
        } else if (!read_loss_point(line, numbers)) {
            error = not_a_number;
        } else if (!numbers.empty()) {
            error = point(numbers);
        }
        if (error != 0) {
            return error;
        }
    }
    return lines.failed() ? not_opened : 0;
}

// Pass one.
int find_grid(TextLines& lines, bool has_descriptions, LossAxisDescriptions& descriptions, LossGrid& grid) {
    if (!has_descriptions) {
        grid.set_axis_count(fixed_form_axes);
    }
    const int error = walk(
        lines, has_descriptions, [&](std::string_view line) { return descriptions.read(line); },
        [&](const std::vector<double>& numbers) {
            if (grid.axis_count() == 0) {
                grid.set_axis_count(numbers.size() - 1);  // the first point of the described form
            }
            if (grid.axis_count() == 0 || numbers.size() - 1 != grid.axis_count()) {
                return wrong_axis_count;
            }
            grid.add_point(numbers.data());
            return 0;
        });
    if (error != 0) {
        return error;
    }
    if (!grid.is_full()) {
        return points_missing;
    }
    return grid.is_finite() ? 0 : illegal_format;
}

// An empty table on the grid; false when it cannot be made.
bool create_on(const LossGrid& grid, std::size_t axes, KZB_TABLE& table) {
    std::vector<int> sizes;
    for (std::size_t a = 0; a < axes; ++a) {
        sizes.push_back(static_cast<int>(grid.axis(a).size()));
    }
    if (table_create(table, static_cast<int>(axes), sizes.data()) != 0) {
        return false;
    }
    for (std::size_t a = 0; a < axes; ++a) {
        for (int i = 0; i < sizes[a]; ++i) {
            table_set_axis_value(&table, static_cast<int>(a) + 1, i, grid.axis(a)[static_cast<std::size_t>(i)]);
        }
    }
    return true;
}

// Pass two. Of two values for one point the later counts.
int fill(TextLines& lines, bool has_descriptions, const LossGrid& grid, KZB_TABLE& table) {
    std::vector<int> at(table.sizes.size());
    lines.rewind();
    return walk(
        lines, has_descriptions, [](std::string_view) { return 0; },
        [&](const std::vector<double>& numbers) {
            if (numbers.size() != at.size() + 1) {
                return illegal_format;  // the file has changed
            }
            for (std::size_t a = 0; a < at.size(); ++a) {
                at[a] = grid.index_of(a, numbers[a]);
                if (at[a] < 0) {
                    return illegal_format;
                }
            }
            table_set_value(&table, at.data(), numbers.back());
            return 0;
        });
}

// Puts the table in the place of the one that has its name, or behind the others, and what is said of its axes before
// it. Throws bad_alloc with the store as it was.
void place(KZB_STORE& store, const Target& target, KZB_TABLE&& table, const IntEdits& descriptions) {
    table.keyword = target.key;
    descriptions.apply(store, [&] { require_category(store, target.category)->tables.require(target.key); });
    *find_table(store, target.category, target.key) = std::move(table);
    ++store.revision;
}

int add_table(KZB_STORE& store, const char* path, const Target& target) {
    TextLines lines(path);
    if (!lines.is_open()) {
        return not_opened;
    }
    LossAxisDescriptions descriptions(store);
    LossGrid grid(lines.size());
    if (const int error = find_grid(lines, target.described, descriptions, grid)) {
        return error;
    }
    const std::size_t axes = grid.axis_count();
    grid.sort();
    KZB_TABLE table;
    if (!create_on(grid, axes, table)) {
        return illegal_format;  // more points than a table counts
    }
    if (target.described) {
        descriptions.apply_flags(table);
    } else if (get_int(store, "control", "motor_type") == motor_type::pmsm) {
        table_set_cyclic_flag(&table, 2, 1);  // the current phase
    }
    if (const int error = fill(lines, target.described, grid, table)) {
        return error;
    }
    place(store, target, std::move(table), descriptions.edits(store));
    return 0;
}

int finish(KZB_STORE& store, int error) {
    store.error = error;
    return error == 0 ? 0 : 1;
}

}  // namespace

int add_loss_table(KZB_STORE& store, const char* path) {
    store.error = 0;
    if (has_application(store, "PMSM", "Harmonic") || has_application(store, "IM", "")) {
        return finish(store, add_table(store, path, {"loss_table", "iron_loss", false}));
    }
    if (has_application(store, "Generic", "")) {
        return finish(store, add_table(store, path, {"ironloss", "table", true}));
    }
    return finish(store, not_for_this_model);
}

int add_copper_loss_table(KZB_STORE& store, const char* path) {
    store.error = 0;
    if (!has_application(store, "PMSM", "Harmonic")) {
        return finish(store, not_for_this_model);
    }
    return finish(store, add_table(store, path, {"equivalent_resistance_table", "copper_loss", false}));
}

}  // namespace kzb
