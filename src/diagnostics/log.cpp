#include "diagnostics/log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/own_file.h"

namespace kzb {
namespace {

struct KZLogData {
    std::string key;
    std::string value;
    std::optional<std::string> type;
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct KZLogger {
    std::optional<std::string> version;
    std::optional<std::string> encoding;
    std::optional<std::string> module;
    std::string category;
    std::vector<std::string> comments;  // pending, of the next message above level 0
    std::vector<KZLogData> data;        // likewise
    std::string buffer;                 // the formatted text
    std::string path;
    std::unique_ptr<std::FILE, CloseFile> stream;
    bool append = false;
    bool echo_stdout = false;
    bool echo_stderr = false;
    int (*on_fatal)(int) = nullptr;
};

// The one mutable global of the library, and its lock.
std::unique_ptr<KZLogger> logger;
std::mutex lock;
using Locked = std::lock_guard<std::mutex>;

constexpr const char* level_names[] = {"Debug", "Message", "Warning", "Error"};
constexpr const char* format_version = "0.3";

std::unique_ptr<std::FILE, CloseFile> open_file(const std::string& path, const char* mode) {
    return std::unique_ptr<std::FILE, CloseFile>(open_own_file(path.c_str(), mode));
}

void write_tag(std::FILE* out, const char* tag, const std::string& text) {
    std::fprintf(out, "\t<%s>%s</%s>\n", tag, text.c_str(), tag);
}

void write_element(std::FILE* out, int level, int code) {
    std::fputs("<message>\n", out);
    write_tag(out, "code", std::to_string(code));
    write_tag(out, "status", level_names[level]);
    if (logger->module) {
        write_tag(out, "module", *logger->module);
    }
    if (logger->version) {
        write_tag(out, "version", *logger->version);
    }
    if (!logger->category.empty()) {
        write_tag(out, "category", logger->category);
    }
    write_tag(out, "text", logger->buffer);
    for (const KZLogData& item : logger->data) {
        if (item.type) {
            std::fprintf(out, "\t<data key=\"%s\" type=\"%s\">", item.key.c_str(), item.type->c_str());
        } else {
            std::fprintf(out, "\t<data key=\"%s\">", item.key.c_str());
        }
        std::fprintf(out, "%s</data>\n", item.value.c_str());
    }
    if (!logger->comments.empty()) {
        std::fputs("\t<comment>\n", out);
        for (const std::string& line : logger->comments) {
            std::fprintf(out, "\t%s\n", line.c_str());
        }
        std::fputs("\t</comment>\n", out);
    }
    std::fputs("</message>\n", out);
}

void write_short_form(int level, int code) {
    std::fprintf(stderr, "%s:%d\n", level_names[level], code);
    for (const KZLogData& item : logger->data) {
        std::fprintf(stderr, "Data:%s:%s\n", item.key.c_str(), item.value.c_str());
    }
}

void write_long_form(int level, int code) {
    if (level == level_warning) {
        std::fputs("WARNING \n", stdout);
    } else if (level == level_error) {
        std::fputs("ERROR \n", stdout);
    }
    if (level > level_debug) {
        std::fprintf(stdout, "code : %d\n", code);
    }
    std::fprintf(stdout, "%s\n", logger->buffer.c_str());
    for (const KZLogData& item : logger->data) {
        std::fprintf(stdout, "%s: ", item.key.c_str());
        if (item.type) {
            std::fprintf(stdout, "%s:", item.type->c_str());
        }
        std::fprintf(stdout, "%s\n", item.value.c_str());
    }
    if (level > level_debug) {
        for (const std::string& line : logger->comments) {
            std::fprintf(stdout, "%s\n", line.c_str());
        }
    }
}

void drop_pending() {
    logger->comments.clear();
    logger->data.clear();
}

// What the calls do; the lock is theirs.

int file_exists() {
    return logger && !logger->path.empty() && open_file(logger->path, "r") ? 1 : 0;
}

void open_log() {
    if (!logger) {
        return;
    }
    logger->stream.reset();
    const bool keep = logger->append && file_exists() == 1;
    logger->stream = open_file(logger->path, keep ? "a" : "w");
    std::FILE* const out = logger->stream.get();
    if (out == nullptr) {
        return;
    }
    if (!keep && logger->encoding) {
        std::fprintf(out, "<?xml version=\"1.0\" encoding=\"%s\"?>\n", logger->encoding->c_str());
    }
    std::fprintf(out, "<logfile ver=\"%s\">\n", format_version);
    std::fflush(out);
}

void write_message(int level, int code, const char* format, std::va_list arguments, bool own_formatter) {
    if (!logger->stream) {
        open_log();
    }
    const char* const pattern = format != nullptr ? format : "";
    logger->buffer = own_formatter ? format_own(pattern, arguments) : format_runtime(pattern, arguments);
    if (level == level_debug) {
        purify_comment(logger->buffer);
    }
    if (std::FILE* const out = logger->stream.get()) {
        if (level == level_debug) {
            std::fprintf(out, "<!-- %s -->\n", logger->buffer.c_str());
        } else {
            write_element(out, level, code);
        }
        std::fflush(out);
    }
    if (logger->echo_stderr && level == level_error) {
        write_short_form(level, code);
    }
    if (logger->echo_stdout) {
        write_long_form(level, code);
    }
    if (level > level_debug) {
        drop_pending();
    }
}

void finish_log() {
    if (!logger) {
        return;
    }
    if (!logger->stream) {
        open_log();
    }
    drop_pending();
    if (std::FILE* const out = logger->stream.get()) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        char text[64] = "";
        localtime_r(&now, &local);
        asctime_r(&local, text);
        std::fprintf(out, "\n\tFinish Time: %s\n", text);
        std::fputs("</logfile>\n", out);
        std::fflush(out);
    }
    logger.reset();
}

// Outside the lock, which the end of the process may want.
[[noreturn]] void end_without_record() {
    std::fputs("Logger not initialised", stderr);
    std::exit(1);
}

}  // namespace

void log_create(const LogSettings& settings) {
    auto made = std::make_unique<KZLogger>();
    made->version = settings.version;
    made->encoding = settings.encoding;
    made->module = settings.module;
    made->path = settings.path;
    made->append = settings.append;
    made->echo_stdout = settings.echo_stdout;
    made->echo_stderr = settings.echo_stderr;
    made->on_fatal = settings.on_fatal;
    const Locked locked(lock);
    finish_log();
    logger = std::move(made);
}

int log_file_exists() {
    const Locked locked(lock);
    return file_exists();
}

bool log_is_open() {
    {
        const Locked locked(lock);
        if (logger) {
            return logger->stream != nullptr;
        }
    }
    end_without_record();
}

void log_open() {
    const Locked locked(lock);
    open_log();
}

void log_set_category(const char* text) {
    const Locked locked(lock);
    if (logger) {
        logger->category = text != nullptr ? text : "";
    }
}

void log_add_comment(const char* text) {
    const Locked locked(lock);
    if (logger) {
        logger->comments.emplace_back(text != nullptr ? text : "");
    }
}

void log_add_data(const char* key, const char* value, const char* type) {
    const Locked locked(lock);
    if (logger) {
        logger->data.push_back({key != nullptr ? key : "", value != nullptr ? value : "",
                                type != nullptr ? std::optional<std::string>(type) : std::nullopt});
    }
}

void log_message(int level, int code, const char* format, std::va_list arguments, bool own_formatter) {
    level = std::clamp(level, level_debug, level_error);
    int (*on_fatal)(int) = nullptr;
    bool recorded = false;
    {
        const Locked locked(lock);
        recorded = logger != nullptr;
        if (recorded) {
            write_message(level, code, format, arguments, own_formatter);
            on_fatal = logger->on_fatal;
        }
    }
    if (!recorded) {
        end_without_record();
    }
    if (level == level_error && (on_fatal == nullptr || on_fatal(1) == 0)) {
        log_finish();
        std::exit(1);
    }
}

void log_warning(int code, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    log_message(level_warning, code, format, arguments, false);
    va_end(arguments);
}

void log_finish() {
    const Locked locked(lock);
    finish_log();
}

}  // namespace kzb
