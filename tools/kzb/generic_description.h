// The description of a generic model: a circuit, its motions, what feeds the axes of its tables, and where the tables'
// values stand. Read from TOML; docs/generic-models.md lists the keys.
//
// Ids count from 1 in the order of the description; a coil's id is its group.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kzb::tool {

struct CorrectionText {
    std::string expression;  // empty: none
    std::string variable;
};

struct TerminalText {
    std::string name;
    int type = 0;  // 0 node, 1 source, 2 ground
    int port = 0;  // of a source
    std::string place;
};

enum class PartKind { coil, resistor, inductor, capacitor, probe };
inline constexpr int part_kinds = 5;

struct PartText {
    PartKind kind = PartKind::resistor;
    int id = 0;
    std::string name;
    int from = 0;  // terminal ids
    int to = 0;
    double value = 0.0;  // Ohm, H, F
    int port = 0;        // of its kind; 0: none
    std::string place;

    // Of a coil.
    double turns = 1.0;
    std::optional<double> turns2;
    double flux_factor = 1.0;
    double base_temperature = 293.15;         // K
    double temperature_coefficient = 3810.0;  // ppm/K
    int interacted = 0;
    CorrectionText correction;  // of the flux
};

struct MotionText {
    std::string name;
    bool rotation = false;
    bool periodic = false;
    double range = 0.0;  // period or upper limit; m or degrees
    std::optional<double> force_factor;
    CorrectionText correction;  // of the force
    std::string place;
};

struct CoilSetText {
    std::string name;
    std::vector<std::size_t> coils;  // places among the parts
    std::vector<double> phases;      // degrees
    int motion = 0;                  // 0: no motion of its own
    int reference = 0;               // set that it refers to, 0: none
    int poles = 0;
    double phase_initial = 0.0;  // degrees
    std::string place;
    bool moving() const { return motion > 0 || reference > 0; }
};

// One column of a CSV file; values are multiplied.
struct ColumnText {
    std::string header;
    double scale = 1.0;
    std::string place;
};

enum class Feed { expression, current, displacement, amplitude, phase };

struct AxisText {
    Feed feed = Feed::current;
    int reference = 0;  // group, motion or coil set
    std::string definition;
    ColumnText column;
    std::optional<double> period;  // cyclic with it
    CorrectionText correction;
    std::string place;
};

struct VariableText {
    std::string name;
    Feed feed = Feed::current;
    int reference = 0;  // 0: the value
    double value = 0.0;
};

struct TableText {
    std::string file;  // empty: no such table
    std::string place;
    std::vector<ColumnText> columns;  // by index of the table
};

struct OutputText {
    std::string name;
    bool fine = false;  // in the second table
    int port = 0;
    ColumnText column;
    std::optional<double> factor;
    CorrectionText correction;
};

enum class LossFeed { input, amplitude, phase, speed };

struct LossAxisText {
    LossFeed feed = LossFeed::input;
    int reference = 0;  // coil set or motion
    ColumnText column;
    std::optional<double> period;
};

struct GenericDescription {
    std::string file;
    std::string title;
    std::string preparer;
    std::map<std::string, double> information;

    std::vector<TerminalText> terminals;
    std::vector<PartText> parts;  // coils first
    std::vector<MotionText> motions;
    std::vector<CoilSetText> coil_sets;
    std::vector<AxisText> axes;
    std::vector<VariableText> variables;
    std::vector<std::pair<std::string, double>> correction_parameters;
    TableText flux;
    TableText force;
    TableText inductance;
    std::vector<OutputText> outputs;
    TableText output_table;  // columns are those of the outputs
    TableText fine_output_table;
    TableText iron_loss;
    std::vector<LossAxisText> loss_axes;

    bool set_form() const { return !coil_sets.empty(); }
    std::vector<std::size_t> coils() const;              // places among the parts
    std::vector<std::size_t> coils_by_index() const;     // in the order of the flux table's last axis
    std::string path_of(const std::string& name) const;  // files count from the folder of the description
};

// Failure(exit_file) with the line for anything that is wrong in the file.
GenericDescription read_generic_description(const std::string& file);

}  // namespace kzb::tool
