// Plots through gnuplot: a script with its data goes in, an image file comes out whole or not at all.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

enum class ImageForm { png, svg };

// By the ending of the name; Failure(exit_usage) for another ending.
ImageForm image_form_of(const std::string& path);

// Failure(exit_run_failed) when there is no gnuplot to run.
void require_gnuplot();

inline constexpr int plot_width = 1000;  // pixels

// Runs the script with a terminal of that form and size (pixels) and puts the image at `path`.
void run_gnuplot(const std::string& path, int width, int height, std::string_view script);

// A text as a gnuplot string.
std::string gnuplot_text(std::string_view text);

// "$name << EOD ... EOD", one row per line; a number that is not finite leaves a gap.
class GnuplotData {
  public:
    explicit GnuplotData(std::string_view name);
    void row(const std::vector<double>& cells);
    void blank() { text_ += '\n'; }
    // The block, closed.
    std::string text() const { return text_ + "EOD\n"; }

  private:
    std::string text_;
};

}  // namespace kzb::tool
