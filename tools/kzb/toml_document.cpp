#include "kzb/toml_document.h"

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/input_text.h"
#include "kzb/text.h"

namespace kzb::tool {

toml::table parse_toml(const std::string& text, const std::string& name) {
    try {
        return toml::parse(text, name);
    } catch (const toml::parse_error& e) {
        throw Failure(exit_file, fmt::format("{}:{}: not valid TOML: {}", name, e.source().begin.line,
                                             printable_line(e.description())));
    }
}

toml::table read_toml(const std::string& file, const char* what) {
    return parse_toml(read_input_text(file, what), file);
}

}  // namespace kzb::tool
