// The networks that a pattern number stands for.
#include "circuit/winding_network.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

struct Expected {
    int pattern;
    int port_count;
    std::size_t terminals;
    std::vector<std::pair<int, int>> elements;
};

const std::vector<Expected> patterns = {
    {0, 3, 4, {{1, 4}, {2, 4}, {3, 4}}},
    {1, 3, 3, {{1, 2}, {2, 3}, {3, 1}}},
    {2, 3, 4, {{1, 4}, {2, 4}, {3, 4}}},
    {3, 3, 3, {{1, 2}, {2, 3}, {3, 1}}},
    {4, 8, 8, {{1, 5}, {2, 6}, {3, 7}, {4, 8}}},
    {5, 4, 4, {{1, 3}, {2, 4}}},
    {6, 6, 6, {{1, 4}, {2, 5}, {3, 6}}},
    {7, 2, 2, {{1, 2}}},
    {8, 6, 6, {{1, 4}, {2, 5}, {3, 6}}},
    {9, 8, 8, {{1, 5}, {2, 6}, {3, 7}, {4, 8}}},
    {10, 10, 10, {{1, 6}, {2, 7}, {3, 8}, {4, 9}, {5, 10}}},
    {11, 3, 4, {{1, 4}, {2, 4}, {3, 4}}},
    {12, 4, 4, {{1, 4}, {2, 4}, {3, 4}, {4, 4}}},
    {13, 4, 6, {{1, 5}, {2, 5}, {3, 5}, {4, 6}}},
    {14, 4, 5, {{1, 2}, {2, 3}, {3, 1}, {4, 5}}},
};

TEST(WindingNetwork, every_pattern_has_its_ports_terminals_and_branches) {
    for (const Expected& expected : patterns) {
        SCOPED_TRACE(expected.pattern);
        kzb::WindingNetwork network;
        network.build(expected.pattern, 0.5, 7.0);
        EXPECT_EQ(network.pattern, expected.pattern);
        EXPECT_EQ(network.port_count, expected.port_count);
        ASSERT_EQ(network.terminals.size(), expected.terminals);
        ASSERT_EQ(network.elements.size(), expected.elements.size());
        for (std::size_t t = 0; t < expected.terminals; ++t) {
            EXPECT_EQ(network.terminals[t]->id, static_cast<int>(t) + 1);
        }
        for (std::size_t e = 0; e < expected.elements.size(); ++e) {
            const kzb::KZelement& element = *network.elements[e];
            EXPECT_EQ(element.id, static_cast<int>(e) + 1);
            EXPECT_EQ(element.from_terminal, expected.elements[e].first);
            EXPECT_EQ(element.to_terminal, expected.elements[e].second);
            EXPECT_EQ(element.kind, 1);
            EXPECT_EQ(element.coil_index, element.id);
            EXPECT_FALSE(element.plain_resistance);
        }
    }
}

TEST(WindingNetwork, only_the_field_winding_has_the_second_resistance) {
    for (const Expected& expected : patterns) {
        SCOPED_TRACE(expected.pattern);
        kzb::WindingNetwork network;
        network.build(expected.pattern, 0.5, 7.0);
        const bool with_field = expected.pattern == 13 || expected.pattern == 14;
        for (const auto& element : network.elements) {
            EXPECT_EQ(element->resistance.value(), with_field && element->id == 4 ? 7.0 : 0.5);
        }
    }
}

TEST(WindingNetwork, only_the_far_end_of_a_field_winding_is_a_base_potential) {
    for (const Expected& expected : patterns) {
        SCOPED_TRACE(expected.pattern);
        kzb::WindingNetwork network;
        network.build(expected.pattern, 0.5, 7.0);
        const int base = expected.pattern == 13 ? 6 : expected.pattern == 14 ? 5 : 0;
        for (const auto& terminal : network.terminals) {
            EXPECT_EQ(terminal->kind, terminal->id == base ? 2 : 3);
            EXPECT_EQ(terminal->potential, 0.0);
            EXPECT_EQ(terminal->injected_current, 0.0);
        }
    }
}

TEST(WindingNetwork, unknown_pattern_empties_the_lists_and_keeps_the_port_count) {
    for (const int unknown : {-1, 15, 1000, -2147483647}) {
        kzb::WindingNetwork network;
        network.build(4, 1.0, 0.0);
        network.build(unknown, 1.0, 0.0);
        EXPECT_TRUE(network.elements.empty());
        EXPECT_TRUE(network.terminals.empty());
        EXPECT_EQ(network.port_count, 8);
        EXPECT_EQ(network.pattern, unknown);
    }
}

TEST(WindingNetwork, building_anew_starts_from_fresh_records) {
    kzb::WindingNetwork network;
    network.build(13, 1.0, 2.0);
    const boost::shared_ptr<kzb::KZelement> held = network.elements[0];
    network.elements[1]->kind = -1;
    network.elements[1]->plain_resistance = 9.0;
    network.terminals[0]->potential = 12.0;
    network.terminals[0]->injected_current = 3.0;
    network.build(0, 4.0, 0.0);
    EXPECT_EQ(network.elements.size(), 3U);
    EXPECT_EQ(network.elements[1]->kind, 1);
    EXPECT_FALSE(network.elements[1]->plain_resistance);
    EXPECT_EQ(network.terminals[0]->potential, 0.0);
    EXPECT_EQ(network.terminals[0]->injected_current, 0.0);
    // A record that someone else holds isn't written over.
    EXPECT_NE(held, network.elements[0]);
    EXPECT_EQ(held->resistance.value(), 1.0);
}

TEST(WindingNetwork, resistance_is_found_by_coil_index) {
    kzb::WindingNetwork network;
    network.build(13, 0.5, 7.0);
    EXPECT_EQ(network.resistance_of(1), 0.5);
    EXPECT_EQ(network.resistance_of(4), 7.0);
    network.elements[2]->resistance = boost::none;
    EXPECT_EQ(network.resistance_of(3), 0.0);
}

TEST(WindingNetwork, resistance_of_an_absent_coil_is_zero) {
    kzb::WindingNetwork network;
    EXPECT_EQ(network.resistance_of(1), 0.0);
    network.build(0, 0.5, 0.0);
    for (const int index : {-1, 0, 4, 2147483647}) {
        EXPECT_EQ(network.resistance_of(index), 0.0);
    }
}

}  // namespace
