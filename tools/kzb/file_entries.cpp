#include "kzb/file_entries.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "store/format/ascii_tokens.h"
#include "store/format/file_marks.h"
#include "store/format/file_source.h"
#include "store/store.h"

namespace kzb::tool {

namespace {

constexpr std::array<const char*, 4> entry_kinds = {"int", "double", "string", "table"};

class BinaryEntries {
  public:
    explicit BinaryEntries(FileSource& source) : source_(source) {}

    std::vector<FileEntry> read() {
        source_.skip(static_cast<std::int64_t>(binary_head.size()));
        while (source_.get() == '*' && read_category()) {
        }
        return std::move(entries_);
    }

  private:
    std::optional<std::string> take_name() {
        int length = -1;
        if (!source_.take(length) || length < 0 || length >= static_cast<int>(name_limit)) {
            return std::nullopt;
        }
        std::string name(static_cast<std::size_t>(length), '\0');
        if (source_.read(name.data(), name.size()) != name.size()) {
            return std::nullopt;
        }
        return std::string(up_to_nul(name));
    }

    bool take_terminator() {
        char bytes[2] = {};
        return source_.read(bytes, 2) == 2 && bytes[0] == ',' && bytes[1] == '#';
    }

    bool skip_counted(std::int64_t width) {
        int count = -1;
        if (!source_.take(count) || count < 0 || width * count > source_.remaining()) {
            return false;
        }
        source_.skip(width * count);
        return true;
    }

    bool read_category() {
        const std::optional<std::string> name = take_name();
        std::int64_t total = 0;
        for (std::size_t kind = 0; kind < entry_kinds.size(); ++kind) {
            int count = -1;
            if (!source_.take(count) || count < 0) {
                return false;
            }
            total += count;
        }
        bool sound = name && take_terminator();
        for (; total > 0 && sound; --total) {
            sound = read_entry(*name);
        }
        return sound;
    }

    bool read_entry(const std::string& category) {
        const std::optional<std::string> key = take_name();
        int type = -1;
        if (!key || key->empty() || !source_.take(type) || type < 0 || type >= static_cast<int>(entry_kinds.size())) {
            return false;
        }
        FileEntry entry{category, *key, entry_kinds[static_cast<std::size_t>(type)], false};
        bool sound = true;
        if (type == type_table) {
            sound = skip_table(entry.placeholder);
        } else if (type == type_string) {
            sound = skip_counted(1);
        } else {
            source_.skip(type == type_int ? 4 : 8);
        }
        entries_.push_back(std::move(entry));
        return sound && take_terminator();
    }

    // One axis, one row, one value, and behind the count of nodes the mark that ends the table. With a node of those
    // bytes the mark would stand eight bytes later.
    bool at_placeholder() {
        constexpr std::size_t head = 7 * sizeof(std::int32_t);  // dim, rows, flag, count, value (two words), count
        const std::string_view ahead = source_.peek(head + 10);
        std::array<std::int32_t, 7> words{};
        if (ahead.size() < head + 2) {
            return false;
        }
        std::memcpy(words.data(), ahead.data(), head);
        return words[0] == 1 && words[1] == 1 && words[3] == 1 && words[6] == 1 && ahead.substr(head, 2) == ",#" &&
               (ahead.size() < head + 10 || ahead.substr(head + 8) != ",#");
    }

    bool skip_table(bool& placeholder) {
        placeholder = at_placeholder();
        if (placeholder) {
            source_.skip(7 * sizeof(std::int32_t));
            return true;
        }
        int dim = -1;
        if (!source_.take(dim) || dim < 0) {
            return false;
        }
        source_.skip(8 * static_cast<std::int64_t>(dim));  // sizes and flags
        for (std::int64_t block = 0; block <= dim; ++block) {
            if (!skip_counted(8)) {
                return false;
            }
        }
        return true;
    }

    FileSource& source_;
    std::vector<FileEntry> entries_;
};

class AsciiEntries {
  public:
    explicit AsciiEntries(FileSource& source) : source_(source) {}

    std::vector<FileEntry> read() {
        int byte = source_.get();
        while (byte >= 0) {
            byte = byte == '*' && !read_category() ? -1 : source_.get();
        }
        return std::move(entries_);
    }

  private:
    bool read_category() {
        std::string name;
        std::int64_t total = 0;
        bool sound = take_token(source_, name);
        for (std::size_t kind = 0; kind < entry_kinds.size() && sound; ++kind) {
            int count = 0;
            sound = take_int(source_, count) && count >= 0;
            total += count;
        }
        sound = sound && source_.get() == '#';
        for (; total > 0 && sound; --total) {
            sound = read_entry(name);
        }
        return sound;
    }

    bool read_entry(const std::string& category) {
        std::string key;
        std::string kind;
        if (!take_token(source_, key) || !take_token(source_, kind)) {
            return false;
        }
        entries_.push_back({category, key, kind, false});
        if (kind == "table") {
            return skip_table() && source_.get() == ',' && source_.get() == '#';
        }
        if (kind == "string") {
            int length = 0;
            if (!take_int(source_, length)) {
                return false;
            }
            source_.get();  // the opening quote
            int byte = source_.get();
            for (std::int64_t left = length; left > 0 && byte >= 0 && byte != '"'; --left) {
                byte = source_.get();
            }
            return source_.get() == ',' && source_.get() == '#';
        }
        std::string value;
        return take_token(source_, value) && source_.get() == '#';
    }

    bool skip_table() {
        int dim = 0;
        int ignored = 0;
        bool sound = take_int(source_, dim);
        for (std::int64_t left = 2 * std::int64_t{dim}; left > 0 && sound; --left) {
            sound = take_int(source_, ignored);
        }
        source_.get();  // the line feed
        for (std::int64_t block = 0; block <= dim && sound; ++block) {
            for (std::int64_t left = block_lines(take_count(source_)); left > 0 && sound; --left) {
                sound = !source_.line(line_limit).empty();
            }
        }
        return sound;
    }

    FileSource& source_;
    std::vector<FileEntry> entries_;
};

}  // namespace

std::vector<FileEntry> entries_of_file(const std::string& path, bool ascii) {
    FileSource source(path.c_str());
    if (!source.is_open() || source.peek(form_mark.size()) != form_mark) {
        return {};
    }
    if (ascii) {
        source.read_as_text();
        return AsciiEntries(source).read();
    }
    return BinaryEntries(source).read();
}

}  // namespace kzb::tool
