// What the layer check prints, and what it knows of the rest of the process.

#include "check.hpp"
#include "findings.hpp"

#include <elf.h>
#include <link.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <set>
#include <string_view>
#include <utility>

namespace nq::layer::check {
namespace {

constexpr char const* name = "nq-check";

// Never freed: a program may make calls until its very end.
struct state {
    std::mutex mutex;
    std::set<call_site, bool (*)(call_site const&, call_site const&)> places{
        [](call_site const& left, call_site const& right) { return left.addresses < right.addresses; }};
    std::set<std::pair<std::string_view, std::string>> printed;
    std::uint64_t findings = 0;
    std::atomic<bool> extensions = false;
};

state& all() {
    static state& made = *new state;
    return made;
}

struct needs {
    bool opencl = false;  // some library needs OpenCL's
    bool drop_in = false; // which is one that stands on libnq
};

// The names of the libraries that a library needs, and its own.
int see_library(dl_phdr_info* library, std::size_t, void* into) {
    auto& found = *static_cast<needs*>(into);
    for (int i = 0; i < library->dlpi_phnum; ++i) {
        ElfW(Phdr) const& part = library->dlpi_phdr[i];
        if (part.p_type != PT_DYNAMIC) {
            continue;
        }
        auto const* const table =
            reinterpret_cast<ElfW(Dyn) const*>(library->dlpi_addr + part.p_vaddr); // NOLINT(performance-no-int-to-ptr)
        char const* names = nullptr;
        for (auto const* each = table; each->d_tag != DT_NULL; ++each) {
            if (each->d_tag == DT_STRTAB) {
                // as in the file where the loader has not changed it
                std::uintptr_t const base = each->d_un.d_ptr < library->dlpi_addr ? library->dlpi_addr : 0;
                names = reinterpret_cast<char const*>(base + each->d_un.d_ptr); // NOLINT(performance-no-int-to-ptr)
            }
        }
        bool is_opencl = false;
        bool needs_libnq = false;
        for (auto const* each = table; names != nullptr && each->d_tag != DT_NULL; ++each) {
            std::string_view const text =
                each->d_tag == DT_NEEDED || each->d_tag == DT_SONAME ? names + each->d_un.d_val : "";
            is_opencl = is_opencl || (each->d_tag == DT_SONAME && text.starts_with("libOpenCL."));
            needs_libnq = needs_libnq || (each->d_tag == DT_NEEDED && text.starts_with("libnq"));
            found.opencl = found.opencl || (each->d_tag == DT_NEEDED && text.starts_with("libOpenCL"));
        }
        found.drop_in = found.drop_in || (is_opencl && needs_libnq);
    }
    return 0;
}

} // namespace

place here() {
    call_site const site = call_site::here();
    std::scoped_lock const lock{all().mutex};
    return &*all().places.insert(site).first;
}

std::string at(place where) {
    std::string const text = where != nullptr ? where->text() : "";
    return text.empty() ? "" : " at " + text;
}

void report(call const& made, char const* rule, std::string const& what) {
    std::string const where = at(here());
    {
        std::scoped_lock const lock{all().mutex};
        ++all().findings;
        if (!all().printed.insert({rule, where}).second) {
            return;
        }
    }
    print(name, format_request(made.version, made.id, made.block, read_safely) + where + ": " + what);
}

void remark(call const& made, place where, std::string const& what) {
    print(name, format_request(made.version, made.id, made.block, read_safely) + at(where) + ": " + what);
}

void report(std::string const& what) {
    {
        std::scoped_lock const lock{all().mutex};
        ++all().findings;
    }
    print(name, what);
}

bool has_other_users() noexcept {
    if (all().extensions.load(std::memory_order_relaxed)) {
        return true;
    }
    needs found;
    dl_iterate_phdr(see_library, &found);
    return found.opencl && !found.drop_in;
}

void note_extension(call const& made, description const& about) {
    auto const* const before = as<block::clGetExtensionFunctionAddress>(made, &about);
    auto const* const newer = as<block::clGetExtensionFunctionAddressForPlatform>(made, &about);
    char const* const asked = before != nullptr ? before->func_name : newer != nullptr ? newer->func_name : nullptr;
    void const* const found = before != nullptr ? before->result : newer != nullptr ? newer->result : nullptr;
    for (char const* const word : {"Create", "Enqueue", "Retain", "Release", "Import"}) {
        if (asked != nullptr && found != nullptr && std::strstr(asked, word) != nullptr) {
            all().extensions = true;
        }
    }
}

std::vector<void*> handles_in(call const& made, description const& about, field const& each) {
    void const* const value = read_pointer(made.block, each.offset);
    if (value == nullptr || each.length.rule == length_rule::none) {
        return {const_cast<void*>(value)};
    }
    auto const size = extent_of(about, each, made.block, 0, read_safely);
    std::vector<void*> handles(size.value_or(0) / sizeof(void*));
    if (!handles.empty() && !read_safely(handles.data(), value, handles.size() * sizeof(void*))) {
        handles.clear();
    }
    return handles;
}

field const* find_handle(description const& about, object_kind kind) noexcept {
    for (field const& each : about) {
        if (each.kind == field_kind::handle && each.object == kind && each.direction == direction::in) {
            return &each;
        }
    }
    return nullptr;
}

void end() {
    if (all().findings != 0) {
        end_with_findings(name, "NQ_CHECK");
    }
}

} // namespace nq::layer::check
