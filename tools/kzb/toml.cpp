// The implementation of toml++, once for all that include the header.
#define TOML_IMPLEMENTATION
#include "kzb/toml.h"
