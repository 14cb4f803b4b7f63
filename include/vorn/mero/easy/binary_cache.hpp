#pragma once

#ifdef _WIN32
#error "<vorn/mero/easy/binary_cache.hpp> uses files as POSIX has them; Windows lacks that"
#endif

#include <vorn/mero/easy/included_files.hpp>
#include <vorn/mero/easy/session.hpp>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorn::mero::easy {

/// Keeps the binaries of programs in a folder, so that the next run of the program need not compile.
///
///     ez::binary_cache cache;                          // a folder of the user's, see `default_folder`
///     auto program = cache.build(gpu, source, ez::build_options().define("WIDTH", 64));
///
/// An entry is used where everything that a build depends on is the same: the source, the files that it includes, the
/// options, platform, device and driver with their versions. What is damaged, of a previous driver, or refused by the
/// device is built and stored anew. Several processes and threads may use one folder at the same time. Where nothing
/// can be stored, every build compiles; `problem` says why.
///
/// Sources whose `#include` names a macro are not kept. Some implementations do not tell how the arguments of a program
/// from a binary are declared (Intel's), so that only their number is checked. Nothing removes old entries but
/// `remove`. Thread-safe.
class binary_cache {
public:
    /// In the default folder.
    binary_cache() : binary_cache(default_folder()) {}

    /// In this folder, which is made when there is something to store. An empty path keeps nothing.
    explicit binary_cache(std::string folder) : folder_(std::move(folder)) {}

    /// "vorn-mero/binaries" in `$XDG_CACHE_HOME`, else in `$HOME/.cache`; empty without both, and in a program with
    /// another user's rights, whose caller may not choose what code it runs.
    [[nodiscard]] static std::string default_folder() {
        char const* const cache = detail::trusted_environment("XDG_CACHE_HOME");
        char const* const home = detail::trusted_environment("HOME");
        return cache != nullptr && *cache == '/'  ? std::string(cache) + "/vorn-mero/binaries" // else it does not count
               : home != nullptr && *home != '\0' ? std::string(home) + "/.cache/vorn-mero/binaries"
                                                  : std::string();
    }

    /// As `session::build`, from the folder where that has it. Throws the same.
    template <int Version>
    [[nodiscard]] basic_program<Version> build(basic_session<Version> const& gpu, std::string_view source,
                                               build_options const& options = {}) {
        return build_by(gpu, source, options, [&] { return gpu.build(source, options); });
    }

    /// The same from a file.
    template <int Version>
    [[nodiscard]] basic_program<Version> build_file(basic_session<Version> const& gpu, std::string const& path,
                                                    build_options options = {}) {
        std::string const source = detail::content_of(path);
        auto const fresh = [&, given = options] { return gpu.build_read({{path, source}}, given); };
        return build_by(gpu, source, options.include(detail::folder_of(path)), fresh);
    }

    /// The same from what a header of the build has.
    template <int Version>
    [[nodiscard]] basic_program<Version> build(basic_session<Version> const& gpu, embedded const& from,
                                               build_options const& options = {}) {
        std::string const all(from.il.begin(), from.il.end());
        return build_by(gpu, all + std::string(from.source),
                        build_options(std::string(from.options)).add(options.text()),
                        [&] { return gpu.build(from, options); });
    }

    /// The folder.
    [[nodiscard]] std::string const& folder() const noexcept { return folder_; }

    /// How many programs came from the folder since this object was made.
    [[nodiscard]] std::size_t hits() const noexcept { return hits_; }
    /// How many were compiled.
    [[nodiscard]] std::size_t misses() const noexcept { return misses_; }

    /// Why nothing can be stored, for people; empty where that is possible. Tries it.
    [[nodiscard]] std::string problem() const {
        if (folder_.empty()) {
            return "There is no folder: neither XDG_CACHE_HOME nor HOME is set";
        }
        std::string const probe = folder_ + "/" + unique_name();
        return write(probe, "") && ::unlink(probe.c_str()) == 0
                   ? std::string()
                   : detail::joined({"Cannot write to the folder '", folder_, "': ", std::strerror(errno)});
    }

    /// Removes the entry of a program, if there is one: the next build compiles.
    template <int Version>
    void remove(basic_session<Version> const& gpu, std::string_view source, build_options const& options = {}) const {
        if (auto const key = key_of(gpu, source, options)) {
            ::unlink(path_of(*key).c_str());
        }
    }

private:
    static constexpr std::string_view magic = "vorn-mero binary 1\n";

    /// FNV-1a: tells damage and spreads names. What must be equal is compared whole.
    static std::uint64_t sum_of(std::string_view bytes, std::uint64_t start = 0xCBF29CE484222325U) noexcept {
        for (char const each : bytes) {
            start = (start ^ static_cast<unsigned char>(each)) * 0x100000001B3U;
        }
        return start;
    }

