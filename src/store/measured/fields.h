// Fields of measured data: tokens between commas, and the numbers in them, read alike under every locale.
#pragma once

#include <string_view>

namespace kzb {

// White space at both ends removed.
std::string_view trimmed(std::string_view text);

// Tokens of a line, as strtok gives them: commas side by side separate like one, and those at the ends do not count.
class CommaTokens {
  public:
    explicit CommaTokens(std::string_view line) : rest_(line) {}
    // False when there is none left.
    bool take(std::string_view& token);

  private:
    std::string_view rest_;
};

// The number at the front of `text`, behind white space; what follows it is ignored, and no number counts as 0.
int leading_int(std::string_view text);
double leading_double(std::string_view text);

// True when the whole of `text` is a number: decimal digits, "inf" or "nan", no white space, in the range of the type.
bool whole_int(std::string_view text, int& value);
bool whole_double(std::string_view text, double& value);

}  // namespace kzb
