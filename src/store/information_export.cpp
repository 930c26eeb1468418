#include "store/information_export.h"

#include <charconv>
#include <vector>

#include "store/format/file_sink.h"
#include "store/record_list.h"

namespace kzb {
namespace {

std::string number_text(double value) {
    constexpr int significant_digits = 6;
    char digits[64];
    return {digits,
            std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, significant_digits).ptr};
}

std::string element(const std::string& name, const std::string& content) {
    return '<' + name + '>' + content + "</" + name + '>';
}

std::string cdata(const std::string& text) {
    return "<![CDATA[" + text + "]]>";
}

struct KzbInfoItem {
    std::string name;
    std::string value;  // empty: none
    std::string unit;   // empty: none
};

struct KzbInfoList {
    std::string type;
    std::vector<KzbInfoItem> items;
};

class KzbInfoDocument {
  public:
    explicit KzbInfoDocument(const std::string& file_name) {
        line("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>");
        line("<GenericModelInfo>");
        line('\t' + element("filename", cdata(file_name)));
    }

    void add_counts(const std::vector<std::pair<std::string, int>>& counts) {
        line("\t<parameters>");
        for (const auto& [type, count] : counts) {
            line("\t\t<parameter type=\"" + type + "\">" + std::to_string(count) + "</parameter>");
        }
        line("\t</parameters>");
    }

    void add(const KzbInfoList& list) {
        line("\t<entry type=\"" + list.type + "\">");
        for (const KzbInfoItem& item : list.items) {
            add(item);
        }
        line("\t</entry>");
    }

    std::string closed() {
        line("</GenericModelInfo>");
        return text_;
    }

  private:
    void add(const KzbInfoItem& item) {
        line("\t\t<item>");
        line("\t\t\t" + element("name", cdata(item.name)));
        if (!item.value.empty()) {
            line("\t\t\t" + element("value", item.value));
        }
        if (!item.unit.empty()) {
            line("\t\t\t" + element("unit", item.unit));
        }
        line("\t\t</item>");
    }
    void line(const std::string& text) { text_ += text + '\n'; }

    std::string text_;
};

constexpr const char* sources = "input_port_list;source";
constexpr const char* coil_ports = "output_port_list;coil_fem";
constexpr const char* motions = "motion_condition_list;motion_condition";
constexpr const char* parameter_count = "num_user_specified_parameter";

int user_parameters(const KZB_STORE& store) {
    return get_int(store, parameter_count, parameter_count);
}

void add_counts(const KZB_STORE& store, KzbInfoDocument& document) {
    const auto count = [&](const char* path) { return record_count(store, path); };
    document.add_counts({
        {"total_input_ports", count(sources) + count(coil_ports) + count(motions)},
        {"elec_output_ports", count(coil_ports) + count("output_port_list;resistor") +
                                  count("output_port_list;coil_const") + count("output_port_list;capacitor")},
        {"vprobe_output_ports", count("output_port_list;voltage_probe")},
        {"torque_force_output_ports", count(motions)},
        {"ironloss_output_ports", has_parameter(store, "ironloss", "table") ? 1 : 0},
        {"userparam_output_ports", user_parameters(store)},
    });
}

void add_sources(const KZB_STORE& store, KzbInfoDocument& document) {
    KzbInfoList list{"InputSource", {}};
    for (const Record& record : records_of(store, sources)) {
        list.items.push_back({std::to_string(record.integer("terminal_id")), "", ""});
    }
    if (!list.items.empty()) {
        document.add(list);
    }
}

// One list of a group of records: their names, a value each and its unit.
void add_values(const std::vector<Record>& group, const char* type, const char* key, const char* unit,
                KzbInfoDocument& document, double offset = 0.0) {
    if (group.empty()) {
        return;
    }
    KzbInfoList list{type, {}};
    for (const Record& record : group) {
        list.items.push_back({record.text("name"), number_text(record.number(key) - offset), unit});
    }
    document.add(list);
}

void add_elements(const KZB_STORE& store, KzbInfoDocument& document) {
    constexpr double zero_celsius = 273.15;  // K
    const auto of_type = [&](int type) {
        std::vector<Record> group;
        for (const Record& record : records_of(store, "element_type_list;element_type")) {
            if (record.integer("type") == type) {
                group.push_back(record);
            }
        }
        return group;
    };
    const std::vector<Record> coils = of_type(1);
    add_values(coils, "FEMCoil_res", "resistance", "Ohm", document);
    add_values(coils, "AdvancedFEMCoilCoef", "coef_flux", "", document);
    add_values(coils, "AdvancedTurnCoef", "coef_turns2", "", document);
    add_values(coils, "AdvancedBaseTemp", "base_temperature", "C", document, zero_celsius);
    add_values(coils, "AdvancedTempCoef", "coef_temperature", "ppm/C", document);
    add_values(of_type(-1), "Resistance", "resistance", "Ohm", document);
    add_values(of_type(-2), "Capacitance", "capacitance", "F", document);
    add_values(of_type(-3), "Inductance", "inductance", "H", document);
}

void add_motions(const KZB_STORE& store, KzbInfoDocument& document) {
    const std::vector<Record> records = records_of(store, motions);
    if (records.empty()) {
        return;
    }
    KzbInfoList positions{"MotionInitPos", {}};
    for (const Record& record : records) {
        positions.items.push_back({record.text("name"), "0", record.integer("type") != 0 ? "rad" : "m"});
    }
    document.add(positions);
    add_values(records, "AdvancedTorqueCoef", "coef_force", "", document);
}

void add_user_parameters(const KZB_STORE& store, KzbInfoDocument& document) {
    const int count = user_parameters(store);
    if (count <= 0) {
        return;
    }
    KzbInfoList list{"AdvancedUserOutputCoef", {}};
    // A stated count without categories behind it isn't written out.
    constexpr int unbacked = 4096;
    const int most = std::max(static_cast<int>(store.categories.size()), unbacked);
    for (int i = 1; i <= std::min(count, most); ++i) {
        const std::string category = "user_specified_parameter" + std::to_string(i);
        const char* const title = get_string(store, category, "title");
        list.items.push_back(
            {title == nullptr ? "" : title, number_text(get_double(store, category, "coef_output_port")), ""});
    }
    document.add(list);
}

constexpr int error_output_file = 90032;

}  // namespace

std::string information_document(const KZB_STORE& store) {
    KzbInfoDocument document(store.input_path);
    add_counts(store, document);
    add_sources(store, document);
    add_elements(store, document);
    add_motions(store, document);
    add_user_parameters(store, document);
    return document.closed();
}

int export_information(KZB_STORE& store, const char* path) {
    if (!has_application(store, "Generic", "")) {
        return 1;
    }
    const std::string text = information_document(store);
    FileSink file(path == nullptr ? "" : path);
    if (!file.is_open()) {
        store.error = error_output_file;
        return 1;
    }
    file.put(text);
    file.close();  // a write that fails is silent, as established
    return 0;
}

}  // namespace kzb
