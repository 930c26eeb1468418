// A file that appears whole or not at all: written beside its place, forced to disk, then renamed.
//
// The temporary file goes away when the object dies before commit(), and when the process is interrupted. A place that
// is no regular file (a device, a pipe) is written straight at commit().
#pragma once

#include <string>
#include <string_view>

namespace kzb::tool {

class OutputFile {
  public:
    // Failure(exit_run_failed) when nothing can be written at `path`.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Appends to the temporary file.
    void write(std::string_view bytes);
    // The temporary file, for a writer that takes a path.
    const std::string& temporary_path() const { return temporary_; }
    // Forces the content to disk and puts it in place. Failure when the disk takes no more.
    void commit();

  private:
    void flush();
    std::string path_;       // as the user named it
    std::string place_;      // behind symbolic links
    std::string temporary_;  // empty once committed
    std::string buffer_;
    bool straight_ = false;
    int fd_ = -1;
};

// Failure(exit_usage) when `output` names the file `other`, which is `what` ("the scenario").
void refuse_same_file(const std::string& output, const std::string& other, std::string_view what);

}  // namespace kzb::tool
