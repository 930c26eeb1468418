// The message log: an XML document of messages, one process-wide writer, optional echoes on the console.
//
//   <?xml version="1.0" encoding="..."?>
//   <logfile ver="0.3">
//   <message> code, status, module, version, category, text, data items, comments </message>
//   <!-- a debug text -->
//
//       Finish Time: ...
//   </logfile>
//
// The record is optional: without one, setting a category does nothing and a report ends the process. A file that is
// appended to holds one `logfile` start per run. XML characters are not escaped.
//
// A lock makes each call one piece: messages of several threads stand whole, one behind the other, and are all there.
// It doesn't bind calls together: the category and the pending comments and data belong to the record, so that what a
// thread sets may come to stand in the next message of another one. `on_fatal` is asked outside the lock and may log.
#pragma once

#include <cstdarg>
#include <optional>
#include <string>

namespace kzb {

// Levels of a message; a number outside them counts as the nearest.
inline constexpr int level_debug = 0;
inline constexpr int level_message = 1;
inline constexpr int level_warning = 2;
inline constexpr int level_error = 3;

struct LogSettings {
    std::string path;
    std::optional<std::string> encoding;  // the XML declaration is written only with it
    std::optional<std::string> module;
    std::optional<std::string> version;
    bool append = false;  // keep an existing file
    bool echo_stdout = false;
    bool echo_stderr = false;
    int (*on_fatal)(int) = nullptr;  // asked after an Error; non-zero: go on
};

// Makes the record, to be called at start; a record that stands is finished first.
void log_create(const LogSettings& settings);
// 1 when there is a record with a path that can be opened for reading.
int log_file_exists();
// Whether the log's file is open. Without a record: "Logger not initialised" on standard error, exit with code 1.
bool log_is_open();
// Opens the file: at the end of the present one with `append`, else anew. Messages skip a file that can't be opened.
void log_open();
// Replaces the category of the messages to come; null clears.
void log_set_category(const char* text);
// A comment line, or a data item, of the next message above level 0. `type` may be null. Nothing without a record.
void log_add_comment(const char* text);
void log_add_data(const char* key, const char* value, const char* type);
// Reports. `own_formatter` chooses the log's own format language (log_format.h) instead of the runtime's. An Error ends
// the process with code 1 unless `on_fatal` says otherwise.
void log_message(int level, int code, const char* format, std::va_list arguments, bool own_formatter);
// Reports a warning by the runtime's formatter.
[[gnu::format(printf, 2, 3)]] void log_warning(int code, const char* format, ...);
// Writes the end of the document and releases the record.
void log_finish();

}  // namespace kzb
