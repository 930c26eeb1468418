#include "store/format/legacy_file.h"

#include "store/store.h"

namespace kzb {

int read_legacy_file(KZB_STORE& store, FileSource& source) {
    if (!source.is_open()) {
        store.error = 90002;
        return 1;
    }
    return store.input_type == "ascii" ? ReadCategoryParameterByAsciiModeForOldFileFormat(store, source)
                                       : ReadCategoryParameterByBinaryModeForOldFileFormat(store, source);
}

}  // namespace kzb
