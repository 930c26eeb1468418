#include "faults/models.h"

#include <cstring>
#include <stdexcept>

#include "interface/generic_machine.h"
#include "interface/measured_text.h"
#include "support/quiet.h"

namespace kzb_test {

void fill_rotary(ModelFile& file) {
    const Point angles = every(60.0, 0.0, 180.0);
    const Point fluxes{-100.0, 100.0};
    rotary_frame(file, 7, 0.5);
    file.text("information", "title", "モータ")
        .table("dq_inductance", "d_inductance", {betas, currents}, constant(2e-3))
        .table("dq_inductance", "q_inductance", {betas, currents}, constant(3e-3))
        .number("d_flux", "d_flux", 0.1)
        .table("current_flux", "flux", {currents, betas, angles, three},
               [](const Point& x) { return sine_flux(0.1, x[2], x[3]); }, {3})
        .table("harmonic_inductance", "inductance", {currents, betas, angles, nine}, symmetric_matrix(2e-3, 1e-4), {3})
        .table("harmonic_torque", "torque_ibeta", {betas, angles, currents}, constant(1.5), {2})
        .table("flux_table", "fd_noload", {angles}, constant(0.1), {1})
        .table("flux_table", "fq_noload", {angles}, constant(0.0), {1})
        .table("flux_table", "f0_noload", {angles}, constant(0.0), {1})
        .table("flux_table", "f0_ibeta", {currents, betas, angles}, constant(0.0), {3})
        .table("current_table", "id", {fluxes, fluxes, angles}, [](const Point& x) { return 500.0 * (x[0] - 0.1); },
               {3})
        .table("current_table", "iq", {fluxes, fluxes, angles}, [](const Point& x) { return 500.0 * x[1]; }, {3})
        .integer("hysloss", "numMat", 1)
        .integer("hysloss", "matID1", 4)
        .integer("eddyloss", "matID1", 4)
        .table("hysloss", "hysloss4", {currents, betas, {0.0, 10000.0}}, constant(3.0))
        .table("eddyloss", "eddyloss4", {currents, betas, {0.0, 10000.0}}, constant(7.0));
    kzb_make_UVW_from_dq0(file.store());
    kzb_make_UVW_from_dq0_current(file.store());
}

void fill_generic(ModelFile& file) {
    generic_machine(file);
    add_generic_outputs(file);
    add_generic_iron_loss(file);
}

CallFiles write_call_files(const Folder& folder, const std::string& model) {
    CallFiles files{
        model, folder / "correction", folder / "losses", folder / "generic", folder / "copper", folder / "document"};
    write_file(files.correction, correction_file(everywhere("Torque", "1.5") + everywhere("Inductance", "0.5")));
    std::string losses = "$ amplitude phase speed voltage carrier loss\n";
    for (const char* const point : {"0 0", "0 360", "100 0", "100 360"}) {
        losses += std::string(point) + " 0 300 10000 2.5\n" + point + " 3000 300 10000 4.5\n";
    }
    write_file(files.losses, losses);
    write_file(files.copper_losses, losses);
    write_file(files.generic_losses,
               "#reference_name=\"shaft\",type=\"Speed\",index=\"0\",periodic=\"0\"\n"
               "#reference_name=\"winding set\",type=\"Current\",index=\"1\",periodic=\"0\"\n"
               "#reference_name=\"bus\",type=\"Voltage\",index=\"2\",periodic=\"0\"\n"
               "0 0 0 1\n0 0 9 2\n0 5 0 3\n0 5 9 4\n8 0 0 5\n8 0 9 6\n8 5 0 7\n8 5 9 8\n");
    return files;
}

KZB_STORE* loaded_store(const std::string& path) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    if (kzb_reader(path.c_str(), store) != 0) {
        throw std::runtime_error("unreadable model");
    }
    kzb_set_application("ALL", "", store);
    return store;
}

namespace {

void add_bytes(std::string& text, const void* bytes, std::size_t size) {
    text.append(static_cast<const char*>(bytes), size);
}
void add_number(std::string& text, double number) {
    add_bytes(text, &number, sizeof number);
}

void add_table(std::string& text, const char* category, const char* key, KZB_STORE* store) {
    const int dim = kzb_get_table_dim(category, key, store);
    std::vector<int> sizes;
    for (int axis = 1; axis <= dim; ++axis) {
        sizes.push_back(kzb_get_table_num_rows(category, key, axis, store));
        add_number(text, sizes.back());
        add_number(text, kzb_get_table_cyclic_flag(category, key, axis, store));
        for (int i = 0; i < sizes.back(); ++i) {
            add_number(text, kzb_get_table_axis_value(category, key, axis, i, store));
        }
    }
    std::vector<int> at(sizes.size(), 0);
    for (std::size_t a = 1; a != 0 && dim > 0;) {
        add_number(text, kzb_get_table_value(category, key, at.data(), store));
        for (a = at.size(); a > 0 && ++at[a - 1] >= sizes[a - 1]; --a) {
            at[a - 1] = 0;
        }
    }
}

}  // namespace

std::string content_of(KZB_STORE* store) {
    const Quiet quiet;  // a table without values tells of each
    const int error = kzb_has_error(store);
    std::string text;
    for (int c = 0; c < kzb_get_category_num(store); ++c) {
        const char* const category = kzb_get_category_name(c, store);
        text.append(category).append("\n");
        for (int i = 0; i < kzb_get_int_num(category, store); ++i) {
            const char* const key = kzb_get_int_keyword(category, i, store);
            text.append(key).append("=");
            add_number(text, kzb_get_int(category, key, store));
        }
        for (int i = 0; i < kzb_get_double_num(category, store); ++i) {
            const char* const key = kzb_get_double_keyword(category, i, store);
            text.append(key).append("=");
            add_number(text, kzb_get_double(category, key, store));
        }
        for (int i = 0; i < kzb_get_string_num(category, store); ++i) {
            const char* const key = kzb_get_string_keyword(category, i, store);
            text.append(key).append("=").append(kzb_get_string(category, key, store)).append("\n");
        }
        for (int i = 0; i < kzb_get_table_num(category, store); ++i) {
            const char* const key = kzb_get_table_keyword(category, i, store);
            text.append(key).append("=");
            add_table(text, category, key, store);
        }
    }
    if (error == 0) {
        kzb_reset_error(store);  // an axis without nodes leaves one
    }
    return text;
}

}  // namespace kzb_test
