// An expression of the file over named variables, compiled once and evaluated many times.
//
// Whatever goes wrong, in a name or in the text, makes the value 0.0, silently. Every evaluation starts from the given
// values: what an expression assigns to a variable is forgotten.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace mu {
class Parser;
}

namespace kzb {

class Expression {
  public:
    Expression(const std::vector<std::string>& names, const std::string& text);
    ~Expression();
    Expression(Expression&&) noexcept;
    Expression& operator=(Expression&&) noexcept;

    // False for a text or a name that can't be read.
    bool is_readable() const { return parser_ != nullptr; }
    // One value per name, in their order.
    std::vector<double>& values() { return given_; }
    // Of the values that stand.
    double evaluate();

  private:
    std::vector<double> given_;
    std::unique_ptr<std::vector<double>> bound_;  // what the parser's variables point at; never moves
    std::unique_ptr<mu::Parser> parser_;          // null: the expression has no value
};

}  // namespace kzb
