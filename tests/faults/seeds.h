// Sound files of every form that the library reads, to be damaged.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "faults/models.h"

namespace kzb_test {

struct Seed {
    std::string name;
    std::string path;
    bool forced_ascii = false;  // read with KZB_READING_ASCII set
};

// Models of about 2 KB: binary, ascii, and the two forms of the older layout.
std::vector<Seed> model_seeds(const Folder& folder);

// Binary and ascii models of about 1 MB.
std::vector<Seed> large_seeds(const Folder& folder);

// A correction file and the two kinds of loss files, of about 2 KB.
std::vector<Seed> measured_seeds(const Folder& folder);

// Appends the bytes of a number.
template <class Word>
void add_word(std::string& bytes, Word word) {
    bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
}

// The store as an ascii file, written from the outside.
std::string ascii_form(KZB_STORE* store);

// While it lives, KZB_READING_ASCII is set where `on`.
class AsciiSwitch {
  public:
    explicit AsciiSwitch(bool on) {
        if (on) {
            setenv("KZB_READING_ASCII", "1", 1);
        }
    }
    AsciiSwitch(const AsciiSwitch&) = delete;
    AsciiSwitch& operator=(const AsciiSwitch&) = delete;
    ~AsciiSwitch() { unsetenv("KZB_READING_ASCII"); }
};

}  // namespace kzb_test
