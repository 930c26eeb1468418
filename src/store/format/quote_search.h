// The next double quote of a source, remembered: looking for it again from a place before it costs no search.
//
// A section that ends at a key it does not know is left by seeking back, and that key may stand a whole file ahead. Of
// a file with many such sections each would search the rest of the file again.
#pragma once

#include <cstdint>

#include "store/format/file_source.h"

namespace kzb {

class QuoteSearch {
  public:
    explicit QuoteSearch(FileSource& source) : source_(source) {}

    // Moves the source on to its next double quote, or to its end.
    void skip_to_next() {
        const std::int64_t start = source_.position();
        if (start < from_ || start > at_) {
            from_ = start;
            at_ = start;
            for (int byte = source_.get(); byte >= 0 && byte != '"'; byte = source_.get()) {
                at_ = source_.position();
            }
        }
        source_.seek(at_);
    }

  private:
    FileSource& source_;
    std::int64_t from_ = 0;
    std::int64_t at_ = -1;  // of the first double quote at or behind `from_`, or of the end
};

}  // namespace kzb
