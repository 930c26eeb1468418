#include "circuit/winding_network.h"

#include <boost/make_shared.hpp>

namespace kzb {
namespace {

struct Branch {
    int from;
    int to;
};

struct Pattern {
    int port_count;
    int terminal_count;
    int element_count;
    Branch branches[5];
    int base_terminal;  // the terminal that holds the base potential, 0 for none; element 4 then has the second
                        // resistance
};

// clang-format off
constexpr Pattern star            = {3, 4, 3, {{1, 4}, {2, 4}, {3, 4}}, 0};
constexpr Pattern delta           = {3, 3, 3, {{1, 2}, {2, 3}, {3, 1}}, 0};
constexpr Pattern separate_four   = {8, 8, 4, {{1, 5}, {2, 6}, {3, 7}, {4, 8}}, 0};
constexpr Pattern separate_two    = {4, 4, 2, {{1, 3}, {2, 4}}, 0};
constexpr Pattern separate_three  = {6, 6, 3, {{1, 4}, {2, 5}, {3, 6}}, 0};
constexpr Pattern single          = {2, 2, 1, {{1, 2}}, 0};
constexpr Pattern separate_five   = {10, 10, 5, {{1, 6}, {2, 7}, {3, 8}, {4, 9}, {5, 10}}, 0};
// The fourth element has both ends on the star point: the induction model's frame, which has no terminal equations.
constexpr Pattern four_currents   = {4, 4, 4, {{1, 4}, {2, 4}, {3, 4}, {4, 4}}, 0};
constexpr Pattern star_and_field  = {4, 6, 4, {{1, 5}, {2, 5}, {3, 5}, {4, 6}}, 6};
constexpr Pattern delta_and_field = {4, 5, 4, {{1, 2}, {2, 3}, {3, 1}, {4, 5}}, 5};
// clang-format on

const Pattern* pattern_of(int number) {
    static constexpr const Pattern* table[] = {&star,           &delta,          &star,           &delta,
                                               &separate_four,  &separate_two,   &separate_three, &single,
                                               &separate_three, &separate_four,  &separate_five,  &star,
                                               &four_currents,  &star_and_field, &delta_and_field};
    constexpr int count = static_cast<int>(sizeof table / sizeof table[0]);
    return number >= 0 && number < count ? table[number] : nullptr;
}

// Gives `list` `count` records in their initial state; one that nobody else holds is used again.
template <class Record>
void renew(std::vector<boost::shared_ptr<Record>>& list, int count) {
    list.resize(static_cast<std::size_t>(count));
    for (boost::shared_ptr<Record>& record : list) {
        if (record && record.use_count() == 1) {
            *record = Record{};
        } else {
            record = boost::make_shared<Record>();
        }
    }
}

}  // namespace

void WindingNetwork::build(int pattern_number, double r, double r2) {
    pattern = pattern_number;
    const Pattern* const shape = pattern_of(pattern_number);
    if (shape == nullptr) {
        elements.clear();
        terminals.clear();
        return;
    }
    try {
        renew(terminals, shape->terminal_count);
        renew(elements, shape->element_count);
    } catch (...) {  // half a network isn't one that can be solved
        elements.clear();
        terminals.clear();
        port_count = 0;
        throw;
    }
    port_count = shape->port_count;
    for (int t = 0; t < shape->terminal_count; ++t) {
        KZterminal& terminal = *terminals[static_cast<std::size_t>(t)];
        terminal.id = t + 1;
        terminal.kind = terminal.id == shape->base_terminal ? terminal_base : terminal_free;
    }
    for (int e = 0; e < shape->element_count; ++e) {
        KZelement& element = *elements[static_cast<std::size_t>(e)];
        element.id = e + 1;
        element.from_terminal = shape->branches[e].from;
        element.to_terminal = shape->branches[e].to;
        element.kind = element_coil;
        element.coil_index = element.id;
        element.resistance = shape->base_terminal != 0 && element.id == 4 ? r2 : r;
    }
}

double WindingNetwork::resistance_of(int index) const {
    for (const boost::shared_ptr<KZelement>& element : elements) {
        if (element->coil_index == index) {
            return element->resistance.value_or(0.0);
        }
    }
    return 0.0;
}

}  // namespace kzb
