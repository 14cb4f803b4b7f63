// Writes at exit which OpenCL objects and which shared memory the program has not released, and where it made them.

#include "findings.hpp"
#include "layer.hpp"
#include "objects.hpp"
#include "source.hpp"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nq::layer {
namespace {

constexpr char const* name = "nq-leaks";

struct object {
    char const* entry; // that made it, or retained it first
    std::int64_t references;
    std::uint64_t number; // in the order of making
    call_site site;
};

// Never freed: a program may make calls until its very end.
struct account {
    std::mutex mutex;
    std::unordered_map<void*, object> living;
    std::uint64_t made = 0;
};

account& all() {
    static account& made = *new account;
    return made;
}

void add(void* address, char const* entry, call_site const& site) {
    if (address != nullptr) {
        std::scoped_lock const lock{all().mutex};
        all().living[address] = {entry, 1, ++all().made, site};
    }
}

void retain(void* address, char const* entry, bool is_device) {
    std::unique_lock lock{all().mutex};
    if (auto const found = all().living.find(address); found != all().living.end()) {
        ++found->second.references;
    } else if (!is_device) { // devices that are not parts of others have no count
        lock.unlock();
        add(address, entry, call_site::here()); // what another library made
    }
}

// What calls that failed have not taken.
using taken = std::vector<std::pair<void*, object>>;

void release(void* address, std::int64_t references, taken& before) {
    std::scoped_lock const lock{all().mutex};
    if (auto const found = all().living.find(address); found != all().living.end()) {
        before.emplace_back(*found);
        if ((found->second.references -= references) <= 0) {
            all().living.erase(found);
        }
    }
}

void give_back(taken const& before) {
    std::scoped_lock const lock{all().mutex};
    for (auto const& [address, each] : before) {
        all().living[address] = each;
    }
}

struct interest {
    bool has = false;
};

interest interest_in(description const& about) { return {changes_objects(about)}; }

taken note_released(call const& made, description const& about) {
    taken before;
    for (object_change const& each : released_by(about, made.block)) {
        release(each.address, -each.references, before);
    }
    return before;
}

void note_success(call const& made, description const& about) {
    call_site site;
    for (object_change const& each : made_by(about, made.block)) {
        if (each.is_new) {
            site = site == call_site{} ? call_site::here() : site;
            add(each.address, about.name, site);
        } else {
            retain(each.address, about.name, each.kind == object_kind::device_id);
        }
    }
}

std::string plural(std::uint64_t count, char const* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// One line for the objects that one place has made.
void print_all() {
    using place = std::tuple<std::string, std::string, std::int64_t>; // entry point, line, references
    std::map<place, std::pair<std::uint64_t, std::uint64_t>> lines;   // to the first number and the count
    for (auto const& [address, each] : all().living) {
        auto& [first, count] = lines[{each.entry, each.site.text(), each.references}];
        first = count++ == 0 ? each.number : std::min(first, each.number);
    }
    std::map<std::uint64_t, std::string> in_order;
    for (auto const& [where, line] : lines) {
        auto const& [entry, source, references] = where;
        in_order[line.first] = (line.second > 1 ? std::to_string(line.second) + " times " : "") + entry +
                               (source.empty() ? "" : " at " + source) + ": " +
                               plural(static_cast<std::uint64_t>(references), "reference");
    }
    print(name, plural(all().living.size(), "object") + " not released");
    for (auto const& [number, text] : in_order) {
        print(name, text);
    }
}

[[gnu::destructor]] void report() {
    std::unique_lock lock{all().mutex};
    if (is_forked() || all().living.empty()) {
        return;
    }
    print_all();
    end_with_findings(name, "NQ_LEAKS");
}

} // namespace

int perform(call const& made) noexcept {
    description const* const about = made.about();
    if (about == nullptr || is_forked() || !value_of<interest, interest_in>(made).has) {
        return forward(made);
    }
    taken before;
    attempt([&] { before = note_released(made, *about); });
    int const result = forward(made);
    attempt([&] { succeeded(made, *about, result) ? note_success(made, *about) : give_back(before); });
    return result;
}

} // namespace nq::layer
