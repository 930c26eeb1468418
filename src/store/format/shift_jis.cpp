#include "store/format/shift_jis.h"

#include <algorithm>
#include <boost/locale/encoding.hpp>
#include <cerrno>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <utility>

namespace kzb {

std::string stored_text(std::string text) {
    text.resize(std::min(text.find('\0'), text.size()));
    // The converter leaves each of the bytes 1 to 127 as it is; a test holds it to that.
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; })) {
        return text;
    }
    const int earlier = std::exchange(errno, 0);
    try {
        std::string converted = boost::locale::conv::between(text, "Shift_JIS", "UTF-8", boost::locale::conv::stop);
        errno = earlier;
        return converted;
    } catch (const std::runtime_error&) {
        if (errno == ENOMEM) {
            throw std::bad_alloc();  // the converter itself found no memory
        }
        std::fputs("Encoding from UTF-8 to SJIS is not performed.", stdout);
        return text;
    }
}

}  // namespace kzb
