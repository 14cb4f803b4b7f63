#include "trace_page.hpp" // made by CMake from trace_page.html
#include "trace_writer.hpp"

#include <array>
#include <string_view>

namespace nq::layer::trace {

std::string microseconds(std::uint64_t nanoseconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%llu.%03llu", static_cast<unsigned long long>(nanoseconds / 1000),
                  static_cast<unsigned long long>(nanoseconds % 1000));
    return text.data();
}

namespace {

// A `<` would end the script of a page that holds the text.
std::string escaped(std::string_view text) {
    std::string made = "\"";
    for (char const each : text) {
        auto const code = static_cast<unsigned char>(each);
        if (each == '"' || each == '\\') {
            made += '\\';
            made += each;
        } else if (code < 0x20 || code > 0x7E || each == '<') {
            std::array<char, 8> number{};
            std::snprintf(number.data(), number.size(), "\\u%04x", code);
            made += number.data();
        } else {
            made += each;
        }
    }
    return made + '"';
}

// Writes one event a line.
class json : public writer {
public:
    explicit json(std::FILE* to, std::string_view head = "", std::string_view tail = "\n") : to_(to), tail_(tail) {
        write(head);
        write(R"({"displayTimeUnit":"ns","traceEvents":[)");
    }
    json(json const&) = delete;
    json& operator=(json const&) = delete;
    ~json() override {
        if (to_ != nullptr) {
            std::fclose(to_);
        }
    }

    void begin_process(std::int64_t number, std::string const& name) override {
        process_ = number;
        event("M", "process_name", 0, R"(,"args":{"name":)" + escaped(name) + "}");
    }

    void add(row const& each) override {
        event("M", "thread_name", each.number, R"(,"args":{"name":)" + escaped(each.name) + "}");
    }

    void add(slice const& each) override {
        std::string arguments;
        for (auto const& [name, value] : each.arguments) {
            arguments += arguments.empty() ? "" : ",";
            arguments += escaped(name) + ':' + escaped(value);
        }
        event("X", each.name, each.row,
              ",\"ts\":" + microseconds(each.begin) + ",\"dur\":" + microseconds(each.end - each.begin) +
                  (each.failed ? R"(,"cname":"terrible")" : "") + ",\"args\":{" + arguments + "}");
        for (arrow_end const& end : each.arrows) {
            std::string const name = end.waits ? "wait" : "enqueue";
            event(end.begins ? "s" : "f", name, each.row,
                  ",\"cat\":" + escaped(name) + ",\"id\":" + std::to_string(end.arrow) +
                      (end.begins ? "" : R"(,"bp":"e")") + ",\"ts\":" + microseconds(each.begin));
        }
    }

    void add(kept_objects const& each) override {
        kept_ += kept_.empty() ? "" : ",";
        kept_ += R"({"pid":)" + std::to_string(process_) + ",\"entry\":" + escaped(each.entry) +
                 ",\"count\":" + std::to_string(each.count) + ",\"references\":" + std::to_string(each.references) +
                 "}";
    }

    bool close() override {
        write("\n],\"notReleased\":[" + kept_ + "]}");
        write(tail_);
        bool const written = std::ferror(to_) == 0;
        return std::fclose(std::exchange(to_, nullptr)) == 0 && written;
    }

private:
    void write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), to_); }

    void event(char const* phase, std::string const& name, std::uint64_t row, std::string const& rest) {
        std::fprintf(to_, R"(%s{"ph":"%s","name":%s,"pid":%lld,"tid":%llu%s})", count_++ == 0 ? "\n" : ",\n", phase,
                     escaped(name).c_str(), static_cast<long long>(process_), static_cast<unsigned long long>(row),
                     rest.c_str());
    }

    std::FILE* to_;
    std::string_view tail_;
    std::int64_t process_ = 0;
    std::uint64_t count_ = 0;
    std::string kept_;
};

} // namespace

std::unique_ptr<writer> make_json(std::FILE* to) { return std::make_unique<json>(to); }

std::unique_ptr<writer> make_page(std::FILE* to) {
    constexpr std::string_view place = "%TRACE%";
    constexpr std::size_t at = page.find(place);
    static_assert(at != std::string_view::npos);
    return std::make_unique<json>(to, page.substr(0, at), page.substr(at + place.size()));
}

} // namespace nq::layer::trace
