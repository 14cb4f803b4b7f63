// Fails calls in place of libnq, shortens what they reply, or delays them, as NQ_FAULTS says: rules that are separated
// by commas, whose parts are separated by colons.

#include "layer.hpp"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

namespace nq::layer {
namespace {

constexpr char name[] = "nq-faults";
constexpr std::uint64_t longest_report = 100; // lines

// Which calls fail, and how. All conditions hold at once.
struct rule {
    std::string_view entry; // empty for all
    std::uint64_t call = 0; // counted from 1, among those of the entry point; 0 for any
    std::uint64_t every = 0;
    std::optional<double> probability;
    std::uint64_t seed = 0;
    int result = result::success;      // of libnq
    int status = 0;                    // of OpenCL
    std::optional<std::size_t> reply;  // the most bytes that a query says to have replied
    std::chrono::microseconds delay{}; // before the call is made
};

struct counted_rule : rule {
    explicit counted_rule(rule const& of) : rule(of) {}
    std::atomic<std::uint64_t> seen{0};
};

struct settings {
    std::deque<counted_rule> rules;
    bool report = false;
};

struct unusable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The parts of a text between separators. The text outlives them: it is in the environment.
std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = std::min(text.find(separator, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

template <class Number>
Number number(std::string_view text, Number least, Number most, char const* what) {
    Number value{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !(value >= least && value <= most)) {
        throw unusable(std::string(what) + ", not '" + std::string(text) + "'");
    }
    return value;
}

std::uint64_t count(std::string_view text) {
    return number<std::uint64_t>(text, 1, UINT64_MAX, "give a number of calls from 1 on");
}

std::string_view entry_point(std::string_view wanted) {
    if (!is_command(wanted)) {
        throw unusable("give the name of an OpenCL entry point, not '" + std::string(wanted) + "'");
    }
    return wanted;
}

int status(std::string_view text) {
    for (value_name const& each : values::status) {
        if (each.name == text && each.value != 0) {
            return static_cast<int>(each.value);
        }
    }
    return number(text, INT32_MIN, -1, "give an OpenCL status such as -5 or CL_OUT_OF_RESOURCES");
}

// The name of a part, up to its `=`; that of a status is "status".
std::string_view key_of(std::string_view part) {
    std::size_t const equals = part.find('=');
    return equals == std::string_view::npos ? "status" : part.substr(0, equals);
}

void add_part(rule& made, std::string_view part) {
    std::size_t const equals = part.find('=');
    std::string_view const key = key_of(part);
    std::string_view const value = equals == std::string_view::npos ? "" : part.substr(equals + 1);
    if (equals == std::string_view::npos) {
        made.status = status(part);
    } else if (key == "call") {
        made.call = count(value);
    } else if (key == "every") {
        made.every = count(value);
    } else if (key == "entry") {
        made.entry = entry_point(value);
    } else if (key == "probability") {
        made.probability = number(value, 0.0, 1.0, "give a probability from 0 to 1");
    } else if (key == "seed") {
        made.seed = number<std::uint64_t>(value, 0, UINT64_MAX, "give a whole number as the seed");
    } else if (key == "result") {
        made.result = number(value, INT32_MIN, INT32_MAX, "give a result of libnq such as -1");
    } else if (key == "reply") {
        made.reply = number<std::size_t>(value, 0, SIZE_MAX, "give a number of bytes");
    } else if (key == "delay") {
        made.delay = std::chrono::microseconds(number<std::uint32_t>(value, 1, UINT32_MAX, "give microseconds"));
    } else {
        throw unusable("use call=, every=, entry=, probability=, seed=, result=, reply= or delay=, not '" +
                       std::string(key) + "='");
    }
}

settings parse(std::string_view text) {
    settings made;
    for (std::string_view const each : split(text, ',')) {
        if (each == "report") {
            made.report = true;
            continue;
        }
        if (each.empty()) {
            throw unusable("write a rule such as entry=clCreateBuffer:call=2:-4, not ''");
        }
        rule next;
        std::set<std::string_view> keys;
        for (std::string_view const part : split(each, ':')) {
            add_part(next, part);
            if (!keys.insert(key_of(part)).second) {
                throw unusable("give '" + std::string(each) + "' each part once: '" + std::string(part) +
                               "' is the second of its kind");
            }
        }
        if (keys.contains("seed") && !next.probability) {
            throw unusable("seed= goes with probability=, which '" + std::string(each) + "' lacks");
        }
        if ((next.status != 0) + (next.result != 0) + next.reply.has_value() + (next.delay.count() != 0) != 1) {
            throw unusable(
                "end '" + std::string(each) +
                "' with one failure, as in call=17:-5, call=17:result=-1, call=17:reply=4 or call=17:delay=1000");
        }
        if (next.entry.empty() && next.call == 0 && next.every == 0 && !next.probability) {
            throw unusable("say which calls fail, as in call=17:" + std::string(each));
        }
        made.rules.emplace_back(next);
    }
    return made;
}

// Read at the first call; a program that makes none is left alone. A program whose settings are wrong ends here, as it
// would seem to pass otherwise.
settings& chosen() {
    static settings& all = *[] {
        char const* const text = ::secure_getenv("NQ_FAULTS");
        try {
            return new settings(text != nullptr && *text != '\0' ? parse(text) : settings{});
        } catch (unusable const& why) {
            print(name, std::string("NQ_FAULTS: ") + why.what());
        } catch (std::exception const& why) {
            print(name, why.what());
        }
        std::_Exit(2);
    }();
    return all;
}

struct account {
    std::atomic<std::uint64_t> calls{0};
    std::atomic<std::uint64_t> failed{0};
};

account& done() {
    static account& all = *new account;
    return all;
}

// From 0 to 1, the same for the same seed and call.
double random(std::uint64_t seed, std::uint64_t call) {
    std::uint64_t bits = seed + (call * 0x9E3779B97F4A7C15U);
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>((bits ^ (bits >> 31U)) >> 11U) * 0x1p-53;
}

bool applies(counted_rule& each, description const* about) {
    if (!each.entry.empty() && (about == nullptr || each.entry != about->name)) {
        return false;
    }
    std::uint64_t const seen = ++each.seen;
    return (each.call == 0 || seen == each.call) && (each.every == 0 || seen % each.every == 0) &&
           (!each.probability || random(each.seed, seen) < *each.probability);
}

// Whether a block can say that OpenCL refused the call.
bool can_refuse(description const* about) {
    return about != nullptr && (about->status != absent ||
                                (about->result != absent && about != &description_of<block::call_handle_device>));
}

void refuse(call const& made, description const& about, std::int32_t status) {
    auto* const bytes = static_cast<unsigned char*>(made.block);
    if (about.status != absent) {
        std::memcpy(bytes + about.status, &status, sizeof status);
    }
    if (about.result != absent) {
        std::memset(bytes + about.result, 0, sizeof(void*));
    }
}

std::string text_of(rule const& how) {
    if (how.delay.count() != 0) {
        return " after " + std::to_string(how.delay.count()) + " us";
    }
    if (how.reply) {
        return " replies " + std::to_string(*how.reply) + " bytes";
    }
    char const* const status = values::status.name_of(how.status);
    return " = " + (how.result != 0     ? "result " + std::to_string(how.result)
                    : status != nullptr ? status
                                        : "status " + std::to_string(how.status));
}

// At once, since the program may not come to its end.
void record(call const& made, description const* about, rule const& how, std::uint64_t number) {
    if (++done().failed <= longest_report && chosen().report) {
        print(name, "call " + std::to_string(number) + ": " +
                        (about != nullptr ? about->name : "command " + std::to_string(made.id)) + text_of(how));
    }
}

[[gnu::destructor]] void report() {
    account const& all = done();
    if (all.calls != 0 && chosen().report) {
        print(name, std::to_string(all.calls) + " calls, " + std::to_string(all.failed) + " failed");
    }
}

// Where a query is to say how long its reply is; null for other calls.
std::size_t* place_of_size(call const& made, description const* about) {
    field const* const found = about != nullptr ? find_field(*about, "param_value_size_ret") : nullptr;
    return found != nullptr ? static_cast<std::size_t*>(const_cast<void*>(read_pointer(made.block, found->offset)))
                            : nullptr;
}

bool can_do(rule const& how, call const& made, description const* about) {
    return how.reply ? place_of_size(made, about) != nullptr
                     : how.result != 0 || how.delay.count() != 0 || can_refuse(about);
}

// What comes of a call; nothing if it is to be forwarded as it is.
std::optional<int> fail(call const& made) {
    description const* const about = made.about();
    std::uint64_t const number = ++done().calls;
    rule const* how = nullptr;
    for (counted_rule& each : chosen().rules) { // each counts, whichever decides
        how = applies(each, about) && how == nullptr ? &each : how;
    }
    if (how == nullptr || !can_do(*how, made, about)) {
        return std::nullopt;
    }
    record(made, about, *how, number);
    if (how->status != 0) {
        refuse(made, *about, how->status);
    } else if (how->reply) {
        int const result = forward(made);
        if (succeeded(made, *about, result)) {
            std::size_t& size = *place_of_size(made, about);
            size = std::min(size, *how->reply);
        }
        return result;
    } else if (how->delay.count() != 0) {
        std::this_thread::sleep_for(how->delay);
        return std::nullopt;
    }
    return how->result;
}

} // namespace

int perform(call const& made) noexcept {
    std::optional<int> failed;
    try {
        failed = fail(made);
    } catch (...) { // NOLINT(bugprone-empty-catch) out of memory: the call is made
    }
    return failed ? *failed : forward(made);
}

} // namespace nq::layer
