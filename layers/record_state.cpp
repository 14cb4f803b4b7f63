#include "record_state.hpp"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace nq::layer::record {
namespace {

using recording::entry_kind;

constexpr char const* name = "nq-record";

std::string parse(std::string_view text) {
    constexpr std::string_view key = "output=";
    if (!text.empty() && (!text.starts_with(key) || text == key)) {
        throw std::invalid_argument("use output=FILE, not '" + std::string(text) + "'");
    }
    std::string path(text.empty() ? "nq-record-%p.nqr" : text.substr(key.size()));
    if (std::size_t const at = path.find("%p"); at != std::string::npos) {
        path.replace(at, 2, std::to_string(getpid()));
    }
    return path;
}

std::atomic<bool> is_open = false;

void stop() noexcept {
    attempt([] { collect(true); });
}

} // namespace

state& all() {
    static state& made = *[] {
        std::string why;
        try {
            char const* const text = ::secure_getenv("NQ_RECORD");
            auto* const opened = new state;
            opened->path = parse(text != nullptr ? text : "");
            why = opened->file.open(opened->path);
            if (why.empty()) {
                is_open = true;
                std::atexit(stop); // before the OpenCL implementation ends
                return opened;
            }
        } catch (std::exception const& failure) {
            why = failure.what();
        }
        print(name, "NQ_RECORD: " + why);
        std::_Exit(2);
    }();
    return made;
}

std::uint64_t next_order() { return all().order.fetch_add(1, std::memory_order_relaxed); }

std::uint32_t number_of_handle(call const& through) {
    {
        std::scoped_lock const lock{all().mutex};
        if (auto const known = all().handles.find(through.handle); known != all().handles.end()) {
            return known->second;
        }
    }
    _nq_cl_device_id* const device = own_device(through);
    _nq_cl_platform_id* const platform = platform_of(through, device);
    std::string const platform_name =
        ask_text(through, block::clGetPlatformInfo{.platform = platform, .param_name = "CL_PLATFORM_NAME"_cl});
    std::string const device_name =
        ask_text(through, block::clGetDeviceInfo{.device = device, .param_name = "CL_DEVICE_NAME"_cl});
    std::string const names = platform_name + device_name;
    std::scoped_lock const lock{all().mutex};
    auto const [found, is_new] =
        all().handles.try_emplace(through.handle, static_cast<std::uint32_t>(all().handles.size()));
    if (is_new) { // no other thread was first
        all().file.write(entry_kind::handle,
                         recording::handle_entry{
                             static_cast<std::uint64_t>(through.version), reinterpret_cast<std::uintptr_t>(platform),
                             reinterpret_cast<std::uintptr_t>(device), static_cast<std::uint32_t>(platform_name.size()),
                             static_cast<std::uint32_t>(device_name.size())},
                         std::as_bytes(std::span(names)));
    }
    return found->second;
}

void write_contents(written const& each) {
    if (auto const content = copy(each.address, each.size)) {
        std::uint64_t const kept = all().file.keep(*content);
        all().file.write(entry_kind::contents, recording::contents_entry{next_order(), each.order, each.offset, kept});
    }
}

void write_shared(bool is_result) {
    for (auto& [address, each] : all().memory.shared()) {
        auto const content = each.is_fine ? copy(read_pointer(&address, 0), each.size) : std::nullopt;
        std::uint64_t const kept = content ? all().file.keep(*content) + 1 : each.content;
        if (kept != each.content) {
            each.content = kept;
            all().file.write(entry_kind::shared,
                             recording::shared_entry{next_order(), address, is_result ? 1U : 0U, kept - 1});
        }
    }
}

void collect(bool is_end_of_wait) {
    std::vector<written> taken;
    {
        std::scoped_lock const lock{all().mutex};
        taken.swap(all().pending);
    }
    std::erase_if(taken, [](written const& each) {
        auto const done = is_done(each);
        std::scoped_lock const lock{all().mutex};
        if (done.value_or(false) && !all().is_closed) {
            write_contents(each);
        }
        return done.has_value();
    });
    std::scoped_lock const lock{all().mutex};
    all().pending.insert(all().pending.begin(), taken.begin(), taken.end());
    if (is_end_of_wait && !all().is_closed) {
        write_shared(true);
    }
}

void close() noexcept {
    if (!is_open || is_forked()) {
        return;
    }
    stop();
    bool is_written = false;
    attempt([&] {
        std::scoped_lock const lock{all().mutex};
        all().is_closed = true;
        std::string const why = all().file.close();
        print(name, why.empty() ? std::to_string(all().calls) + " calls in " + all().path : why);
        is_written = why.empty();
    });
    if (!is_written) {
        std::fflush(nullptr);
        _exit(2); // as if it could not be opened
    }
}

} // namespace nq::layer::record
