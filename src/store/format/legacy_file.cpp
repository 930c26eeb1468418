#include "store/format/legacy_file.h"

#include "store/store.h"

namespace kzb {

int read_legacy_file(KZB_STORE& store, FileSource& /*source*/) {
    store.error = 90001;
    return 1;
}

}  // namespace kzb
