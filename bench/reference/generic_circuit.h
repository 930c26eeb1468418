// The circuit of a generic model: element types, branches between terminals, terminals, in file order.
//
// Every look-up by id or name walks the list from the front and takes the first match.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/reference/generic_subcategory.h"

namespace kzb_reference::generic {

struct LineElementType {
    virtual ~LineElementType() = default;
    virtual double get_parameter(const std::string&) const { return 0.0; }
    virtual double turn_ratio() const { return 1.0; }
    virtual int get_int_parameter(const std::string&) const { return 0; }
    virtual void set_parameter(const std::string&, double) {}
    virtual void update() {}
    virtual int message() const { return 0; }
    virtual double temperature_factor(double) const { return 1.0; }

    int id = 0;
    int type = -100;
    bool temperature_correction = false;
    std::string name;
};

struct FEMCoil : LineElementType {
    double get_parameter(const std::string& key) const override;
    double turn_ratio() const override { return turns2 / turns; }
    int get_int_parameter(const std::string& key) const override { return key == "group_id" ? group_id : 0; }
    void set_parameter(const std::string& key, double value) override;
    void update() override { previous_flux = flux; }
    int message() const override { return group_id < 1 ? 180032 : 0; }
    double temperature_factor(double T) const override {
        return (T - base_temperature) * (coef_temperature * 1e-6) + 1.0;
    }
    double scaled_flux() const { return turn_ratio() * coef_flux * flux; }
    double scaled_inductance(int key) const;

    double resistance = 0.0;
    int group_id = 0;
    std::map<int, double> inductances;
    double flux = 0.0;
    double previous_flux = 0.0;
    double turns = 1.0;
    double turns2 = 1.0;
    double coef_flux = 1.0;
    double base_temperature = 293.15;
    double coef_temperature = 3810.0;
    std::vector<int> interacted;
};

// A lumped resistor (-1), capacitor (-2) or inductor (-3) with its one number under its own key.
struct ConstantElement : LineElementType {
    double get_parameter(const std::string& name_of_value) const override { return name_of_value == key ? value : 0.0; }
    void set_parameter(const std::string& name_of_value, double number) override {
        if (name_of_value == key) {
            value = number;
        }
    }
    std::string key;
    double value = 0.0;
};

struct Terminal {
    bool unknown() const { return !switch_on || type == 0 || type == 3; }

    int id = 0;
    int equation = -1;
    int type = 0;  // 0 free node, 1 voltage source, 2 ground, 3 current source
    bool switch_on = true;
    int port = 0;
    double potential = 0.0;
    double previous_potential = 0.0;
    double source_current = 0.0;
    std::string name;
};

struct Branch {
    double temperature_factor() const {
        return element_type->temperature_correction ? element_type->temperature_factor(temperature) : 1.0;
    }

    int id = 0;
    int is_probe = 0;
    int equation = -1;
    std::shared_ptr<Terminal> first;
    std::shared_ptr<Terminal> second;
    std::shared_ptr<LineElementType> element_type;
    double current = 0.0;
    double previous_current = 0.0;
    double temperature = 293.15;
};

struct Circuit {
    void read(const Store& store);
    std::shared_ptr<Branch> branch(int id) const;
    std::shared_ptr<Branch> branch_of_element_type(int id) const;
    std::shared_ptr<Terminal> terminal(int id) const;
    std::shared_ptr<FEMCoil> fem_coil_at(int position) const;
    double branch_current(int id) const;
    double first_terminal_potential(int id) const;
    double branch_temperature(int id) const;
    void set_branch_current(int id, double value) const;
    int set_branch_temperature(int id, double value) const;
    double get_element_parameter(int id, const std::string& key) const;
    int set_element_parameter(int id, const std::string& key, double value) const;
    double effective_resistance(int id) const;
    void set_source_type(int terminal_id, bool is_current) const;
    bool is_current_source(int terminal_id) const;
    void set_switches(const std::vector<bool>& bits) const;
    void set_inputs(const std::vector<double>& values) const;
    bool has_base_potential() const;
    void set_temperature_correction(bool flag) const;
    void update() const;

    std::vector<std::shared_ptr<LineElementType>> element_types;
    std::vector<int> fem_positions;
    std::vector<std::shared_ptr<Branch>> branches;
    std::vector<std::shared_ptr<Terminal>> terminals;
    std::vector<int> source_positions;
};

}  // namespace kzb_reference::generic
