#include "circuit/generic/expression.h"

#include <muParser.h>

#include <algorithm>

namespace kzb {
namespace {

mu::string_type widened(const std::string& text) {
    mu::string_type wide(text.size(), mu::char_type{});
    std::transform(text.begin(), text.end(), wide.begin(),
                   [](char c) { return static_cast<mu::char_type>(static_cast<unsigned char>(c)); });
    return wide;
}

// The parser reads numbers by a locale that all parsers share, and the runtime lays by, unsynchronised, what it finds
// out about a locale at the first number. So the first number of the process is read here, before any thread goes on.
void read_first_number() {
    static const double number = [] {
        mu::Parser parser;
        parser.SetExpr(widened("1.5"));
        return parser.Eval();
    }();
    static_cast<void>(number);
}

}  // namespace

Expression::~Expression() = default;
Expression::Expression(Expression&&) noexcept = default;
Expression& Expression::operator=(Expression&&) noexcept = default;

Expression::Expression(const std::vector<std::string>& names, const std::string& text)
    : given_(names.size(), 0.0), bound_(std::make_unique<std::vector<double>>(names.size(), 0.0)) {
    read_first_number();
    auto parser = std::make_unique<mu::Parser>();
    try {
        for (std::size_t i = 0; i < names.size(); ++i) {
            // Of two variables of one name the last counts.
            parser->DefineVar(widened(names[i]), &(*bound_)[i]);
        }
        parser->SetExpr(widened(text));
        // Whether the text can be read doesn't depend on the values.
        parser->Eval();
        parser_ = std::move(parser);
    } catch (const mu::ParserError&) {
    }
}

double Expression::evaluate() {
    if (!parser_) {
        return 0.0;
    }
    std::copy(given_.begin(), given_.end(), bound_->begin());
    try {
        return parser_->Eval();
    } catch (const mu::ParserError&) {
        return 0.0;
    }
}

}  // namespace kzb
