#include "store/measured/loss_axis_description.h"

#include <limits>

#include "store/measured/fields.h"
#include "store/subcategory.h"

namespace kzb {

namespace {

constexpr const char* motion_path = "motion_condition_list;motion_condition";
constexpr const char* coil_set_path = "element_set_list;coil_set";
constexpr const char* axis_path = "ironloss;axis_list;axis";
constexpr const char* input_path = "input_port_list;user_input";

constexpr int no_motion = 90026;
constexpr int no_coil_set = 90027;
constexpr int no_phase_of_coil_set = 90028;
constexpr int illegal_format = 90029;

enum ReferenceType { to_input = 0, to_coil_set = 1, to_motion = 2 };
enum PhysicalType { of_input = 0, of_current = 1, of_phase = 2, of_speed = 3 };

// name="value": the text in front of the first "=" or quote, and the next piece that is not blank.
struct Field {
    std::string_view name;
    std::string_view value;
};

Field split_field(std::string_view text) {
    constexpr std::string_view marks = "=\"";
    Field field;
    std::string_view rest = trimmed(text);
    while (field.value.empty()) {
        const std::size_t start = rest.find_first_not_of(marks);
        if (start == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(start);
        const std::string_view piece = rest.substr(0, rest.find_first_of(marks));
        rest.remove_prefix(piece.size());
        if (field.name.empty()) {
            field.name = trimmed(piece);
        } else if (!trimmed(piece).empty()) {
            field.value = piece;
        }
    }
    return field;
}

// The four fields of a description.
struct Description {
    std::string_view reference_name;
    std::string_view type;
    int index = -1;
    int periodic = 0;
};

// False for an int that is none.
bool read_description(std::string_view line, Description& description) {
    CommaTokens tokens(line.substr(1));
    std::string_view token;
    while (tokens.take(token)) {
        const Field field = split_field(token);
        if (field.value.empty()) {
            continue;
        }
        bool sound = true;
        if (field.name == "reference_name") {
            description.reference_name = field.value;
        } else if (field.name == "type") {
            description.type = field.value;
        } else if (field.name == "index") {
            sound = whole_int(field.value, description.index);
        } else if (field.name == "periodic") {
            sound = whole_int(field.value, description.periodic);
        }
        if (!sound) {
            return false;
        }
    }
    return true;
}

// Numbers of list entries are counted from 0 without gaps.
std::string entry_name(const char* path, int entry) {
    const int indices[2] = {0, entry};
    return subcategory_name(path, indices);
}

int entry_count(const KZB_STORE& store, const char* path) {
    const int indices[2] = {0, 0};
    return static_cast<int>(subcategory_indices(store, path, indices).size());
}

}  // namespace

int LossAxisDescriptions::read(std::string_view line) {
    Description description;
    if (!read_description(line, description) || description.index == std::numeric_limits<int>::max()) {
        return illegal_format;
    }
    if (description.reference_name.empty() || description.type.empty() || description.index < 0) {
        return 0;
    }
    LossAxis axis;
    axis.index = description.index;
    axis.periodic = description.periodic;
    const int error = resolve(description.type, description.reference_name, axis);
    if (error == 0) {
        axes_.push_back(axis);
    }
    return error;
}

int LossAxisDescriptions::resolve(std::string_view type, std::string_view name, LossAxis& axis) {
    if (type == "Speed") {
        axis.reference_type = to_motion;
        axis.physical_type = of_speed;
        const Entry* motion = find(motions_, motions_listed_, motion_path, name);
        axis.reference_id = motion == nullptr ? -1 : motion->id;
        return motion == nullptr ? no_motion : 0;
    }
    if (type == "Current" || type == "Phase") {
        axis.reference_type = to_coil_set;
        axis.physical_type = type == "Phase" ? of_phase : of_current;
        return resolve_coil_set(name, axis);
    }
    axis.reference_type = to_input;
    axis.physical_type = of_input;
    return 0;
}

int LossAxisDescriptions::resolve_coil_set(std::string_view name, LossAxis& axis) {
    const Entry* set = find(coil_sets_, coil_sets_listed_, coil_set_path, name);
    if (set == nullptr) {
        return no_coil_set;
    }
    axis.reference_id = set->id;
    // A set without phases of its own, or one that follows another set, has no current phase.
    const bool has_phase = set->type != 0 && set->reference < 1;
    return axis.physical_type == of_phase && !has_phase ? no_phase_of_coil_set : 0;
}

const LossAxisDescriptions::Entry* LossAxisDescriptions::find(Entries& entries, bool& listed, const char* path,
                                                              std::string_view name) {
    if (!listed) {
        entries = entries_of(path);
        listed = true;
    }
    const auto at = entries.find(name);
    return at == entries.end() ? nullptr : &at->second;
}

LossAxisDescriptions::Entries LossAxisDescriptions::entries_of(const char* path) const {
    Entries entries;
    const int count = entry_count(store_, path);
    for (int i = 0; i < count; ++i) {
        const std::string category = entry_name(path, i);
        if (const char* name = get_string(store_, category, "name")) {
            entries.emplace(name, Entry{get_int(store_, category, "id"), get_int(store_, category, "type"),
                                        get_int(store_, category, "ref_coil_set_id")});
        }
    }
    return entries;
}

void LossAxisDescriptions::apply_flags(KZB_TABLE& table) const {
    for (const LossAxis& axis : axes_) {
        table_set_cyclic_flag(&table, axis.index + 1, axis.periodic);
    }
}

IntEdits LossAxisDescriptions::edits(const KZB_STORE& store) const {
    IntEdits edits;
    int inputs = entry_count(store, input_path);
    for (std::size_t n = 0; n < axes_.size(); ++n) {
        const LossAxis& axis = axes_[n];
        const int axis_no = axis.index + 1;
        const int indices[3] = {0, 0, static_cast<int>(n)};
        const std::string category = subcategory_name(axis_path, indices);
        edits.add(category, "axis_no", axis_no);
        edits.add(category, "reference_id", axis.reference_id);
        edits.add(category, "reference_type", axis.reference_type);
        edits.add(category, "physical_type", axis.physical_type);
        if (axis.physical_type != of_input) {
            continue;
        }
        const std::string input = entry_name(input_path, inputs);
        // Where the numbers of the ports have gaps, the one of that number is there already and the count stays.
        const bool present = has_category(store, input);
        edits.add(input, "id", inputs + 1);
        edits.add(input, "loss_axis_no", axis_no);
        inputs += present ? 0 : 1;
    }
    return edits;
}

}  // namespace kzb
