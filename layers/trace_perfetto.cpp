// Perfetto's protobuf: a trace is a sequence of packets. Only the few fields that are needed, by their numbers.

#include "trace_writer.hpp"

#include <map>
#include <string_view>

namespace nq::layer::trace {
namespace {

// The body of a message. Fields of one message are written in the order of the calls.
class message {
public:
    message& number(unsigned field, std::uint64_t value) {
        varint(field << 3U);
        varint(value);
        return *this;
    }

    message& fixed(unsigned field, std::uint64_t value) {
        varint(field << 3U | 1U);
        for (unsigned shift = 0; shift < 64; shift += 8) {
            bytes_ += static_cast<char>(value >> shift);
        }
        return *this;
    }

    message& text(unsigned field, std::string_view value) {
        varint(field << 3U | 2U);
        varint(value.size());
        bytes_ += value;
        return *this;
    }

    message& part(unsigned field, message const& value) { return text(field, value.bytes_); }

    std::string const& bytes() const { return bytes_; }

private:
    void varint(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7U) {
            bytes_ += static_cast<char>(value | 0x80U);
        }
        bytes_ += static_cast<char>(value);
    }

    std::string bytes_;
};

namespace field_of_packet {
constexpr unsigned timestamp = 8;
constexpr unsigned sequence = 10;
constexpr unsigned event = 11;
constexpr unsigned track = 60;
} // namespace field_of_packet

namespace field_of_track {
constexpr unsigned uuid = 1;
constexpr unsigned name = 2;
constexpr unsigned process = 3; // 1: number, 6: name
constexpr unsigned thread = 4;  // 1: number of the process, 2: number, 5: name
constexpr unsigned parent = 5;
} // namespace field_of_track

namespace field_of_event {
constexpr unsigned annotation = 4; // 10: name, 6: text
constexpr unsigned type = 9;
constexpr unsigned track = 11;
constexpr unsigned category = 22;
constexpr unsigned name = 23;
constexpr unsigned flow = 47;
constexpr unsigned end_of_flow = 48;
} // namespace field_of_event

constexpr std::uint64_t begins = 1; // types of events
constexpr std::uint64_t ends = 2;

class perfetto : public writer {
public:
    explicit perfetto(std::FILE* to) : to_(to) {}
    perfetto(perfetto const&) = delete;
    perfetto& operator=(perfetto const&) = delete;
    ~perfetto() override {
        if (to_ != nullptr) {
            std::fclose(to_);
        }
    }

    void begin_process(std::int64_t number, std::string const& name) override {
        end_slices();
        process_ = static_cast<std::uint64_t>(number);
        process_track_ = ++tracks_;
        message about;
        about.number(1, process_).text(6, name);
        packet(field_of_packet::track,
               message().number(field_of_track::uuid, process_track_).part(field_of_track::process, about));
    }

    void add(row const& each) override {
        track& made = rows_[each.number];
        made.uuid = ++tracks_;
        message about;
        about.number(field_of_track::uuid, made.uuid).number(field_of_track::parent, process_track_);
        if (each.is_queue) {
            about.text(field_of_track::name, each.name);
        } else {
            about.part(field_of_track::thread, message().number(1, process_).number(2, each.number).text(5, each.name));
        }
        packet(field_of_packet::track, about);
        made.category = each.is_queue ? "command" : "call";
    }

    void add(slice const& each) override {
        track& on = rows_.at(each.row);
        end_slices(on, each.begin);
        message event;
        event.number(field_of_event::type, begins)
            .number(field_of_event::track, on.uuid)
            .text(field_of_event::category, on.category)
            .text(field_of_event::name, each.name);
        for (auto const& [name, value] : each.arguments) {
            event.part(field_of_event::annotation, message().text(10, name).text(6, value));
        }
        for (arrow_end const& end : each.arrows) {
            event.fixed(end.begins ? field_of_event::flow : field_of_event::end_of_flow, end.arrow);
        }
        packet(field_of_packet::event, event, each.begin);
        on.open.push_back(each.end);
    }

    void add(kept_objects const& /*each*/) override {} // the format has no place for it

    bool close() override {
        end_slices();
        bool const written = std::ferror(to_) == 0;
        return std::fclose(std::exchange(to_, nullptr)) == 0 && written;
    }

private:
    struct track {
        std::uint64_t uuid = 0;
        char const* category = "";
        std::vector<std::uint64_t> open; // the ends of slices that have begun, each within the one before it
    };

    void packet(unsigned field, message const& content, std::uint64_t time = 0) {
        message about;
        if (time != 0) {
            about.number(field_of_packet::timestamp, time);
        }
        about.number(field_of_packet::sequence, 1).part(field, content);
        message whole;
        whole.part(1, about);
        std::string const& bytes = whole.bytes();
        std::fwrite(bytes.data(), 1, bytes.size(), to_);
    }

    void end_slices(track& on, std::uint64_t until) {
        for (; !on.open.empty() && on.open.back() <= until; on.open.pop_back()) {
            packet(field_of_packet::event,
                   message().number(field_of_event::type, ends).number(field_of_event::track, on.uuid), on.open.back());
        }
    }

    void end_slices() {
        for (auto& [number, each] : rows_) {
            end_slices(each, ~std::uint64_t{0});
        }
        rows_.clear();
    }

    std::FILE* to_;
    std::uint64_t process_ = 0;
    std::uint64_t process_track_ = 0;
    std::uint64_t tracks_ = 0;
    std::map<std::uint64_t, track> rows_; // of the process
};

} // namespace

std::unique_ptr<writer> make_perfetto(std::FILE* to) { return std::make_unique<perfetto>(to); }

} // namespace nq::layer::trace
