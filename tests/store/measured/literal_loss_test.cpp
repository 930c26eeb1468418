// Random loss table files, whole and damaged, added by the library and by the literal reader to the same model: the
// stores, the results and the printed texts are the same.
#include "store/measured/literal_loss.h"

#include <random>

#include "store/measured/measured_store.h"

namespace {

using namespace kzb_test;

// Files from a seed, and the model that they are for.
class Case {
  public:
    explicit Case(unsigned seed) : random_(seed), motor_(below(4)) {}
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return below(count) == 0; }
    bool generic() const { return motor_ == 0; }

    // The same puts into both stores.
    void model(KZB_STORE* store, literal::Store& plain) {
        const auto put = [&](const std::string& category, const std::string& key, int value) {
            kzb_put_int(category.c_str(), key.c_str(), value, store);
            plain.put_int(category, key, value);
        };
        const auto name = [&](const std::string& category, const std::string& value) {
            kzb_put_string(category.c_str(), "name", value.c_str(), store);
            plain.put_string(category, "name", value);
        };
        put("control", "motor_type", motor_ == 0 ? 10008 : motor_ == 3 ? 10006 : 10000);
        put("parameter", "any", 1);
        if (motor_ == 1 || motor_ == 2) {
            put("harmonic_inductance", "any", 1);
            put("current_flux", "any", 1);
            put(motor_ == 1 ? "harmonic_torque" : "pmsm_torque", "any", 1);
        } else if (motor_ == 3) {
            put("InductionParam", "any", 1);
        } else {
            for (int i = 0; i < 3; ++i) {
                if (one_in(10)) {
                    continue;  // a gap in the numbers
                }
                const std::string motion = literal::flat({{"motion_condition_list", 0}, {"motion_condition", i}});
                name(motion, i == 1 ? "same" : "motion" + std::to_string(i));
                put(motion, "id", 20 + i);
                const std::string set = literal::flat({{"element_set_list", 0}, {"coil_set", i}});
                name(set, i == 1 ? "same" : "set" + std::to_string(i));
                put(set, "id", 40 + i);
                put(set, "type", one_in(4) ? 0 : 1);
                put(set, "ref_coil_set_id", one_in(4) ? 1 : 0);
                if (one_in(3)) {
                    put(literal::flat({{"input_port_list", 0}, {"user_input", i}}), "id", i + 1);
                }
            }
        }
    }

    std::string file() {
        const int axes = !generic() ? 5 : 1 + below(4);
        std::string text;
        for (int i = generic() ? below(axes + 2) : 0; i > 0; --i) {
            text += description(axes);
        }
        std::vector<std::vector<std::string>> nodes(static_cast<std::size_t>(axes));
        std::vector<std::string> lines(1);
        for (auto& axis : nodes) {
            double node = below(20) - 10;
            for (int size = 1 + below(axes == 5 ? 2 : 3); size > 0; --size) {
                axis.push_back(number(node));
                node += one_in(12) ? 0.6e-10 : 0.5 + below(10);
            }
            std::vector<std::string> longer;
            for (const std::string& line : lines) {
                for (const std::string& value : axis) {
                    longer.push_back(line + value + pick({" ", ",", ", ", " ,, "}));
                }
            }
            lines = longer;
        }
        std::shuffle(lines.begin(), lines.end(), random_);
        for (const std::string& line : lines) {
            if (one_in(20)) {
                text += pick({"$ a comment\n", "\n", " \t\n", ",,\n", "$\n"});
            }
            text += pick({"", "", " ", "\t"}) + line + number(below(1000) / 10.0) +
                    pick({"\n", "\n", " \n", ",\n", "\t\n"});
        }
        if (one_in(5)) {
            text += "$ the end" + pick({"", "\n"});
        }
        for (int damages = one_in(2) ? 1 + below(2) : 0; damages > 0 && !text.empty(); --damages) {
            damage(text);
        }
        return text;
    }

