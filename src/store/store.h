// KZB_STORE: the image of one KZB file in memory, and the operations on it that do not look values up.
//
// An ordered list of named categories, each with four ordered lists of named parameters: int, double, string, table.
// Names are case-sensitive. Each list keeps its order of insertion and finds a name through an index. References to a
// record die with the next insertion into the same list; `revision` changes with everything a kept reference or a
// derived value could depend on, the values and axes of a table excepted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "store/environment_watch.h"
#include "store/lookup_cache.h"
#include "store/named_list.h"
#include "table/lookup.h"
#include "table/table.h"

namespace kzb {
class LookupWatch;
}

struct KZB_CATEGORY {
    std::string name;
    kzb::NamedList<kzb::Named<int>> ints;
    kzb::NamedList<kzb::Named<double>> doubles;
    kzb::NamedList<kzb::Named<std::string>> strings;
    kzb::NamedList<KZB_TABLE> tables;
};

struct KZB_STORE {
    double version = 0.0;     // set by the readers of old files only
    std::string output_path;  // where kzb_finish writes; used when output_type is set
    std::string output_type;  // "binary", "ascii" or empty
    std::string input_path;
    std::string input_type;  // "binary", "ascii" or empty
    std::vector<KZB_CATEGORY> categories;
    kzb::NameIndex category_index;
    std::string motor;        // selected application
    std::string application;  // its model word
    int ldlq_made = 0;
    int error = 0;
    int warning = 0;
    double timing[kzb::timing_slots] = {};
    std::string child_name;  // result of kzb_get_child_subcategory_name

    std::uint64_t revision = 1;
    bool keep_time = false;  // KZB_OUTPUT_ELAPSED_TIME stood in the environment at kzb_initialize
    kzb::EnvironmentWatch environment;
    kzb::LookupSwitches switches;   // read from the environment once per exported call
    bool debug_lines = false;       // KZBFILEHANDLER_DEBUG_MODE, likewise
    kzb::LookupCache lookup_cache;  // tables that the exported lookup resolved
    // Who hears of lookups outside their tables, and outlives its place here; null: nobody.
    kzb::LookupWatch* watch = nullptr;
};

namespace kzb {

inline constexpr std::size_t name_limit = 256;  // no name reaches this length

// Categories. `require_category` appends an absent one; null for a name of 256 bytes or more.
KZB_CATEGORY* find_category(KZB_STORE& store, std::string_view name);
const KZB_CATEGORY* find_category(const KZB_STORE& store, std::string_view name);
KZB_CATEGORY* require_category(KZB_STORE& store, std::string_view name);
bool has_category(const KZB_STORE& store, std::string_view name);

// Parameters: 0, 0.0, null where absent.
bool has_parameter(const KZB_STORE& store, std::string_view category, std::string_view key);
int get_int(const KZB_STORE& store, std::string_view category, std::string_view key);
double get_double(const KZB_STORE& store, std::string_view category, std::string_view key);
const char* get_string(const KZB_STORE& store, std::string_view category, std::string_view key);
int put_int(KZB_STORE& store, std::string_view category, std::string_view key, int value);
int put_double(KZB_STORE& store, std::string_view category, std::string_view key, double value);
int put_string(KZB_STORE& store, std::string_view category, std::string_view key, std::string_view value);

// Tables; null where absent.
KZB_TABLE* find_table(KZB_STORE& store, std::string_view category, std::string_view key);
const KZB_TABLE* find_table(const KZB_STORE& store, std::string_view category, std::string_view key);
int table_dim(const KZB_STORE& store, std::string_view category, std::string_view key);  // 0 where absent
// Rows of an axis from 1; 0 for an absent table or axis.
int table_rows(const KZB_STORE& store, std::string_view category, std::string_view key, int axis);
// Creates the category and the table, or re-creates the table in its place. 0, or 1 as table_create.
int create_table(KZB_STORE& store, std::string_view category, std::string_view key, int dim, const int* sizes);
// The record in the category, for readers: appended under `key` when absent, its arrays as they are.
KZB_TABLE* table_create_in_category(KZB_STORE& store, KZB_CATEGORY& category, std::string_view key, int dim,
                                    const int* rows, int& status);
// Takes the table out of its category, order kept; nothing when absent.
void delete_table(KZB_STORE& store, std::string_view category, std::string_view key);

// True when `kzb_set_application` loads this category for the selected application.
bool application_loads(const KZB_STORE& store, std::string_view category);
bool has_application(const KZB_STORE& store, std::string_view motor, std::string_view application);
void set_application(KZB_STORE& store, const char* motor, const char* application);

// The environment switches of lookups, read at the start of an exported call that looks up.
void read_lookup_switches(KZB_STORE& store);

}  // namespace kzb
