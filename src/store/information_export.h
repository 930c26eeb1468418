// The document that tells a host what ports and parameters a generic model offers, to build its dialog from.
//
// XML with a count per kind of port and a list per kind of parameter; an item has a name, and where it has one a value
// and a unit. Names stand in CDATA sections, unescaped. Numbers have six significant digits.
#pragma once

#include <string>

#include "store/store.h"

namespace kzb {

std::string information_document(const KZB_STORE& store);

// Writes the document to `path`. 0, or 1: not a generic model, or the file can't be opened (error 90032).
int export_information(KZB_STORE& store, const char* path);

}  // namespace kzb
