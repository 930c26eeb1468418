// Makes calls of the store in the order that the input tells, with arguments that it draws: names that stand, that
// don't, that point into the store itself, that are null, empty or too long; indices, counts and numbers of any size.
// What was put is there, what stands is found by its name, and a store is written as it ends.
#include "store_calls.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "choices.h"
#include "scratch_file.h"
#include "silence.h"
#include "step_generic_model.h"
#include "step_machine_model.h"

namespace {

using kzb_fuzz::Arguments;
using kzb_fuzz::Input;

// Bounds of one run.
constexpr int most_calls = 96;
constexpr int most_costly_calls = 6;
constexpr int most_values = 512;  // of a table

constexpr const char* correction_text =
    "$KZ_Correction_Start\n$KZ_Correction_Version,1.0\n$KZ_Correction_MotorType,PMSM\n"
    "$KZ_Correction_Torque,2,2\nphase,0,360\n0,1.0,1.1\n1000,0.9,1.2\n$KZ_Correction_End\n";
// Amplitude, phase, speed, voltage, carrier, loss.
constexpr const char* loss_text =
    "0 0 0 300 10000 1\n0 360 0 300 10000 2\n100 0 0 300 10000 3\n100 360 0 300 10000 4\n";

// Files that the calls may name; the models are made once.
class Files {
  public:
    Files() {
        std::filesystem::create_directory(folder_.name());
        // Two whole models of each machine: without options, and with the tables of all of them.
        for (unsigned machine = 0; machine <= std::size(kzb_fuzz::motor_types); ++machine) {
            for (const unsigned options : {0x00U, 0xffU}) {
                add_model(machine, static_cast<std::uint8_t>(options));
            }
        }
        models_ = names_.size();
        add_text("correction", correction_text);
        add_text("loss", loss_text);
        add_text("empty", "");
        names_.insert(names_.end(), {folder_.name() + "/written", folder_.name() + "/absent", folder_.name(), ""});
    }
    std::size_t models() const { return models_; }
    const char* model(unsigned choice) const { return names_[choice % models_].c_str(); }
    const char* any(unsigned choice) const { return choice == 0xff ? nullptr : names_[choice % names_.size()].c_str(); }

  private:
    void add_model(unsigned machine, std::uint8_t options) {
        const std::uint8_t choices[] = {static_cast<std::uint8_t>(machine), 3, 1, options};
        const bool is_generic = machine == std::size(kzb_fuzz::motor_types);
        Input in(choices + (is_generic ? 1 : 0), sizeof choices - (is_generic ? 1 : 0));
        names_.push_back(folder_.name() + "/model" + std::to_string(names_.size()));
        (is_generic ? kzb_fuzz::write_generic : kzb_fuzz::write_machine)(in, names_.back());
    }
    void add_text(const char* name, const char* text) {
        names_.push_back(folder_.name() + "/" + name);
        kzb_fuzz::hold(names_.back(), text);
    }