    static std::string hexadecimal(std::uint64_t number) {
        std::string digits(16, '0');
        for (std::size_t i = 16; i-- != 0; number >>= 4U) {
            digits[i] = "0123456789abcdef"[number & 15U];
        }
        return digits;
    }

    /// Everything that a binary depends on; nothing where that cannot be known.
    template <int Version>
    static std::optional<std::string> key_of(basic_session<Version> const& gpu, std::string_view source,
                                             build_options const& options) {
        auto const included = detail::included_files(source, options.text());
        if (!included) {
            return std::nullopt;
        }
        auto const& device = gpu.device();
        auto const platform = device.get_platform();
        std::string key = std::to_string(Version);
        for (std::string const& part :
             {platform.name(), platform.version(), device.name(), device.vendor(), device.device_version(),
              device.driver_version(), options.text(), std::string(source), *included}) {
            key += detail::joined({"\n", std::to_string(part.size()), ":", part});
        }
        return key;
    }

    std::string path_of(std::string const& key) const {
        constexpr std::uint64_t other_start = 0x84222325CBF29CE4U;
        return detail::joined({folder_, "/", hexadecimal(sum_of(key)), hexadecimal(sum_of(key, other_start)), ".bin"});
    }

    static std::string unique_name() {
        static std::atomic<unsigned> next{0};
        return detail::joined({"new.", std::to_string(::getpid()), ".", std::to_string(next++)});
    }

    template <int Version, class Fresh>
    basic_program<Version> build_by(basic_session<Version> const& gpu, std::string_view source,
                                    build_options const& options, Fresh const& fresh) {
        auto const key = folder_.empty() ? std::nullopt : key_of(gpu, source, options);
        if (key) {
            if (auto const binary = load(*key)) {
                try {
                    auto found = gpu.build_binary(*binary, options);
                    ++hits_;
                    return found;
                } catch (build_failure const&) { // refused: a driver that did not change its version
                }
            }
        }
        auto built = fresh();
        ++misses_;
        if (key) {
            store(*key, built);
        }
        return built;
    }

    /// Magic, sizes of key and binary, sum of both, key, binary.
    std::optional<std::vector<unsigned char>> load(std::string const& key) const {
        std::string entry;
        try {
            entry = detail::content_of(path_of(key));
        } catch (file_error const&) {
            return std::nullopt;
        }
        std::string_view const all = entry;
        std::array<std::uint64_t, 3> head{};
        std::size_t const start = magic.size() + sizeof head;
        if (all.size() < start || all.substr(0, magic.size()) != magic) {
            return std::nullopt;
        }
        std::memcpy(head.data(), entry.data() + magic.size(), sizeof head);
        std::string_view const content = all.substr(start);
        if (head[0] != key.size() || content.size() < key.size() || content.size() - key.size() != head[1] ||
            head[1] == 0 || content.substr(0, key.size()) != key || sum_of(content) != head[2]) {
            return std::nullopt;
        }
        return std::vector<unsigned char>(content.begin() + static_cast<std::ptrdiff_t>(key.size()), content.end());
    }

    template <int Version>
    void store(std::string const& key, basic_program<Version> const& built) const {
        std::vector<unsigned char> binary;
        try {
            binary = built.binary();
        } catch (common::error const&) { // the implementation keeps it to itself
        }
        if (binary.empty()) {
            return;
        }
        std::string entry(magic);
        std::string const content = key + std::string(binary.begin(), binary.end());
        std::array<std::uint64_t, 3> const head{key.size(), binary.size(), sum_of(content)};
        entry.append(reinterpret_cast<char const*>(head.data()), sizeof head);
        entry += content;
        std::string const path = path_of(key);
        std::string const fresh = folder_ + "/" + unique_name();
        if (write(fresh, entry) && std::rename(fresh.c_str(), path.c_str()) != 0) { // readers see all of it or nothing
            ::unlink(fresh.c_str());
        }
    }

    /// A new file; false, and errno, where there is none. Makes the folder.
    bool write(std::string const& path, std::string_view content) const {
        for (std::size_t slash = folder_.find('/', 1); slash != std::string::npos;
             slash = folder_.find('/', slash + 1)) {
            ::mkdir(folder_.substr(0, slash).c_str(), 0700);
        }
        ::mkdir(folder_.c_str(), 0700);
        int const file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file < 0) {
            return false;
        }
        bool is_good = true;
        while (is_good && !content.empty()) {
            ssize_t const count = ::write(file, content.data(), content.size());
            is_good = count > 0 || (count < 0 && errno == EINTR);
            content.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        is_good = ::close(file) == 0 && is_good;
        if (!is_good) {
            int const why = errno;
            ::unlink(path.c_str());
            errno = why;
        }
        return is_good;
    }

    std::string folder_;
    std::atomic<std::size_t> hits_{0};
    std::atomic<std::size_t> misses_{0};
};

} // namespace vorn::mero::easy