  private:
    std::string pick(const std::vector<std::string>& choices) {
        return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }
    std::string number(double value) {
        if (one_in(400)) {
            return pick({"1.0abc", "+4",       "0x10",    "1e",      "nan", "inf", "-INF",    "1e400",
                         "1e-400", ".5",       "5.",      "--1",     "NaN", "1d3", "+",       ".",
                         "1e+",    "infinity", "nan(12)", "1,000.5", "+-1", "1e5", "4.9e-324"});
        }
        char text[40];
        std::snprintf(text, sizeof text, "%.12g", value);
        return text;
    }
    std::string description(int axes) {
        const std::string type = pick({"Speed", "Current", "Phase", "Voltage", "speed"});
        const std::string name = type == "Speed" ? pick({"motion0", "same", "motion2", "none"})
                                                 : pick({"set0", "same", "set2", "set0", "set2", "none"});
        std::vector<std::string> fields = {"reference_name=\"" + name + "\"", "type=\"" + type + "\"",
                                           "index=\"" + std::to_string(below(axes + 1)) + "\"",
                                           pick({"periodic=\"1\"", "periodic=0", "periodic=\"0\"", "other=\"x\""})};
        std::shuffle(fields.begin(), fields.end(), random_);
        if (one_in(10)) {
            fields.pop_back();
        }
        if (one_in(40)) {
            fields.push_back(
                pick({"index=\"-1\"", "index=\"x\"", "index=\"1.5\"", "periodic=\"+2\"", "type=\"\"", "="}));
        }
        std::string line = "#";
        for (std::size_t i = 0; i < fields.size(); ++i) {
            line += (i == 0 ? "" : ",") + fields[i];
        }
        return line + "\n";
    }
    void damage(std::string& text) {
        static const std::string bytes("\n,$# \t\0\xff-0129.eE", 17);
        const auto at = static_cast<std::size_t>(below(static_cast<int>(text.size())));
        const char byte = bytes[static_cast<std::size_t>(below(static_cast<int>(bytes.size())))];
        switch (below(6)) {
            case 0:
                text[at] = byte;
                break;
            case 1:
                text.insert(at, 1, byte);
                break;
            case 2:
                text.erase(at, 1);
                break;
            case 3:
                text.erase(at, static_cast<std::size_t>(below(40)));
                break;
            case 4:
                text.resize(at);
                break;
            default:
                text.insert(at, std::string(static_cast<std::size_t>(below(2500)), pick({" ", "1", "$"})[0]));
        }
    }

    std::mt19937 random_;
    int motor_;
};

class LiteralLoss : public Measured {};

TEST_F(LiteralLoss, random_files_are_added_as_the_literal_reader_adds_them) {
    int added = 0;
    std::vector<int> errors;
    for (unsigned seed = 0; seed < 6000; ++seed) {
        SCOPED_TRACE(seed);
        Case example(seed);
        TestStore store;
        literal::Store plain;
        example.model(store, plain);
        for (int reads = 1 + example.below(2); reads > 0; --reads) {
            const std::string text = example.file();
            const std::string path = file(text);
            literal::Store before = plain;
            const bool copper = example.one_in(4);
            const int expected = copper ? literal::add_copper_loss_table(plain, path.c_str())
                                        : literal::add_loss_table(plain, path.c_str());
            if (expected != 0) {  // a file that is refused leaves nothing but its error
                before.error = plain.error;
                plain = before;
            }
            testing::internal::CaptureStderr();
            const int result = copper ? kzb_add_equivalent_copper_loss_resistance_table(path.c_str(), store)
                                      : kzb_add_loss_table(path.c_str(), store);
            const std::string printed = testing::internal::GetCapturedStderr();
            std::filesystem::remove(path);
            ASSERT_EQ(result, expected) << text << "\n" << plain.error << " " << kzb_has_error(store);
            ASSERT_EQ(literal::content(*store), literal::content(plain)) << text;
            ASSERT_EQ(printed, "") << text;
            added += result == 0 ? 1 : 0;
            errors.push_back(plain.error);
        }
    }
    EXPECT_GT(added, 2000);
    for (const int code : {90023, 90024, 90025, 90026, 90027, 90028, 90029, 90031}) {
        EXPECT_GT(std::count(errors.begin(), errors.end(), code), 5) << code;
    }
}

}  // namespace
