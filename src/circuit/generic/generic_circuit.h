// KZCircuitForGeneric: the circuit of a generic model as its file states it, and its state.
//
// Element types (what a component is), branches (a component between two terminals), terminals. It computes nothing;
// CircuitSolver reads and writes it. Records are found by id, the first of an id counts.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "circuit/generic/fem_coil.h"
#include "circuit/generic/line_element.h"
#include "store/store.h"

namespace kzb {

// Places of the records in a list by their id.
class FirstById {
  public:
    void add(int id, std::size_t place) { places_.emplace(id, place); }
    // -1 where there is none.
    std::ptrdiff_t find(int id) const {
        const auto at = places_.find(id);
        return at == places_.end() ? -1 : static_cast<std::ptrdiff_t>(at->second);
    }

  private:
    std::unordered_map<int, std::size_t> places_;
};

struct KZElementTypeList {
    void read(const KZB_STORE& store);
    boost::shared_ptr<KZLineElementType> find(int id) const;

    std::vector<boost::shared_ptr<KZLineElementType>> all;
    std::vector<int> fem_coils;  // positions in the file, from 0
    std::vector<int> resistors;
    std::vector<int> inductors;
    std::vector<int> capacitors;

  private:
    FirstById by_id_;
};

struct KZTerminalList {
    void read(const KZB_STORE& store);
    boost::shared_ptr<KZCircuitTerminal> find(int id) const;
    // False where there is no terminal of that id. Shares nothing and so writes no count.
    bool has_type(int id, int type) const;

    std::vector<boost::shared_ptr<KZCircuitTerminal>> all;
    std::vector<int> sources;  // positions in the file, from 0

  private:
    FirstById by_id_;
};

class KZCircuitForGeneric {
  public:
    // Reads the circuit. What makes it unusable is added to `faults`, one text each.
    void read(const KZB_STORE& store, std::vector<std::string>& faults);

    int terminal_count() const { return static_cast<int>(terminals_.all.size()); }
    int branch_count() const { return static_cast<int>(branches_.size()); }
    boost::shared_ptr<KZLineElement> branch_at(int position) const;
    boost::shared_ptr<KZCircuitTerminal> terminal_at(int position) const;
    boost::shared_ptr<KZLineElementType> element_type_at(int position) const;
    const std::vector<boost::shared_ptr<KZLineElement>>& branches() const { return branches_; }
    const std::vector<boost::shared_ptr<KZCircuitTerminal>>& terminals() const { return terminals_.all; }
    const KZElementTypeList& element_types() const { return element_types_; }

    // The first branch whose element type has this id; null where there is none.
    KZLineElement* branch_of_element_type(int id) const;
    std::vector<int> fem_coil_positions() const { return element_types_.fem_coils; }
    // Ids, 0 where no name matches.
    int find_branch_by_element_name(std::string_view name) const;
    int find_terminal_by_name(std::string_view name) const;

    // Of a branch by id; 0.0 where there is none.
    double branch_current(int id) const;
    double first_terminal_potential(int id) const;
    double branch_temperature(int id) const;
    double get_element_parameter(int id, std::string_view key) const;
    double effective_resistance(int id) const;
    void set_branch_current(int id, double value);
    // Values of 0 or below are refused; 1 when the branch exists and takes the value, else 0.
    int set_branch_temperature(int id, double value);
    int set_element_parameter(int id, std::string_view key, double value);

    // Of a source by terminal id.
    void set_source_type(int terminal_id, bool is_current);
    bool is_current_source(int terminal_id) const;

    // One value per source by its port; nothing when the number of values is not that of the sources.
    void set_switches(const std::vector<double>& switches);
    void set_inputs(const std::vector<double>& values);
    // A ground, or a voltage source that is switched on.
    bool has_base_potential() const;
    void set_temperature_correction(bool on);
    // Accepts the step.
    void update();
    std::vector<CircuitMessage> messages() const;

  private:
    void read_branches(const KZB_STORE& store, std::vector<std::string>& faults);
    void check_sources(std::vector<std::string>& faults) const;
    KZLineElement* branch(int id) const;
    bool serves_sources(std::size_t count) const { return count >= 1 && count == terminals_.sources.size(); }

    KZElementTypeList element_types_;
    std::vector<boost::shared_ptr<KZLineElement>> branches_;
    KZTerminalList terminals_;
    FirstById branch_by_id_;
    FirstById branch_by_element_type_;
};

}  // namespace kzb
