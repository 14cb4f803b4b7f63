#pragma once

#include <vorn/mero/easy/embedded.hpp>
#include <vorn/mero/easy/program.hpp>
#include <vorn/mero/easy/session_state.hpp>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

class binary_cache;

namespace detail {

/// The bytes of a file. Throws `file_error`.
inline std::string content_of(std::string const& path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(path.c_str(), "rbe"), &std::fclose);
    std::string content;
    if (file != nullptr) {
        char part[4096];
        std::size_t count = 0;
        while ((count = std::fread(part, 1, sizeof part, file.get())) != 0) {
            content.append(part, count);
        }
    }
    if (file == nullptr || std::ferror(file.get()) != 0) {
        throw file_error(joined({"Cannot read the file '", path, "': ", std::strerror(errno)}));
    }
    return content;
}

/// Has the compiler name a part of a source in its messages.
inline std::string named_part(std::string_view name, std::string_view source) {
    bool const is_plain = name.find_first_of("\"\\\n") == std::string_view::npos; // Intel's reads no escapes here
    return joined({"#line 1 \"", is_plain ? name : "source", "\"\n", source, "\n"});
}

inline std::string folder_of(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace detail

/// Headers of a compilation: the name in `#include "name"`, and the text.
using headers = std::vector<std::pair<std::string, std::string>>;

/// A part of a program, compiled and not linked, or a library; made by `session::compile`, `session::link_library`.
/// Since OpenCL 1.2.
///
///     auto const shared = gpu.compile(helpers_source);
///     auto program = gpu.link({gpu.compile(first_source), shared});
template <int Version>
class basic_compiled {
public:
    /// The program of the exact interface.
    using exact_type = typename api<Version>::program;

    /// Of a program of the exact interface, which must be compiled.
    explicit basic_compiled(exact_type exact) noexcept : exact_(std::move(exact)) {}

    /// @{
    /// Throws `moved_from` for a part that was moved from.
    basic_compiled(basic_compiled const& other) : exact_(there(other)) {}
    basic_compiled& operator=(basic_compiled const& other) {
        exact_ = there(other);
        return *this;
    }
    /// @}
    basic_compiled(basic_compiled&&) noexcept = default;
    basic_compiled& operator=(basic_compiled&&) noexcept = default;
    ~basic_compiled() = default;

    /// The program of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

private:
    template <int>
    friend class basic_builder;

    static exact_type const& there(basic_compiled const& part) {
        if (detail::raw_of(part.exact_) == nullptr) {
            detail::refuse_moved_from();
        }
        return part.exact_;
    }

    exact_type exact_;
};

/// `basic_compiled` of the default version.
using compiled = basic_compiled<default_version>;

/// What a session builds programs with; `session` derives from it.
///
///     auto a = gpu.build(source, ez::build_options().define("WIDTH", 64));
///     auto b = gpu.build_file("kernels/blur.cl");
///     auto c = gpu.build_binary(a.binary());
///
/// All members block until the program is built for the session's device, and throw `build_failure` with the compiler's
/// log when it does not build. Since OpenCL 1.2 they add the option `-cl-kernel-arg-info`, so that arguments can be
/// checked. Thread-safe.
template <int Version>
class basic_builder {
public:
    /// The exact interface of the version.
    using exact_api = api<Version>;

    /// From source.
    [[nodiscard]] basic_program<Version> build(std::string_view source, build_options const& options = {}) const {
        return made(state_->context.create_program_from_source(std::string(source)), options);
    }

    /// From several sources, as if they were one text. Messages name them "source 1" and so on.
    [[nodiscard]] basic_program<Version> build(std::vector<std::string> const& sources,
                                               build_options const& options = {}) const {
        return build_parts(sources, options);
    }
    /// The same: `gpu.build({first, second})`.
    [[nodiscard]] basic_program<Version> build(std::initializer_list<std::string_view> sources,
                                               build_options const& options = {}) const {
        return build_parts(sources, options);
    }

    /// From what a header of the build has. SPIR-V is used where there is some, the version and the device take it, and
    /// no options are given; else the source. Throws `unsupported` where there is no source.
    [[nodiscard]] basic_program<Version> build(embedded const& from, build_options const& options = {}) const {
        if constexpr (Version >= 210) {
            if (!from.il.empty() && (from.source.empty() || (options.text().empty() && !il_version().empty()))) {
                return build_il({from.il.begin(), from.il.end()}, options);
            }
        }
        if (from.source.empty()) {
            throw unsupported(detail::joined({"'", from.name,
                                              "' has no source, and OpenCL takes SPIR-V since 2.1: use "
                                              "ez::basic_session<210>"}));
        }
        auto with = build_options(std::string(from.options)).add(options.text());
        return made(state_->context.create_program_from_source(detail::named_part(from.name, from.source)), with,
                    detail::joined({"'", from.name, "'"}));
    }

    /// From a file of source. What it includes is also searched for in its folder. Throws `file_error` if it cannot be
    /// read.
    [[nodiscard]] basic_program<Version> build_file(std::string const& path, build_options const& options = {}) const {
        return build_file(std::vector<std::string>{path}, options);
    }

    /// From several files of source, as if they were one.
    [[nodiscard]] basic_program<Version> build_file(std::vector<std::string> const& paths,
                                                    build_options const& options = {}) const {
        std::vector<std::pair<std::string, std::string>> files;
        files.reserve(paths.size());
        for (std::string const& each : paths) {
            files.emplace_back(each, detail::content_of(each));
        }
        return build_read(files, options);
    }

    /// From intermediate language, such as the bytes of a SPIR-V module. Throws `unsupported` on a device that takes
    /// none. Since OpenCL 2.1.
    [[nodiscard]] basic_program<Version> build_il(std::vector<unsigned char> const& il,
                                                  build_options const& options = {}) const {
        static_assert(Version >= 210, "OpenCL takes intermediate language since 2.1: use ez::basic_session<210>");
        if (il_version().empty()) {
            throw unsupported(
                detail::joined({state_->device.name(), " takes no intermediate language: build the program "
                                                       "from source"}));
        }
        try {
            return made(state_->context.create_program_from_il(il), options);
        } catch (common::logic_error const& refused) {
            std::throw_with_nested(build_failure(
                state_->device.name(), options.text(),
                detail::joined({refused.what(), " It must be ", il_version(), ", as `spirv-val` can tell."})));
        }
    }

    /// From `program::binary()` of the same device under the same driver; `binary_cache` keeps track of that. Some
    /// implementations end the process for a damaged binary.
    [[nodiscard]] basic_program<Version> build_binary(std::vector<unsigned char> const& binary,
                                                      build_options const& options = {}) const {
        try {
            return made(state_->context.create_program_from_binary({{state_->device, binary}}), options);
        } catch (common::error const& refused) {
            std::throw_with_nested(build_failure(
                state_->device.name(), options.text(),
                detail::joined({refused.what(), " The binary is another device's or driver's: build from source."})));
        }
    }

    /// Compiles a part of a program, to be linked with others. `given` are headers that it includes by name; others are
    /// searched for in the folders of the options. Since OpenCL 1.2.
    [[nodiscard]] basic_compiled<Version> compile(std::string_view source, build_options const& options = {},
                                                  headers const& given = {}) const {
        static_assert(Version >= 120, "OpenCL compiles without linking since 1.2");
        std::vector<typename exact_api::program> texts;
        std::vector<_nq_cl_program*> raws;
        std::vector<char const*> names;
        for (auto const& [name, text] : given) {
            texts.push_back(state_->context.create_program_from_source(text));
            raws.push_back(detail::raw_of(texts.back()));
            names.push_back(name.c_str());
        }
        auto part = state_->context.create_program_from_source(std::string(source));
        std::string const with = checked(options).text();
        auto* const device = detail::raw_of(state_->device);
        nq::block::clCompileProgram block;
        block.program = detail::raw_of(part);
        block.device_list = &device;
        block.num_devices = 1;
        block.options = with.c_str();
        block.input_headers = raws.empty() ? nullptr : raws.data();
        block.header_include_names = names.empty() ? nullptr : names.data();
        block.num_input_headers = static_cast<std::uint32_t>(raws.size());
        block.pfn_notify = nullptr;
        block.user_data = nullptr;
        detail::build_by<Version>([&] { detail::perform<Version>(part, block); }, part, {state_->device}, with,
                                  "The part of a program");
        return basic_compiled<Version>(std::move(part));
    }

    /// A program from compiled parts and libraries, at least one. The options are the linker's. Since OpenCL 1.2.
    [[nodiscard]] basic_program<Version> link(std::vector<basic_compiled<Version>> const& parts,
                                              build_options const& options = {}) const {
        return basic_program<Version>(state_, linked(parts, options));
    }

    /// A library from compiled parts and other libraries, for `link`. Since OpenCL 1.2.
    [[nodiscard]] basic_compiled<Version> link_library(std::vector<basic_compiled<Version>> const& parts,
                                                       build_options options = {}) const {
        return basic_compiled<Version>(linked(parts, options.add("-create-library")));
    }

protected:
    /// For the session that builds.
    explicit basic_builder(std::shared_ptr<detail::session_state<Version>> state) noexcept : state_(std::move(state)) {}

    detail::session_link<Version> state_; ///< What the programs keep alive.

private:
    friend class binary_cache; // which has read the file

    template <class Sources>
    basic_program<Version> build_parts(Sources const& sources, build_options const& options) const {
        if (sources.size() == 0) {
            refuse_nothing(options);
        }
        std::string all;
        std::size_t number = 0;
        for (auto const& each : sources) {
            all += detail::named_part("source " + std::to_string(++number), each);
        }
        return build(all, options);
    }

    /// From the texts of files, each behind its path.
    basic_program<Version> build_read(std::vector<std::pair<std::string, std::string>> const& files,
                                      build_options const& options) const {
        if (files.empty()) {
            refuse_nothing(options);
        }
        std::string source;
        std::string names;
        std::vector<std::string> folders;
        build_options with = options;
        for (auto const& [each, text] : files) {
            source += detail::named_part(each, text);
            names += detail::joined({names.empty() ? "'" : ", '", each, "'"});
            std::string const folder = detail::folder_of(each);
            if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
                folders.push_back(folder);
                with.include(folder);
            }
        }
        return made(state_->context.create_program_from_source(source), with, names);
    }

    [[noreturn, gnu::cold, gnu::noinline]] void refuse_nothing(build_options const& options) const {
        throw build_failure(state_->device.name(), options.text(),
                            "There is nothing to build it from: give at least one source, file or part.");
    }

    static build_options checked(build_options options) {
        return Version < 120 ? options : options.add("-cl-kernel-arg-info");
    }

    basic_program<Version> made(typename exact_api::program fresh, build_options const& options,
                                std::string const& name = "The program") const {
        easy::build<Version>(fresh, std::vector<typename exact_api::device>{state_->device}, checked(options), name);
        return basic_program<Version>(state_, std::move(fresh));
    }

    /// Empty for a device that takes none.
    std::string il_version() const {
        try {
            return state_->device.il_version();
        } catch (common::error const&) {
            return {};
        }
    }

    typename exact_api::program linked(std::vector<basic_compiled<Version>> const& parts,
                                       build_options const& options) const {
        static_assert(Version >= 120, "OpenCL links since 1.2");
        if (parts.empty()) {
            refuse_nothing(options);
        }
        std::vector<typename exact_api::program> programs;
        programs.reserve(parts.size());
        for (auto const& each : parts) {
            programs.push_back(basic_compiled<Version>::there(each));
        }
        try {
            return state_->context.link_programs({state_->device}, programs, options.text(), nullptr, nullptr);
        } catch (common::error const& refused) { // OpenCL drops the linker's log with the program
            std::throw_with_nested(build_failure(
                state_->device.name(), options.text(),
                detail::joined({refused.what(), " OpenCL tells no more: look for a function that no part defines."})));
        }
    }
};

} // namespace vorn::mero::easy
