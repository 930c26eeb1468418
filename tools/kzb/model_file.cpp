#include "kzb/model_file.h"

#include <cerrno>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/library_noise.h"
#include "kzb/older_text.h"
#include "kzb/regular_file.h"
#include "store/messages.h"

namespace kzb::tool {

namespace {

constexpr std::string_view file_head = "$DORN-KZ";

[[noreturn]] void unreadable(const std::string& path, std::string_view why) {
    throw Failure(exit_file, fmt::format("{}: {}", path.empty() ? "\"\"" : path, why));
}

void find_unread_tables(const KZB_STORE& store, std::vector<std::string>& damage) {
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            if (table.loaded != 1 && table.file_position != 0) {
                damage.push_back(
                    fmt::format("table {}/{}: the values could not be read", category.name, table.keyword));
            }
        }
    }
}

}  // namespace

std::string_view motor_name(int motor_type) {
    switch (motor_type) {
        case 10000:
            return "PMSM";
        case 10001:
        case 10002:
        case 10003:
            return "2-PhaseStepping";
        case 10004:
            return "LinearSolenoid";
        case 10005:
            return "LinearSynchronous";
        case 10006:
            return "IM";
        case 10007:
            return "WFSM";
        case 10008:
            return "Generic";
        case 10010:
        case 10011:
        case 10012:
            return "SR";
        default:
            return "unknown";
    }
}

ModelFile read_model(const std::string& path) {
    ModelFile model;
    model.has_head = start_of_regular_file(path, file_head.size(), "a KZB file") == file_head;
    model.store = open_store();
    KZB_STORE* const store = model.store.get();

    const OlderText form(path);
    LibraryNoise noise;
    errno = 0;
    const int failed = kzb_reader(path.c_str(), store);
    const int reading_error = kzb_has_error(store);
    if (failed == 0) {
        kzb_set_application("ALL", "", store);
    }
    const int error = kzb_has_error(store);
    std::vector<std::string> said = noise.lines();
    // Of a file of the older layout this is true and nothing to warn of.
    std::erase_if(said, [](const std::string& line) { return line.find("old formats files") != std::string::npos; });

    if (failed != 0) {
        const std::string cause = reading_error != 0 ? error_text(reading_error)
                                  : said.empty()     ? "it is broken or ends too early"
                                                     : fmt::format("{}", fmt::join(said, "; "));
        const std::string_view expected = model.has_head
                                              ? "a whole file of a known form"
                                              : "\"$DORN-KZ\" at its start or a whole file of the older layout";
        unreadable(path, fmt::format("not a readable KZB file: {}, expected {}", cause, expected));
    }
    if (!model.has_head && !kzb_has_category("control", store)) {
        unreadable(path, "not a KZB file: expected \"$DORN-KZ\" at its start, or the sections of the older layout");
    }
    for (std::string& line : said) {
        (tells_no_loss(line) ? model.notes : model.damage).push_back(std::move(line));
    }
    if (error != 0) {
        model.damage.push_back(error_text(error));
    }
    find_unread_tables(*store, model.damage);
    return model;
}

}  // namespace kzb::tool
