// Listing and loading a model file of 100 MB, beside the plain reading of the same bytes.
//
//   list/product   kzb_initialize, kzb_reader, kzb_finish: every category and placeholder, no table body
//   list/fread     fread of the whole file into touched memory
//   load/product   kzb_set_application("ALL"): every table body
//   load/fread     fread of the bytes of these bodies into touched memory
//
// The file is a Harmonic machine of fifteen categories whose flux, inductance and torque tables are 100 MB together;
// it is made in the temporary directory, read from the page cache, and removed at the end. Touched memory was written
// before and is used again, so the plain reading pays for no page fault while the product takes fresh pages; the
// reading into fresh memory stands beside (load/fread_fresh).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "bench/program.h"
#include "bench/reference/sample_machine.h"
#include "bench/reference/store.h"

namespace {

constexpr std::size_t doubles_of_file = 100'000'000 / sizeof(double);

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void make_table(const char* category, const char* key, int components, double share, kzb_reference::Store& store) {
    constexpr int amplitudes = 61;
    constexpr int angles = 61;
    const double wanted = share * static_cast<double>(doubles_of_file) / amplitudes / angles / components;
    const int sizes[] = {amplitudes, static_cast<int>(wanted), angles, components};
    kzb_reference::Table& table = kzb_reference::kzb_create_table(category, key, 4, sizes, store);
    for (int a = 0; a < 4; ++a) {
        for (int i = 0; i < sizes[a]; ++i) {
            kzb_reference::table_set_axis_value(table, a + 1, i, i);
        }
    }
    for (int flat = 0; flat < table.total; ++flat) {
        table.values[flat] = flat * 1e-6;
    }
}

class BigFile {
  public:
    BigFile() {
        kzb_reference::Store store;
        kzb_reference::make_sample_machine({}, store);
        make_table("current_flux", "flux", 3, 0.25, store);
        make_table("harmonic_inductance", "inductance", 9, 0.65, store);
        make_table("harmonic_torque", "torque_ibeta", 1, 0.1, store);
        path_ = std::filesystem::temp_directory_path() / ("kzb_load_" + std::to_string(getpid()) + ".kzb");
        if (kzb_reference::write_model_file(path_.c_str(), store)) {
            bytes_ = static_cast<std::size_t>(std::filesystem::file_size(path_));
        }
        for (int c = 0; c < store.category_count; ++c) {
            for (int t = 0; t < store.categories[c].table_count; ++t) {
                const kzb_reference::Table& table = store.categories[c].tables[t];
                body_bytes_ += static_cast<std::size_t>(table.total) * sizeof(double);
                for (int a = 0; a < table.dim; ++a) {
                    body_bytes_ += static_cast<std::size_t>(table.sizes[a]) * sizeof(double);
                }
            }
        }
    }
    ~BigFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    BigFile(const BigFile&) = delete;
    BigFile& operator=(const BigFile&) = delete;
    const char* path() const { return path_.c_str(); }
    std::size_t bytes() const { return bytes_; }
    std::size_t body_bytes() const { return body_bytes_; }

  private:
    std::filesystem::path path_;
    std::size_t bytes_ = 0;
    std::size_t body_bytes_ = 0;
};

BigFile& big_file() {
    static BigFile file;
    return file;
}

void list_product(benchmark::State& state) {
    const char* const path = big_file().path();
    for (auto _ : state) {
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        if (kzb_reader(path, store) != 0) {
            state.SkipWithError("the file does not read");
        }
        benchmark::DoNotOptimize(kzb_get_category_num(store));
        kzb_finish(store);
    }
    state.counters["file_MB"] = static_cast<double>(big_file().bytes()) * 1e-6;
}

void read_bytes(benchmark::State& state, std::size_t bytes, bool fresh) {
    std::unique_ptr<char[]> buffer(fresh ? nullptr : new char[bytes]);
    if (buffer) {
        std::memset(buffer.get(), 1, bytes);
    }
    for (auto _ : state) {
        if (fresh) {
            buffer.reset(new char[bytes]);
        }
        const std::unique_ptr<std::FILE, Close> file(std::fopen(big_file().path(), "rb"));
        if (!file || std::fread(buffer.get(), 1, bytes, file.get()) != bytes) {
            state.SkipWithError("the file does not read");
        }
        benchmark::ClobberMemory();
    }
}

void load_product(benchmark::State& state) {
    const char* const path = big_file().path();
    for (auto _ : state) {
        state.PauseTiming();
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        const bool read = kzb_reader(path, store) == 0;
        state.ResumeTiming();
        kzb_set_application("ALL", "", store);
        state.PauseTiming();
        const int last[] = {60, 0, 60, 2};
        if (!read || kzb_get_table_value("current_flux", "flux", last, store) == 0.0) {
            state.SkipWithError("the bodies do not load");
        }
        kzb_finish(store);
        state.ResumeTiming();
    }
    state.counters["body_MB"] = static_cast<double>(big_file().body_bytes()) * 1e-6;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::RegisterBenchmark("list/product", list_product)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("list/fread", [](benchmark::State& state) {
        read_bytes(state, big_file().bytes(), false);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("load/product", load_product)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("load/fread", [](benchmark::State& state) {
        read_bytes(state, big_file().body_bytes(), false);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("load/fread_fresh", [](benchmark::State& state) {
        read_bytes(state, big_file().body_bytes(), true);
    })->Unit(benchmark::kMillisecond);
    return kzb_bench::run_registered(argc, argv);
}
