#include <boost/make_shared.hpp>
#include <map>

#include "circuit/generic/generic_circuit.h"
#include "store/record_list.h"

namespace kzb {
namespace {

// Terminal types of the file; any other is a free node.
constexpr int file_type_source = 1;
constexpr int file_type_ground = 2;

// The input port of a terminal that stands in the list of sources exactly once, else 0.
int port_of(const std::multimap<int, int>& ports, int terminal_id) {
    return ports.count(terminal_id) == 1 ? ports.find(terminal_id)->second : 0;
}

}  // namespace

void KZTerminalList::read(const KZB_STORE& store) {
    std::multimap<int, int> ports;
    for (const Record& record : records_of(store, "input_port_list;source")) {
        ports.emplace(record.integer("terminal_id"), record.integer("id"));
    }
    for (const Record& record : records_of(store, "terminal_list;terminal")) {
        auto terminal = boost::make_shared<KZCircuitTerminal>();
        terminal->id = record.integer("id");
        terminal->name = record.text("name");
        const int type = record.integer("type");
        if (type == file_type_source) {
            terminal->type = terminal_voltage_source;
            terminal->port = port_of(ports, terminal->id);
            sources.push_back(static_cast<int>(all.size()));
        } else if (type == file_type_ground) {
            terminal->type = terminal_ground;
        }
        by_id_.add(terminal->id, all.size());
        all.push_back(std::move(terminal));
    }
}

boost::shared_ptr<KZCircuitTerminal> KZTerminalList::find(int id) const {
    const std::ptrdiff_t place = by_id_.find(id);
    return place < 0 ? nullptr : all[static_cast<std::size_t>(place)];
}

bool KZTerminalList::has_type(int id, int type) const {
    const std::ptrdiff_t place = by_id_.find(id);
    return place >= 0 && all[static_cast<std::size_t>(place)]->type == type;
}

}  // namespace kzb
