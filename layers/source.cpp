#include "source.hpp"

#include <backtrace.h>
#include <cxxabi.h>
#include <dlfcn.h>
#include <unwind.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace nq::layer {
namespace {

struct found {
    std::string text;
    bool passed_over = false; // a function of a header that is not the program's
};

std::string_view file_name(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string demangled(char const* symbol) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                           std::free);
    if (status != 0) {
        return symbol;
    }
    std::string text = name.get();
    // without the arguments and the return type, which a template has; of a lambda the function that it is in
    text.resize(std::min({text.find("[abi:"), text.find("::{lambda("), text.find('('), text.size()}));
    int nested = 0;
    for (std::size_t at = text.size(); at > 0; --at) {
        nested += text[at - 1] == '>' ? 1 : text[at - 1] == '<' ? -1 : 0;
        if (nested == 0 && text[at - 1] == ' ') {
            return text.substr(at);
        }
    }
    return text;
}

// libnq, what stands before and behind it, and what calls it for the program
bool is_below(std::string_view library) {
    std::string_view const file = file_name(library);
    return file.starts_with("libnq") || file.starts_with("libvorn-mero") || file.starts_with("libOpenCL.");
}

bool is_below_in_source(std::string_view file) {
    return file.find("/vorn/mero/") != std::string_view::npos || file.find("/include/c++/") != std::string_view::npos;
}

backtrace_state* state() {
    static backtrace_state* const made = backtrace_create_state(
        nullptr, 1, [](void*, char const*, int) {}, nullptr);
    return made;
}

int see_line(void* into, std::uintptr_t, char const* file, int line, char const* function) {
    auto& made = *static_cast<found*>(into);
    if (file == nullptr) {
        return 0;
    }
    if (is_below_in_source(file)) {
        made.passed_over = true;
        return 0;
    }
    made.text = std::string(file_name(file)) + ':' + std::to_string(line) +
                (function != nullptr ? ' ' + demangled(function) : "");
    return 1;
}

void see_symbol(void* into, std::uintptr_t, char const* symbol, std::uintptr_t, std::uintptr_t) {
    *static_cast<std::string*>(into) = symbol != nullptr ? ' ' + demangled(symbol) : "";
}

void see_error(void*, char const*, int) {} // no debug information

} // namespace

call_site call_site::here() noexcept {
    struct walk {
        call_site site;
        std::size_t seen = 0;
    } made;
    _Unwind_Backtrace(
        [](_Unwind_Context* context, void* into) {
            auto& [site, seen] = *static_cast<walk*>(into);
            if (seen == depth) {
                return _URC_END_OF_STACK;
            }
            site.addresses.at(seen++) = _Unwind_GetIP(context);
            return _URC_NO_REASON;
        },
        &made);
    return made.site;
}

std::string call_site::text() const {
    for (std::uintptr_t const address : addresses) {
        Dl_info about{};
        auto* const place = reinterpret_cast<void*>(address); // NOLINT(performance-no-int-to-ptr): what dladdr takes
        if (address == 0 || dladdr(place, &about) == 0 || is_below(about.dli_fname)) {
            continue;
        }
        found made;
        backtrace_pcinfo(state(), address - 1, see_line, see_error, &made); // within the call
        if (made.text.empty() && !made.passed_over) {
            std::array<char, 24> offset{};
            std::snprintf(offset.data(), offset.size(), "+0x%lx",
                          address - 1 - reinterpret_cast<std::uintptr_t>(about.dli_fbase));
            std::string symbol;
            backtrace_syminfo(state(), address - 1, see_symbol, see_error, &symbol);
            bool const passed_over = symbol.starts_with(" vorn::mero::") || symbol.starts_with(" std::");
            made.text = passed_over ? "" : std::string(file_name(about.dli_fname)) + offset.data() + symbol;
        }
        if (!made.text.empty()) {
            return made.text;
        }
    }
    return "";
}

} // namespace nq::layer
