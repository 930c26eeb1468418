#include "kzb/build_origin.h"

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "fmt/chrono.h"
#include "fmt/format.h"

namespace kzb::tool {

namespace {

constexpr double file_version = 2.0;

// The day of the build, or that of SOURCE_DATE_EPOCH, in UTC.
std::string creation_date() {
    std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH")) {
        const std::string_view text(epoch);
        std::time_t told = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), told);
        if (error == std::errc() && end == text.data() + text.size()) {
            now = told;
        }
    }
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(now));
}

}  // namespace

void put_version(KZB_STORE* store) {
    kzb_put_double("version", "version", file_version, store);
    kzb_put_string("version", "dorn_version", fmt::format("kzb {}", kzb_get_filehandler_version()).c_str(), store);
}

void put_origin(KZB_STORE* store, const Origin& origin) {
    kzb_put_string("information", "title", origin.title.c_str(), store);
    kzb_put_string("information", "creation_date", creation_date().c_str(), store);
    kzb_put_string("information", "input_file_name", origin.input_file_name.c_str(), store);
    if (!origin.preparer.empty()) {
        kzb_put_string("information", "preparer", origin.preparer.c_str(), store);
    }
    for (const auto& [key, value] : origin.information) {
        kzb_put_double("information", key.c_str(), value, store);
    }
}

void put_if_told(KZB_STORE* store, const char* category, const char* key, double value) {
    if (value != 0.0) {
        kzb_put_double(category, key, value, store);
    }
}

}  // namespace kzb::tool
