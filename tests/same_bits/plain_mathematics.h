// Sine, exponential and their like give other last bits on a processor with a fused multiply-add, where the C library
// takes other routines. A program whose results are compared with results of another day runs without them.
#pragma once

#include <cstdint>

namespace kzb_test {

// Starts the program again with the plain routines, unless it runs with them; returns when it does.
void use_plain_mathematics(char** argv);
// What the routines give over a range of numbers: tells one kind, or one C library, from another.
std::uint64_t mathematics_hash();

}  // namespace kzb_test
