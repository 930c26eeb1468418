// Files cut off or with bits turned over: an answer within a second, and memory in proportion to the file.
//
// Every file is read by all calls that take one: loaded, looked up, opened as a machine and stepped; or read into a
// model. Whatever it holds, nothing may crash, hang or leak; a sanitizer watches the rest.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <random>

#include "faults/heap.h"
#include "faults/models.h"
#include "faults/seeds.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

double cpu_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Looks the middle of every table up with every method.
void look_up_all(KZB_STORE* store) {
    for (int c = 0; c < kzb_get_category_num(store); ++c) {
        const char* const category = kzb_get_category_name(c, store);
        for (int t = 0; t < kzb_get_table_num(category, store); ++t) {
            const char* const key = kzb_get_table_keyword(category, t, store);
            const int dim = kzb_get_table_dim(category, key, store);
            double at[8] = {};
            if (dim < 1 || dim > 8) {
                continue;
            }
            for (int axis = 1; axis <= dim; ++axis) {
                const int rows = kzb_get_table_num_rows(category, key, axis, store);
                at[axis - 1] = 0.5 * kzb_get_table_axis_value(category, key, axis, 0, store) +
                               0.5 * kzb_get_table_axis_value(category, key, axis, rows - 1, store);
            }
            for (const char* const method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
                kzb_get_table_interpolated_value(category, key, at, method, store);
            }
        }
    }
}

void load(const std::string& path) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(path.c_str(), store);
    kzb_set_application("ALL", "", store);
    look_up_all(store);
    kzb_finish(store);
}

