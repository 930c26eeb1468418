// Values of the accepted past.
#pragma once

namespace kzb {

// Accepts `present`: every value moves one place towards the past.
template <class Value>
void shift_history(const Value& present, Value& previous) {
    previous = present;
}

template <class Value, class... Past>
void shift_history(const Value& present, Value& previous, Past&... older) {
    shift_history(previous, older...);
    previous = present;
}

}  // namespace kzb
