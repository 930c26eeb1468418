// The file is text, a line per item; a line that starts with "$" opens one, its head words separated by commas. Table
// items go on over the lines of their block. Lines of other kinds between items are passed over.
#include "store/measured/correction_file.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "store/format/model_file.h"
#include "store/measured/correction_block.h"
#include "store/measured/correction_merge.h"
#include "store/measured/fields.h"
#include "store/messages.h"

namespace kzb {

namespace {

constexpr std::size_t item_line_limit = 127;  // a longer line counts as several

// What a file has shown so far.
struct Progress {
    bool started = false;
    bool ended = false;
    bool pmsm = false;
    bool new_inductance = false;  // the table is new to the store
    bool new_magflux = false;
    bool new_totalflux = false;
    bool old_item = false;
};

struct TableItem {
    std::string_view word;
    const char* key;
    bool Progress::*is_new;
    bool cyclic;  // axis 2 is a full turn of the current phase
    const char* counter;
};

constexpr std::array<TableItem, 5> table_items{{
    {"$KZ_Correction_Inductance", "inductance", &Progress::new_inductance, true, nullptr},
    {"$KZ_Correction_Torque", "torque", nullptr, true, "torque_correction_counter"},
    {"$KZ_Correction_MagFlux", "mag-flux", &Progress::new_magflux, true, nullptr},
    {"$KZ_Correction_TotalFluxLinkage", "total-flux", &Progress::new_totalflux, true, "totalflux_correction_counter"},
    {"$KZ_Correction_Ironloss", "ironloss", nullptr, false, "ironloss_correction_counter"},
}};

struct ValueItem {
    std::string_view word;
    const char* key;
};

constexpr std::array<ValueItem, 3> leakage_items{{
    {"$KZ_Correction_LeakageInductance_U", "leakage_inductance_u"},
    {"$KZ_Correction_LeakageInductance_V", "leakage_inductance_v"},
    {"$KZ_Correction_LeakageInductance_W", "leakage_inductance_w"},
}};

int old_item_error(std::string_view word) {
    if (word == "$KZ_Correction_BackEMF") {
        return 90011;
    }
    if (word == "$KZ_Correction_Flux") {
        return 90012;
    }
    return word == "$KZ_Correction_LdLq" ? 90013 : 90014;
}

void count_block(KZB_STORE& store, const char* counter) {
    const auto count = static_cast<std::uint32_t>(get_int(store, "information", counter));
    put_int(store, "information", counter, static_cast<int>(count + 1U));
}

class CorrectionFile {
  public:
    CorrectionFile(KZB_STORE& store, TextLines& lines) : store_(store), lines_(lines) {}

    // Reads the items up to the end marker; false on a failure.
    bool read_items();
    // The error of a file whose items were read, 0 for none.
    int fault() const;
    bool old_item_seen() const { return progress_.old_item; }

  private:
    void read_item(const std::string& line);
    bool read_marker(std::string_view word, CommaTokens& tokens);
    bool read_table(std::string_view word, const std::string& line);
    bool read_leakage(std::string_view word, CommaTokens& tokens);

    KZB_STORE& store_;
    TextLines& lines_;
    Progress progress_;
};

bool CorrectionFile::read_items() {
    for (;;) {
        if (lines_.next(item_line_limit)) {
            read_item(std::string(lines_.fields()));  // a copy: the lines of a block replace the line
        }
        if (progress_.ended) {
            return true;
        }
        if (lines_.ended()) {
            store_.error = 90016;
            return false;
        }
        if (store_.error == corrupt_correction_file) {
            std::perror(error_text(corrupt_correction_file));
            return false;
        }
    }
}

void CorrectionFile::read_item(const std::string& line) {
    if (!line.starts_with('$')) {
        return;
    }
    CommaTokens tokens(line);
    std::string_view word;
    tokens.take(word);
    word = trimmed(word);
    if (read_marker(word, tokens) || read_table(word, line) || read_leakage(word, tokens)) {
        return;
    }
    if (!progress_.old_item) {  // the first one alone is told
        progress_.old_item = true;
        store_.error = old_item_error(word);
    }
}

bool CorrectionFile::read_marker(std::string_view word, CommaTokens& tokens) {
    if (word == "$KZ_Correction_End") {
        progress_.ended = true;
    } else if (word == "$KZ_Correction_Start") {
        progress_.started = true;
    } else if (word == "$KZ_Correction_MotorType") {
        std::string_view type;
        if (tokens.take(type) && trimmed(type).starts_with("PMSM")) {
            progress_.pmsm = true;
        }
    } else {
        return word == "$KZ_Correction_Version";
    }
    return true;
}

bool CorrectionFile::read_table(std::string_view word, const std::string& line) {
    for (const TableItem& item : table_items) {
        if (word != item.word) {
            continue;
        }
        if (table_dim(store_, correction_category, item.key) < 1) {
            if (item.is_new != nullptr) {
                progress_.*item.is_new = true;
            }
            read_block(store_, lines_, line, item.key);
        } else {
            merge_block(store_, lines_, line, item.key);
        }
        if (item.cyclic) {
            table_set_cyclic_flag(find_table(store_, correction_category, item.key), 2, 1);
        }
        if (item.counter != nullptr) {
            count_block(store_, item.counter);
        }
        return true;
    }
    return false;
}

bool CorrectionFile::read_leakage(std::string_view word, CommaTokens& tokens) {
    for (const ValueItem& item : leakage_items) {
        if (word != item.word) {
            continue;
        }
        std::string_view value;
        if (tokens.take(value)) {
            put_double(store_, "parameter", item.key, leading_double(value));
        } else {
            store_.error = corrupt_correction_file;
        }
        return true;
    }
    return false;
}

int CorrectionFile::fault() const {
    if (!progress_.started) {
        return 90017;
    }
    if (!progress_.pmsm) {
        return 90018;
    }
    const bool new_part = progress_.new_inductance || progress_.new_magflux;
    if (new_part && progress_.new_totalflux) {
        return 90020;
    }
    const auto has = [&](const char* key) { return table_dim(store_, correction_category, key) >= 1; };
    if (progress_.new_totalflux && (has("inductance") || has("mag-flux"))) {
        return 90021;
    }
    return new_part && has("total-flux") ? 90022 : 0;
}

// Correction tables still waiting in the model file are fetched: merging needs their values. False where they cannot.
bool load_corrections(KZB_STORE& store) {
    const auto waiting = [&] {
        if (const KZB_CATEGORY* corrections = find_category(store, correction_category)) {
            for (const KZB_TABLE& table : corrections->tables) {
                if (table.file_position != 0 && table.loaded == 0) {
                    return true;
                }
            }
        }
        return false;
    };
    if (!waiting()) {
        return true;
    }
    read_tables(store);
    if (!waiting()) {
        return true;
    }
    store.error = store.error == 0 ? 90009 : store.error;
    return false;
}

}  // namespace

int read_correction_file(KZB_STORE& store, const char* path) {
    store.error = 0;
    TextLines lines(path);
    if (!lines.is_open()) {
        store.error = 90015;
        return 1;
    }
    if (!load_corrections(store)) {
        return 1;
    }
    CorrectionFile file(store, lines);
    if (!file.read_items()) {
        return 1;
    }
    if (const int fault = file.fault()) {
        store.error = fault;
        return 1;
    }
    return file.old_item_seen() ? 1 : 0;
}

}  // namespace kzb
