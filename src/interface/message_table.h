// The texts that the calling block shows: a fixed table by index, in English or Japanese.
//
// The status codes are a list of their own (status.h). A text may hold "%s", which the caller fills in.
#pragma once

#include <array>

namespace kzb {

inline constexpr int message_count = 27;
using MessageTable = std::array<const char*, message_count>;  // UTF-8; index 0 is the empty text

// The Japanese column for the tag "JPN", the English one for any other or null.
const MessageTable& message_table(const char* language);

}  // namespace kzb