void run(const std::string& path) {
    KZB_CALC* calc = nullptr;
    const int status = kzbcalcInitialize(path.c_str(), 1, &calc);
    EXPECT_TRUE(status == 0 || status == 180001 || status == 180002) << status;
    kzbcalcSetIronlossCalc(calc);
    kzbcalcSetData(calc);
    for (int k = 0; k < 3; ++k) {
        kzbcalcSetTime(1e-4 * k, calc);
        kzbcalcSetVoltage(1, 10.0, calc);
        kzbcalcExecute(calc);
        kzbcalcGetTorque(calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_EQ(kzbcalcTerminate(calc), 0);
}

// What one file costs at most.
struct Costs {
    double seconds = 0.0;
    double bytes_per_byte = 0.0;  // heap in use at once, over 1 MB, by the length of the sound file
    long files = 0;
    long blocks_left = 0;
};

class DamagedFiles : public testing::Test {
  protected:
    DamagedFiles() {
        fill_rotary(rotary_);
        fill_generic(generic_);
    }

    // Reads the damaged file as what `seed` is.
    void read(const Seed& seed, const std::string& path) {
        if (seed.name == "correction" || seed.name == "losses" || seed.name == "described") {
            KZB_STORE* const store = loaded_store(seed.name == "described" ? generic_.path() : rotary_.path());
            seed.name == "correction" ? kzb_read_correction_file(path.c_str(), store)
                                      : kzb_add_loss_table(path.c_str(), store);
            kzb_add_equivalent_copper_loss_resistance_table(path.c_str(), store);
            kzb_finish(store);
            return;
        }
        const AsciiSwitch ascii(seed.forced_ascii);
        load(path);
        run(path);
    }

    void measure(const Seed& seed, const std::string& path, std::size_t size, Costs& costs) {
        constexpr std::size_t always = std::size_t{1} << 20;  // whatever the file is
        const std::size_t bytes_before = live_bytes();
        const long blocks_before = live_blocks();
        mark_peak();
        const double start = cpu_seconds();
        read(seed, path);
        costs.seconds = std::max(costs.seconds, cpu_seconds() - start);
        const std::size_t taken = peak_bytes() - bytes_before;
        costs.bytes_per_byte = std::max(costs.bytes_per_byte, static_cast<double>(taken - std::min(taken, always)) /
                                                                  static_cast<double>(std::max<std::size_t>(size, 1)));
        ++costs.files;
        long blocks_left = live_blocks() - blocks_before;
        if (blocks_left != 0) {  // the system's converter of texts is made at its first use
            const long blocks_again = live_blocks();
            read(seed, path);
            blocks_left = live_blocks() - blocks_again;
        }
        costs.blocks_left = std::max(costs.blocks_left, blocks_left);
    }

    // The two kinds of damage, on a file that is patched in its place.
    class Patient {
      public:
        Patient(const Folder& folder, const std::string& content) : path_(folder / "damaged"), content_(content) {
            write_file(path_, content);
            descriptor_ = ::open(path_.c_str(), O_RDWR | O_CLOEXEC);
        }
        Patient(const Patient&) = delete;
        Patient& operator=(const Patient&) = delete;
        ~Patient() { ::close(descriptor_); }
        void turn_bit(std::size_t bit) {
            const char turned = static_cast<char>(content_[bit / 8] ^ static_cast<char>(1 << (bit % 8)));
            put(bit / 8, turned);
        }
        void restore_bit(std::size_t bit) { put(bit / 8, content_[bit / 8]); }
        void cut(std::size_t length) { ASSERT_EQ(ftruncate(descriptor_, static_cast<off_t>(length)), 0); }
        void restore_length(std::size_t length) {
            const std::size_t lost = content_.size() - length;
            ASSERT_EQ(pwrite(descriptor_, content_.data() + length, lost, static_cast<off_t>(length)),
                      static_cast<ssize_t>(lost));
        }
        const std::string& path() const { return path_; }
        const std::string& content() const { return content_; }

      private:
        void put(std::size_t at, char byte) { ASSERT_EQ(pwrite(descriptor_, &byte, 1, static_cast<off_t>(at)), 1); }
        std::string path_;
        std::string content_;
        int descriptor_;
    };

    // Every truncation and every bit, `step` apart.
    Costs damage_by_steps(const Seed& seed, std::size_t step) {
        Costs costs;
        Patient patient(folder_, read_file(seed.path));
        const std::size_t size = patient.content().size();
        const Quiet quiet;
        read(seed, patient.path());  // what is made once for the process is made now
        for (std::size_t length = 0; length < size; length += step) {
            patient.cut(length);
            measure(seed, patient.path(), size, costs);
            patient.restore_length(length);
        }
        for (std::size_t bit = 0; bit < 8 * size; bit += step) {
            patient.turn_bit(bit);
            measure(seed, patient.path(), size, costs);
            patient.restore_bit(bit);
        }
        return costs;
    }

    // `count` changes anywhere: one to four bits turned, or one time in eight a cut.
    Costs damage_at_random(const Seed& seed, int count, unsigned start) {
        Costs costs;
        Patient patient(folder_, read_file(seed.path));
        const std::size_t size = patient.content().size();
        std::mt19937 random(start);
        const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
        const Quiet quiet;
        for (int i = 0; i < count; ++i) {
            if (below(8) == 0) {
                const std::size_t length = below(size);
                patient.cut(length);
                measure(seed, patient.path(), size, costs);
                patient.restore_length(length);
                continue;
            }
            // Most of a large file is values: half of the bits are turned where the heads are.
            std::vector<std::size_t> bits(1 + below(4));
            for (std::size_t& bit : bits) {
                bit = below(8 * (below(2) == 0 ? size : std::min<std::size_t>(size, 2048)));
                patient.turn_bit(bit);
            }
            measure(seed, patient.path(), size, costs);
            for (const std::size_t bit : bits) {
                patient.restore_bit(bit);
            }
        }
        return costs;
    }

    void expect_bounded(const Seed& seed, const Costs& costs) {
        EXPECT_LT(costs.seconds, 1.0) << seed.name;
        EXPECT_LT(costs.bytes_per_byte, 16.0) << seed.name;
        EXPECT_EQ(costs.blocks_left, 0) << seed.name;
        std::printf("%-14s %8ld files, at most %.4f s and %.1f bytes of heap per byte over 1 MB\n", seed.name.c_str(),
                    costs.files, costs.seconds, costs.bytes_per_byte);
    }

    std::vector<Seed> small_seeds() {
        std::vector<Seed> seeds = model_seeds(folder_);
        for (const Seed& seed : measured_seeds(folder_)) {
            seeds.push_back(seed);
        }
        return seeds;
    }

    Folder folder_;
    ModelFile rotary_;
    ModelFile generic_;
};

// Damage to a file that is refused as it is would prove nothing.
TEST_F(DamagedFiles, models_are_sound_and_of_two_kilobytes_before) {
    const char* const tables[] = {"torque_ibeta", "torque_ibeta", "torque", "hysloss"};
    const char* const categories[] = {"dq_torque", "dq_torque", "harmonic_torque", "hysloss"};
    const std::vector<Seed> seeds = model_seeds(folder_);
    ASSERT_EQ(seeds.size(), std::size(tables));
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        SCOPED_TRACE(seeds[i].name);
        const std::size_t size = read_file(seeds[i].path).size();
        EXPECT_GT(size, 1600U);
        EXPECT_LT(size, 2300U);
        const AsciiSwitch ascii(seeds[i].forced_ascii);
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        EXPECT_EQ(kzb_reader(seeds[i].path.c_str(), store), 0);
        kzb_set_application("ALL", "", store);
        EXPECT_EQ(kzb_has_error(store), 0);
        EXPECT_GT(kzb_get_table_num_rows(categories[i], tables[i], 1, store), 1);
        kzb_finish(store);
    }
}

TEST_F(DamagedFiles, some_truncations_and_bits_of_small_files_are_survived) {
    constexpr std::size_t step = 61;  // prime, so that every bit of a byte gets its turn
    for (const Seed& seed : small_seeds()) {
        expect_bounded(seed, damage_by_steps(seed, step));
    }
}

TEST_F(DamagedFiles, every_truncation_and_every_bit_of_small_files_is_survived) {
    for (const Seed& seed : small_seeds()) {
        expect_bounded(seed, damage_by_steps(seed, 1));
    }
}

TEST_F(DamagedFiles, some_random_changes_of_large_files_are_survived) {
    for (const Seed& seed : large_seeds(folder_)) {
        expect_bounded(seed, damage_at_random(seed, 20, 1));
    }
}

TEST_F(DamagedFiles, every_one_of_twenty_thousand_random_changes_of_large_files_is_survived) {
    for (const Seed& seed : large_seeds(folder_)) {
        expect_bounded(seed, damage_at_random(seed, 10000, 2));
    }
}

void add_text(std::string& bytes, const std::string& text) {
    add_word(bytes, static_cast<int>(text.size()));
    bytes += text;
}

// A category that says how many entries it has, and has none or what follows.
void add_category(std::string& bytes, const std::string& name, const std::array<int, 4>& counts) {
    bytes += '*';
    add_text(bytes, name);
    for (const int count : counts) {
        add_word(bytes, count);
    }
    bytes += ",#";
}

// Files that are nothing but claims, of entries that never come and of tables without a body.
TEST_F(DamagedFiles, files_that_promise_much_take_memory_in_proportion) {
    constexpr int many = 4000;
    const std::string head = "$DORN-KZb,#\n";
    struct Promises {
        std::string bytes;
        double most;  // bytes of heap per byte over 1 MB
        int (*found)(KZB_STORE*);
    };
    Promises entries{head, 32.0, kzb_get_category_num};
    Promises tables{head, 80.0, [](KZB_STORE* store) { return kzb_get_table_num("c", store); }};
    add_category(tables.bytes, "c", {0, 0, 0, many});
    for (int i = 0; i < many; ++i) {
        // As many fewer of the third kind as there are more of the others.
        add_category(entries.bytes, std::to_string(i), {200, 200, -400, 0});
        add_text(tables.bytes, std::to_string(i));
        add_word(tables.bytes, 3);   // a table
        add_word(tables.bytes, -1);  // of no number of axes
    }
    const Seed binary{"promises", folder_ / "promises"};
    for (const Promises& file : {entries, tables}) {
        write_file(binary.path, file.bytes + "$end_of_kzb_file,#\n");
        Costs costs;
        int found = 0;
        {
            const Quiet quiet;
            KZB_STORE* store = nullptr;
            kzb_initialize(&store);
            kzb_reader(binary.path.c_str(), store);
            found = file.found(store);
            kzb_finish(store);
            measure(binary, binary.path, file.bytes.size(), costs);
        }
        EXPECT_GE(found, many);
        EXPECT_LT(costs.seconds, 1.0);
        EXPECT_LT(costs.bytes_per_byte, file.most);
        EXPECT_EQ(costs.blocks_left, 0);
        std::printf("%zu bytes: %.4f s, %.1f bytes of heap per byte over 1 MB\n", file.bytes.size(), costs.seconds,
                    costs.bytes_per_byte);
    }
}

}  // namespace