    kzb_fuzz::ScratchPath folder_{"files"};
    std::deque<std::string> names_;
    std::size_t models_ = 0;
};

const Files& files() {
    static const Files made;
    return made;
}

const std::string longest_name(255, 'n');
const std::string too_long_name(256, 'n');

template <class Pool>
const char* one_of(const Pool& pool, Input& in) {
    return pool[in.choice(static_cast<unsigned>(std::size(pool)))];
}

class Run {
  public:
    explicit Run(Input& in) : in_(in) {
        for (KZB_STORE*& store : stores_) {
            kzb_initialize(&store);
        }
        const unsigned b = in.byte();
        if (b < 0xe0) {
            kzb_reader(files().model(b), stores_[0]);
            kzb_set_application("ALL", "", stores_[0]);
        }
    }
    ~Run() {
        for (KZB_STORE* store : stores_) {
            kzb_finish(store);
        }
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void make_calls() {
        for (int k = 0; k < most_calls && !in_.is_empty(); ++k) {
            const unsigned what = in_.byte();
            draw();
            if (what < 0xa0) {
                kzb_fuzz::plain_calls[what % std::size(kzb_fuzz::plain_calls)](drawn_);
            } else if (what < 0xe0) {
                put(what);
            } else if (++costly_ <= most_costly_calls) {
                kzb_fuzz::costly_calls[what % std::size(kzb_fuzz::costly_calls)](drawn_);
            }
        }
        for (KZB_STORE* store : stores_) {
            require_names(store);
        }
    }

  private:
    void draw() {
        Arguments& a = drawn_;
        const unsigned handle = in_.byte();
        a.store = handle < 0xc0 ? stores_[0] : handle < 0xfc ? stores_[1] : nullptr;
        a.category = category();
        a.key = key();
        a.path = path();
        const unsigned b = in_.byte();
        a.index = in_.index();
        a.axis = static_cast<int>(b % 8) - 1;
        a.integer = b < 0xf0 ? static_cast<int>(b % 32) - 1 : b % 2 == 0 ? INT_MAX : INT_MIN;
        a.dim = static_cast<int>(b % 7) - (b >= 0xf8 ? 6 : 0);
        a.number = in_.number();
        a.other_number = in_.number();
        const unsigned c = in_.byte();
        a.file = files().any(c);
        constexpr const char* methods[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline", "linear", "", nullptr};
        a.method = methods[c % 8];
        constexpr const char* motors[] = {"PMSM", "ALL", "WFSM", "IM", "SR", "LinearSynchronous", "Generic", nullptr};
        a.motor = c / 8 == 31 ? too_long_name.c_str() : motors[c / 8 % 8];
        constexpr const char* words[] = {"Harmonic", "LdLq", "FluxIntegralDQTheta", nullptr};
        a.application = words[c / 64];
        constexpr const char* texts[] = {"", "text", "a text of another length", "\"*,#\n", "\xe3\x81\x82", nullptr};
        a.text = c % 16 == 15 ? a.category : texts[c % 6];
        draw_arrays();
    }

    void draw_arrays() {
        Arguments& a = drawn_;
        const unsigned seed = in_.byte();
        a.path_indices = seed == 0xff ? nullptr : path_indices_;
        a.table_indices = seed == 0xfe ? nullptr : table_indices_.data();
        a.sizes = seed == 0xfd ? nullptr : sizes_;
        a.coordinates = seed == 0xfc ? nullptr : coordinates_.data();
        long long values = 1;
        for (int i = 0; i < most_dim; ++i) {
            sizes_[i] = 1 + static_cast<int>((seed >> (i % 4)) & 3U);
            path_indices_[i] = static_cast<int>(seed >> i & 1U);
            values *= i < a.dim ? sizes_[i] : 1;
        }
        if (seed >= 0xe0) {
            // Refused: none, less than none, more than an int counts.
            constexpr int odd[] = {0, -1, INT_MIN, 65536};
            sizes_[0] = odd[seed % 4];
            sizes_[1] = 65536;
            a.dim = sizes_[0] == 65536 && a.dim == 1 ? 2 : a.dim;
        } else if (values > most_values) {
            a.dim = 2;
        }
        // Long enough for the table that stands under either name.
        const int dim = std::max({kzb_get_table_dim(a.category, a.key, a.store),
                                  kzb_get_subcategory_table_dim(a.path, a.path_indices, a.key, a.store), 1});
        table_indices_.assign(static_cast<std::size_t>(dim), static_cast<int>(seed % 3));
        coordinates_.assign(static_cast<std::size_t>(dim), a.number);
        table_indices_[seed % static_cast<unsigned>(dim)] = a.index;
        coordinates_[seed % static_cast<unsigned>(dim)] = a.other_number;
        a.table_indices = seed == 0xfe ? nullptr : table_indices_.data();
        a.coordinates = seed == 0xfc ? nullptr : coordinates_.data();
    }

    const char* category() {
        constexpr const char* pool[] = {"control",
                                        "parameter",
                                        "information",
                                        "version",
                                        "current_flux",
                                        "harmonic_inductance",
                                        "harmonic_torque",
                                        "flux_table",
                                        "current_table",
                                        "inductance",
                                        "mag_flux",
                                        "torque",
                                        "distance_force",
                                        "hysloss",
                                        "eddyloss",
                                        "loss_table",
                                        "correction",
                                        "d_flux",
                                        "dq_inductance",
                                        "InductionParam",
                                        "a;0;b;1;",
                                        "terminal_list;0;terminal;0;",
                                        "",
                                        "any"};
        const unsigned b = in_.byte();
        if (b < 0xc0) {
            return pool[b % std::size(pool)];
        }
        // Texts of the store itself: they may be handed to any call.
        return b < 0xf8 ? kzb_get_category_name(static_cast<int>(b % 32), drawn_.store) : odd_name(b);
    }

    const char* key() {
        constexpr const char* pool[] = {"motor_type",
                                        "number_of_poles",
                                        "use_phase_symmetry",
                                        "flux",
                                        "inductance",
                                        "torque_ibeta",
                                        "fd_noload",
                                        "id",
                                        "iq",
                                        "mag_flux",
                                        "iuvw",
                                        "f0_ibeta",
                                        "force",
                                        "title",
                                        "title_visible",
                                        "name",
                                        "type",
                                        "any",
                                        "current_type",
                                        "beta_zero",
                                        "numMat",
                                        "matID1",
                                        "hysloss1",
                                        "flux_org"};
        const unsigned b = in_.byte();
        if (b < 0xa0) {
            return pool[b % std::size(pool)];
        }
        const int index = static_cast<int>(b % 4);
        if (b < 0xe0) {
            return kzb_get_table_keyword(drawn_.category, index, drawn_.store);
        }
        return b < 0xf0   ? kzb_get_int_keyword(drawn_.category, index, drawn_.store)
               : b < 0xf8 ? kzb_get_string_keyword(drawn_.category, index, drawn_.store)
                          : odd_name(b);
    }

    const char* path() {
        constexpr const char* pool[] = {"a;b", "terminal_list;terminal", "a", "a;b;c;d;e;f", ";", "", ";;a,,b:", "b:c"};
        const unsigned b = in_.byte();
        return b < 0xf8 ? pool[b % std::size(pool)] : odd_name(b);
    }

    static const char* odd_name(unsigned b) {
        switch (b % 4) {
            case 0:
                return longest_name.c_str();
            case 1:
                return too_long_name.c_str();
            case 2:
                return "\xe3\x81\x82\x01\xff";
            default:
                return nullptr;
        }
    }

    // What was put is there.
    void put(unsigned what) {
        const Arguments& a = drawn_;
        // The names may point into the store, which may move them.
        const std::string category = a.category == nullptr ? "" : a.category;
        const std::string key = a.key == nullptr ? "" : a.key;
        const char* const c = category.c_str();
        const char* const k = key.c_str();
        switch (what % 4) {
            case 0:
                if (kzb_put_int(a.category, a.key, a.integer, a.store) == 0 &&
                    kzb_get_int(c, k, a.store) != a.integer) {
                    std::abort();
                }
                break;
            case 1:
                if (kzb_put_double(a.category, a.key, a.number, a.store) == 0 &&
                    std::bit_cast<std::uint64_t>(kzb_get_double(c, k, a.store)) !=
                        std::bit_cast<std::uint64_t>(a.number)) {
                    std::abort();
                }
                break;
            case 2: {
                const std::string text = a.text == nullptr ? "" : a.text;
                if (kzb_put_string(a.category, a.key, a.text, a.store) == 0 && kzb_get_string(c, k, a.store) != text) {
                    std::abort();
                }
                break;
            }
            default:
                if (kzb_create_table(a.category, a.key, a.dim, a.sizes, a.store) == 0 &&
                    (kzb_get_table_dim(c, k, a.store) != a.dim || kzb_has_parameter(c, k, a.store) != 1)) {
                    std::abort();
                }
                break;
        }
    }

    // Every name that stands is found under itself.
    static void require_names(KZB_STORE* store) {
        for (int i = 0; i < kzb_get_category_num(store); ++i) {
            const char* const category = kzb_get_category_name(i, store);
            if (category == nullptr || kzb_has_category(category, store) != 1) {
                std::abort();
            }
            require_keys(category, kzb_get_int_num(category, store), kzb_get_int_keyword, store);
            require_keys(category, kzb_get_double_num(category, store), kzb_get_double_keyword, store);
            require_keys(category, kzb_get_string_num(category, store), kzb_get_string_keyword, store);
            require_keys(category, kzb_get_table_num(category, store), kzb_get_table_keyword, store);
        }
    }
    static void require_keys(const char* category, int count, const char* keyword(const char*, int, KZB_STORE*),
                             KZB_STORE* store) {
        for (int i = 0; i < count; ++i) {
            const char* const key = keyword(category, i, store);
            if (key == nullptr || kzb_has_parameter(category, key, store) != 1) {
                std::abort();
            }
        }
    }

    static constexpr int most_dim = 8;

    Input& in_;
    KZB_STORE* stores_[2] = {};
    Arguments drawn_;
    int path_indices_[kzb_fuzz::room] = {};
    int sizes_[most_dim] = {};
    std::vector<int> table_indices_;
    std::vector<double> coordinates_;
    int costly_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    files();
    Input in(data, size);
    Run(in).make_calls();
    return 0;
}
