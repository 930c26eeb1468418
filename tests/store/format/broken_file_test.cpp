// Every truncation and every changed byte of a small file: no crash, no hang, no memory beyond what the file can back.
#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

class BrokenFile : public ModelFile {
  protected:
    static std::string binary_file() {
        return Bytes()
            .head()
            .category("control", 1, 1, 1, 1)
            .int_entry("poles", 8)
            .double_entry("length", 0.1)
            .string_entry("title", "text")
            .sample_table("k")
            .category("parameter", 0, 0, 0, 1)
            .table_entry("l", {2}, {0}, {1, 2}, {{3, 4}})
            .end()
            .str();
    }
    static std::string ascii_bytes() {
        return ascii_file("*control,1,1,1,1,#\npoles,int,8,#\nlength,double,0.1,#\ntitle,string,4,\"text\",#\n" +
                          sample_table_ascii("k") + "*parameter,0,0,0,1,#\nl,table,1,2,0,\n2,\n1 2\n2,\n3 4\n,#\n");
    }
    // Both stages and both writers; returns the result of the first stage.
    int survive(const std::string& bytes) {
        KZB_STORE store;
        const std::string file = write(bytes);
        int result = 0;
        captured([&] {
            result = read_model_file(store, file.c_str());
            store.motor = "ALL";
            read_tables(store);
            return 0;
        });
        std::size_t held = 0;
        for (const KZB_CATEGORY& category : store.categories) {
            EXPECT_LT(category.name.size(), name_limit);
            for (const KZB_TABLE& found : category.tables) {
                held += found.values.size();
                for (const ZeroedArray& grid : found.axes) {
                    held += grid.size();
                }
                EXPECT_TRUE(found.total == 0 || found.values.size() == static_cast<std::size_t>(found.total));
            }
        }
        // Values: those in the file, as many bytes again and 65536; grids: no more than the values.
        EXPECT_LE(8 * held, 2 * (2 * bytes.size() + 65536));
        EXPECT_TRUE(write_binary(store, path("out")));
        std::filesystem::remove(path("out"));
        EXPECT_TRUE(write_ascii(store, path("out")));
        std::filesystem::remove(path("out"));
        return result;
    }
    // Too short for the mark "$DORN-KZ", it is an old file without a section.
    void survive_truncations(const std::string& bytes, std::size_t needed) {
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_EQ(survive(bytes.substr(0, length)), length >= 8 && length < needed ? 1 : 0) << length;
        }
        EXPECT_EQ(survive(bytes), 0);
    }
    void survive_changes(const std::string& bytes) {
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff, int{'*'}, int{','}, int{'#'}, int{'9'}, int{'-'}}) {
                std::string changed = bytes;
                changed[at] = static_cast<char>(value);
                survive(changed);
                if (HasFailure()) {
                    FAIL() << "byte " << at << " = " << value;
                }
            }
        }
    }
};

TEST_F(BrokenFile, cut_binary_file_fails) {
    survive_truncations(binary_file(), binary_file().size());
}
// The end word of the ascii form counts as seen from its comma on.
TEST_F(BrokenFile, cut_ascii_file_fails) {
    survive_truncations(ascii_bytes(), ascii_bytes().size() - 2);
}
TEST_F(BrokenFile, changed_byte_of_a_binary_file_does_no_harm) {
    survive_changes(binary_file());
}
TEST_F(BrokenFile, changed_byte_of_an_ascii_file_does_no_harm) {
    survive_changes(ascii_bytes());
}
TEST_F(BrokenFile, every_value_of_every_byte_of_a_binary_table_does_no_harm) {
    const std::string before = Bytes().head().category("control", 0, 0, 0, 1).str();
    const std::string entry = Bytes().sample_table("k").str();
    for (std::size_t at = 0; at < 30; ++at) {
        for (int value = 0; value < 256; ++value) {
            std::string changed = entry;
            changed[at] = static_cast<char>(value);
            survive(before + changed + "$end_of_kzb_file,#\n");
        }
    }
}

}  // namespace
}  // namespace kzb::test
