#include "store/measured/text_lines.h"

#include <algorithm>

namespace kzb {

namespace {

constexpr std::size_t least_room = 99;
constexpr int end_of_scan = 0xff;

}  // namespace

bool TextLines::next(BlockRoom& room) {
    line_.clear();
    while (line_.size() < room.limit) {
        const int byte = source_.get();
        if (byte == end_of_scan && room.limit == BlockRoom::not_known) {
            room.limit = std::max({least_room, room.longest, line_.size()});
            if (line_.size() == room.limit) {
                source_.seek(source_.position() - 1);
                break;
            }
        }
        if (byte < 0) {
            ended_ = true;
            break;
        }
        line_.push_back(static_cast<char>(byte));
        if (byte == '\n') {
            break;
        }
    }
    room.longest = std::max(room.longest, line_.size());
    const bool taken = !line_.empty();
    line_.resize(std::min(line_.size(), line_.find('\0')));
    return taken;
}

std::string_view TextLines::fields() const {
    std::string_view text = line_;
    for (const char end : {'\n', ','}) {
        text.remove_suffix(text.ends_with(end) ? 1 : 0);
    }
    return text;
}

void TextLines::rewind() {
    source_.seek(0);
    ended_ = false;
}

}  // namespace kzb
