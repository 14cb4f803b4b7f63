#include "check_areas.hpp"

#include "check.hpp"

#include <algorithm>
#include <string_view>

namespace nq::layer::check {
namespace {

constexpr std::size_t most_rows = 1U << 16U;

field const* blocking_field(description const& about) noexcept {
    auto const* const found =
        std::find_if(about.begin(), about.end(), [](field const& each) { return each.kind == field_kind::boolean; });
    return found != about.end() ? found : nullptr;
}

bool is_map(description const& about) {
    return std::any_of(about.begin(), about.end(),
                       [](field const& each) { return std::string_view(each.name) == "map_flags"; });
}

// Memory that a command uses when it runs: the commands that can block transfer, others copy what they read at once.
bool is_used_later(description const& about, field const& each) {
    bool const memory = each.kind == field_kind::bytes && each.offset != about.result;
    return memory && (each.direction == direction::out || blocking_field(about) != nullptr);
}

// The origin, region and pitches of a rectangle, in bytes.
bool rectangle_of(call const& made, length const& by, area& made_of) {
    std::size_t origin[3];
    std::size_t region[3];
    void const* const from = read_pointer(made.block, by.operands[0]);
    void const* const extent = read_pointer(made.block, by.operands[1]);
    if (from == nullptr || extent == nullptr || !read_safely(origin, from, sizeof origin) ||
        !read_safely(region, extent, sizeof region)) {
        return false;
    }
    std::size_t const row = read_field(made.block, by.operands[2]);
    std::size_t const slice = read_field(made.block, by.operands[3]);
    made_of.row_pitch = row != 0 ? row : region[0];
    made_of.slice_pitch = slice != 0 ? slice : made_of.row_pitch * region[1];
    made_of.begin += origin[2] * made_of.slice_pitch + origin[1] * made_of.row_pitch + origin[0];
    made_of.width = region[0];
    made_of.rows = region[1];
    made_of.slices = region[2];
    return true;
}

// The region of an image; the size of a pixel is asked for.
bool pixels_of(call const& made, description const& about, length const& by, area& made_of) {
    std::size_t region[3];
    void const* const extent = read_pointer(made.block, by.operands[0]);
    field const* const image = find_handle(about, object_kind::memory);
    if (extent == nullptr || image == nullptr || !read_safely(region, extent, sizeof region)) {
        return false;
    }
    block::clGetImageInfo const question{.image = static_cast<_nq_cl_mem*>(handles_in(made, about, *image).front()),
                                         .param_name = "CL_IMAGE_ELEMENT_SIZE"_cl};
    auto const pixel = ask_value<std::size_t>(made, question);
    if (!pixel) {
        return false;
    }
    std::size_t const row = read_field(made.block, by.operands[1]);
    std::size_t const slice = read_field(made.block, by.operands[2]);
    made_of.width = region[0] * *pixel;
    made_of.rows = region[1];
    made_of.slices = region[2];
    made_of.row_pitch = row != 0 ? row : made_of.width;
    made_of.slice_pitch = slice != 0 ? slice : made_of.row_pitch * region[1];
    return true;
}

// Calls a function with the begin of each row, in order, until it returns true.
template <class Function>
bool any_row(area const& of, Function function) {
    for (std::size_t slice = 0; slice < of.slices; ++slice) {
        for (std::size_t row = 0; row < of.rows; ++row) {
            if (function(of.begin + slice * of.slice_pitch + row * of.row_pitch)) {
                return true;
            }
        }
    }
    return false;
}

// Whether a row that begins at an address meets one of an area.
bool meets(std::uintptr_t begin, std::size_t width, area const& other) {
    std::uintptr_t const end = begin + width;
    for (std::size_t slice = 0; slice < other.slices; ++slice) {
        std::uintptr_t const first = other.begin + slice * other.slice_pitch;
        if (end <= first || other.row_pitch == 0) {
            if (end > first && begin < first + other.width) {
                return true;
            }
            continue;
        }
        // the last row that begins before the end
        std::size_t const row = std::min(other.rows - 1, (end - 1 - first) / other.row_pitch);
        if (begin < first + row * other.row_pitch + other.width) {
            return true;
        }
    }
    return false;
}

} // namespace

bool overlaps(area const& left, area const& right) noexcept {
    if (left.begin == left.end() || right.begin == right.end() || left.begin >= right.end() ||
        right.begin >= left.end()) {
        return false;
    }
    bool const fewer = left.rows * left.slices < right.rows * right.slices;
    area const& one = fewer ? left : right;
    area const& other = fewer ? right : left;
    if (one.rows * one.slices > most_rows || other.slices > most_rows) {
        return false;
    }
    return any_row(one, [&](std::uintptr_t begin) { return meets(begin, one.width, other); });
}

bool is_blocking(call const& made, description const& about) noexcept {
    field const* const blocking = blocking_field(about);
    return std::string_view(about.name).starts_with("clEnqueue") && blocking != nullptr &&
           read_field(made.block, *blocking) != 0;
}

std::vector<access> accesses_of(call const& made, description const& about) {
    std::vector<access> found;
    if (!std::string_view(about.name).starts_with("clEnqueue") || is_map(about)) {
        return found;
    }
    for (field const& each : about) {
        if (!is_used_later(about, each)) {
            continue;
        }
        auto const begin = reinterpret_cast<std::uintptr_t>(read_pointer(made.block, each.offset));
        if (begin == 0) {
            continue;
        }
        area where{begin};
        bool known = true;
        if (each.length.rule == length_rule::rectangle) {
            known = rectangle_of(made, each.length, where);
        } else if (each.length.rule == length_rule::pixels) {
            known = pixels_of(made, about, each.length, where);
        } else {
            auto const size = extent_of(about, each, made.block, 0, read_safely);
            known = size.has_value();
            where.width = size.value_or(0);
        }
        if (known) {
            found.push_back({where, each.direction == direction::out});
        }
    }
    return found;
}

} // namespace nq::layer::check
