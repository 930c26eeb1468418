#include "store/format/shift_jis.h"

#include <algorithm>
#include <boost/locale/encoding.hpp>
#include <cstdio>
#include <stdexcept>

namespace kzb {

std::string stored_text(std::string text) {
    text.resize(std::min(text.find('\0'), text.size()));
    // The converter leaves each of the bytes 1 to 127 as it is; a test holds it to that.
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; })) {
        return text;
    }
    try {
        return boost::locale::conv::between(text, "Shift_JIS", "UTF-8", boost::locale::conv::stop);
    } catch (const std::runtime_error&) {
        std::fputs("Encoding from UTF-8 to SJIS is not performed.", stdout);
        return text;
    }
}

}  // namespace kzb
